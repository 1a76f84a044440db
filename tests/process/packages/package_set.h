// The Debian packages of this build, and a root into which they are unpacked.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace oam::test {

// What `command` prints; it must succeed.
std::string OutputOf(const std::vector<std::string>& command);
std::vector<std::string> LinesOf(const std::string& text);
// Whether the system has the program.
bool HasProgram(const std::string& name);

struct PackagedFile {
    std::string path;   // "/usr/bin/oam"; of a directory without the last slash
    std::string mode;   // as ls prints it: "-rwxr-xr-x"
    std::string owner;  // "root/root"
    bool IsDirectory() const { return mode.starts_with('d'); }
};

// Their names, each with its file.
std::map<std::string, std::string> Packages();
// One field of a package's control file.
std::string Field(const std::string& file, const std::string& name);
std::vector<PackagedFile> FilesOf(const std::string& file);

// A directory with all packages unpacked in it; removed with this.
class UnpackedRoot {
  public:
    UnpackedRoot();
    ~UnpackedRoot();
    UnpackedRoot(const UnpackedRoot&) = delete;
    UnpackedRoot& operator=(const UnpackedRoot&) = delete;

    // Of an absolute path in the packages.
    std::string Path(const std::string& path) const { return root_ + path; }
    std::string Read(const std::string& path) const;

  private:
    std::string root_;
};

}  // namespace oam::test
