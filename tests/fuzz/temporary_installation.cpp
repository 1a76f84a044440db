#include "temporary_installation.h"

#include <cstdlib>
#include <string>

#include "fuzz_target.h"

namespace oam::fuzz {

namespace fs = std::filesystem;

TemporaryInstallation::TemporaryInstallation() {
    std::string name = fs::temp_directory_path() / "oamXXXXXX";
    Require(mkdtemp(name.data()) != nullptr, "a directory can be made");
    root_ = name;
    for (const char* part : {"oam/cfg", "oam/log", "lib", "shm"})
        fs::create_directories(root_ / part);
    setenv("KOR_DIR", root_.c_str(), 1);
    setenv("KOR_SHM_DIR", (root_ / "shm").c_str(), 1);
}

TemporaryInstallation::~TemporaryInstallation() {
    std::error_code ignored;
    fs::remove_all(root_, ignored);
}

}  // namespace oam::fuzz
