// A temporary installation directory: the whole world of one test.
//
// The constructor makes "/tmp/oamXXXXXX" (paths in the library are limited, so it is short) with
// "oam/cfg", "oam/log", "lib" and "shm", and points KOR_DIR and KOR_SHM_DIR at it; the destructor
// takes both variables back and removes everything. One at a time in a process. Names given to the
// methods are relative to the directory: "oam/cfg/Super.xmo".
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace oam::test {

// Bare: the directory alone, to see what the service makes by itself.
enum class Layout { kComplete, kBare };

class Installation {
  public:
    // The parent may be one that lies in memory: a sync costs nothing there.
    explicit Installation(Layout layout = Layout::kComplete, const std::string& parent = "/tmp");
    ~Installation();
    Installation(const Installation&) = delete;
    Installation& operator=(const Installation&) = delete;

    // Without a slash at its end.
    std::string Root() const { return root_.string(); }
    std::string Path(std::string_view relative) const { return (root_ / relative).string(); }

    void Write(std::string_view relative, std::string_view bytes) const;
    // The file's bytes; fails the test and is empty when there is no such file.
    std::string Read(std::string_view relative) const;
    bool Exists(std::string_view relative) const;
    void Remove(std::string_view relative) const;
    void MakeDirectory(std::string_view relative) const;
    // The names in a directory, in ascending order.
    std::vector<std::string> List(std::string_view relative) const;

    void WriteDataFile(std::string_view fileName, std::string_view bytes) const;
    std::string ReadDataFile(std::string_view fileName) const;

    // Copies a built test module ("recorder.bpi", "recorder_minimal.bpi", ...) into "lib" under a
    // name of its own. Every copy has its own state.
    void AddModule(std::string_view module, std::string_view as) const;

    // Makes this directory (relative to where it lies now) the root, with KOR_DIR.
    void MoveRoot(std::string_view relative);
    // The same with a directory whose path has this many characters, for the limits of paths.
    void MoveRootToLength(size_t length);

  private:
    std::filesystem::path made_;  // what the destructor removes
    std::filesystem::path root_;
};

}  // namespace oam::test
