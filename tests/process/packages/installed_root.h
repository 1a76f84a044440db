// This system with the packages installed in it, for real, and nothing of it changed: a layer over
// its root takes what dpkg, the packages' scripts and the programs write. It is mounted in a mount
// namespace of its own and goes with it. Takes root, and a kernel that lays one file system over
// another there.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "child_process.h"

namespace oam::test {

class InstalledRoot {
  public:
    // Why there can be none here; empty: there can.
    static std::string Missing();

    InstalledRoot();
    ~InstalledRoot();
    InstalledRoot(const InstalledRoot&) = delete;
    InstalledRoot& operator=(const InstalledRoot&) = delete;

    // A command of the system that it is, with its paths. No shell, no search for programs.
    std::vector<std::string> Inside(const std::vector<std::string>& command) const;
    Finished Run(const std::vector<std::string>& command) const;
    // The same for a shell's line, which must succeed: its output.
    std::string Shell(const std::string& line) const;
    // These packages, by their files.
    void Install(const std::vector<std::string>& files) const;

  private:
    std::string directory_;
    std::unique_ptr<ChildProcess> holder_;  // of the namespace
};

}  // namespace oam::test
