#include "temporary_installation.h"

#include <cstdlib>
#include <system_error>

namespace oam::check {

namespace fs = std::filesystem;

TemporaryInstallation::TemporaryInstallation(const fs::path& module)
    : moduleName_(module.filename()) {
    char name[] = "/tmp/oamXXXXXX";
    if (mkdtemp(name) == nullptr)
        throw fs::filesystem_error("cannot make a directory", name,
                                   std::error_code(errno, std::generic_category()));
    root_ = name;
    for (const char* part : {"oam/cfg", "oam/log", "lib", "shm"})
        fs::create_directories(root_ / part);
    fs::copy_file(module, Module());
}

TemporaryInstallation::~TemporaryInstallation() {
    std::error_code ignored;
    fs::remove_all(root_, ignored);
}

void TemporaryInstallation::Enter() const {
    setenv("KOR_DIR", root_.c_str(), 1);
    setenv("KOR_SHM_DIR", (root_ / "shm").c_str(), 1);
}

}  // namespace oam::check
