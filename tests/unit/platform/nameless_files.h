// A system on which a file cannot be made first and named later, as long as one of these lives.
#pragma once

enum class Refused {
    kNothing,
    kNamelessFiles,  // the file system has none (O_TMPFILE)
    kNaming,         // a rule of the host forbids it (linkat)
};

class NamelessFilesRefused {
  public:
    explicit NamelessFilesRefused(Refused what);
    ~NamelessFilesRefused();
    NamelessFilesRefused(const NamelessFilesRefused&) = delete;
    NamelessFilesRefused& operator=(const NamelessFilesRefused&) = delete;
};
