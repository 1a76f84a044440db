// The installation that a command works on: one directory with "oam/cfg", "oam/log" and "lib".
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace oam {

class Installation {
  public:
    // The directory given, made absolute, becomes KOR_DIR of this process; without one it is
    // KOR_DIR when that is absolute, else the compiled-in default.
    static Installation Locate(const std::optional<std::string>& directory);

    // For people: "/" when the directory is the root.
    std::string Directory() const { return directory_.empty() ? "/" : directory_; }
    // `relative` begins with a slash.
    std::string Path(std::string_view relative) const;

    // Throws unless the directories are there, give this user `access` (R_OK and so on), and have
    // paths that are short enough. The library would make missing ones, but with a mode that keeps
    // everyone out but root.
    void RequireReady(int access) const;

  private:
    explicit Installation(std::string directory) : directory_(std::move(directory)) {}

    std::string directory_;
};

// The library builds its paths in buffers of this size; longer ones stop its start.
constexpr size_t kPathSize = 128;

constexpr const char* kConfigDirectory = "/oam/cfg";
constexpr const char* kLogDirectory = "/oam/log";
constexpr const char* kPluginDirectory = "/lib";
constexpr const char* kStartupLog = "/oam/log/startup.log";

}  // namespace oam
