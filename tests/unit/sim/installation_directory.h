// A temporary installation directory, with KOR_DIR pointing at it.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

namespace oam::sim {

class InstallationDirectory {
  public:
    InstallationDirectory() {
        char name[] = "/tmp/oamXXXXXX";
        root_ = mkdtemp(name);
        std::filesystem::create_directories(Configuration());
        setenv("KOR_DIR", root_.c_str(), 1);
    }
    ~InstallationDirectory() {
        unsetenv("KOR_DIR");
        std::filesystem::remove_all(root_);
    }
    InstallationDirectory(const InstallationDirectory&) = delete;
    InstallationDirectory& operator=(const InstallationDirectory&) = delete;

    std::filesystem::path Configuration() const { return root_ / "oam" / "cfg"; }
    void WriteChassis(const std::string& text) const {
        std::ofstream(Configuration() / "sim.chassis") << text;
    }

  private:
    std::filesystem::path root_;
};

}  // namespace oam::sim
