// A directory that the service takes for its installation, for the life of the process.
//
// It lies in TMPDIR, or in /tmp, under a short name since the service's paths are limited, and goes
// with the process; after a crash it stays, and scripts/fuzz removes it.
#pragma once

#include <filesystem>
#include <string_view>

namespace oam::fuzz {

class TemporaryInstallation {
  public:
    TemporaryInstallation();
    ~TemporaryInstallation();
    TemporaryInstallation(const TemporaryInstallation&) = delete;
    TemporaryInstallation& operator=(const TemporaryInstallation&) = delete;

    std::filesystem::path Path(std::string_view relative) const { return root_ / relative; }

  private:
    std::filesystem::path root_;
};

}  // namespace oam::fuzz
