// Going through a directory's files of one extension, and telling the logs about each.
#pragma once

#include <dirent.h>
#include <sys/stat.h>

namespace oam {

class FileListing {
  public:
    FileListing() noexcept = default;
    ~FileListing();
    FileListing(const FileListing&) = delete;
    FileListing& operator=(const FileListing&) = delete;

    // False when the directory cannot be opened.
    bool Open(const char* directory) noexcept;
    // The next file name with the extension (without regard to case), in directory order; null
    // after the last. Valid until the next call.
    const char* Next(const char* extension) noexcept;
    // Whether the last Next ended the listing before the last file, because of an I/O error.
    bool HasFailed() const noexcept { return hasFailed_; }

  private:
    DIR* directory_ = nullptr;
    bool hasFailed_ = false;
};

// The heading of a listing on the debug sink.
void ListingHeader(const char* title) noexcept;

// One file's line: name, size, time and permissions to the debug sink, and "=> Loading ..." as an
// alert of the source. A file that cannot be looked at is told to the debug sink only.
void AnnounceFile(const char* source, const char* path, const char* fileName) noexcept;
// The same of a file that has been looked at.
void AnnounceFile(const char* source, const char* path, const char* fileName,
                  const struct stat& status) noexcept;

}  // namespace oam
