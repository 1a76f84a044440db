// CXmlExport writes data files and exports.
//
// Kept: names and values are written raw, without escaping, because the reader knows none. The
// format: a declaration line, a root tag, a directory for each object, and one line a keyword,
// "<name>value</>", indented by three blanks a level. Every operation answers 0, or -1 on an output
// error or a violated limit; what was written stays as it is.
#pragma once

#include <cstdio>
#include <initializer_list>
#include <string_view>

#include "xmo_path.h"

extern const char kObjectRoot[];  // the root tag of one object's data file
extern const char kExportRoot[];  // the root tag of a whole configuration

class CXmlExport {
  public:
    CXmlExport() noexcept = default;
    CXmlExport(const CXmlExport&) = delete;
    CXmlExport& operator=(const CXmlExport&) = delete;
    virtual ~CXmlExport();

    // Creates or truncates the file and opens the root. A descriptor is of the file, open and
    // empty; it is the writer's then, whatever the answer.
    int Open(const char* path, const char* rootName, int descriptor = -1) noexcept;
    // Fails when the path of open directories would reach 256 bytes.
    int BegDir(const char* name) noexcept;
    // A null value is written empty.
    int SetNextKeyword(const char* name, const char* value) noexcept;
    // Fails when nothing is open, or when `name` is not null and not the last one opened.
    int EndDir(const char* name) noexcept;
    // Closes every open directory, then the stream.
    int Close() noexcept;
    // As Close, but with the file's data on the disk before the stream is closed.
    int CloseSynced() noexcept;

  private:
    int CloseStream(bool sync) noexcept;
    // One line, indented, of these parts; whether it could be written the stream keeps.
    void Line(std::initializer_list<std::string_view> parts) noexcept;
    int Answer() const noexcept { return ferror_unlocked(stream_) == 0 ? 0 : -1; }

    FILE* stream_ = nullptr;
    int depth_ = 0;
    XmoPath path_;
};
