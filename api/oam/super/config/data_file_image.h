// A data file in exactly the form in which the writer writes it, read at once and split in place:
// the fast way for nearly every file. Whatever else a file holds, the reader (xmo_reader.h)
// decides; this one says only that it is not its kind, also when it could not be read.
#pragma once

#include "base/file_identity.h"
#include "objects/keyword.h"

class DataFileImage {
  public:
    DataFileImage() noexcept = default;
    ~DataFileImage();
    DataFileImage(const DataFileImage&) = delete;
    DataFileImage& operator=(const DataFileImage&) = delete;

    // False when it cannot be opened and looked at.
    bool Open(const char* path) noexcept;
    // What the look showed.
    const struct stat& Status() const noexcept { return status_; }
    // Of an open file, and closes it. True: the file is valid, its keywords are in ascending order,
    // each with a name that may stand in an object.
    bool Read() noexcept;

    const char* ObjectName() const noexcept { return name_; }
    // Unknown when the file changed shortly before.
    const oam::FileIdentity& Identity() const noexcept { return identity_; }
    KeywordBlock* Keywords() noexcept { return &keywords_; }

  private:
    bool ReadText() noexcept;
    bool Split(char* text, size_t length) noexcept;
    void Close() noexcept;

    int descriptor_ = -1;
    struct stat status_ {};
    KeywordBlock keywords_;
    size_t length_ = 0;
    const char* name_ = "";
    oam::FileIdentity identity_;
};
