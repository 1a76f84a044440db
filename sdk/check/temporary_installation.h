// An installation of its own for one run of the judged module, in a short directory under /tmp (the
// service limits paths to 127 characters). Removed with everything in it.
#pragma once

#include <filesystem>
#include <string>

namespace oam::check {

class TemporaryInstallation {
  public:
    // Puts a copy of the module into "lib". Throws std::filesystem::filesystem_error.
    explicit TemporaryInstallation(const std::filesystem::path& module);
    ~TemporaryInstallation();
    TemporaryInstallation(const TemporaryInstallation&) = delete;
    TemporaryInstallation& operator=(const TemporaryInstallation&) = delete;

    // Makes it the calling process's installation.
    void Enter() const;

    std::string Module() const { return (root_ / "lib" / moduleName_).string(); }
    std::string Path(const char* relative) const { return (root_ / relative).string(); }

  private:
    std::filesystem::path root_;
    std::filesystem::path moduleName_;
};

}  // namespace oam::check
