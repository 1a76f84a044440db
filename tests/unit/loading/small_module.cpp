#include "small_module.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace oam::test {

SmallModule::SmallModule(const Installation& home, const std::string& file,
                         const std::string& built) {
    const std::string target = home.Path("lib/" + file);
    std::filesystem::copy_file(std::string(SMALL_MODULES) + "/" + built + ".so", target);
    library_ = dlopen(target.c_str(), RTLD_LAZY);
    if (library_ == nullptr) ADD_FAILURE() << dlerror();
}

void SmallModule::Answer(unsigned code) const {
    *static_cast<unsigned*>(dlsym(library_, "answer")) = code;
}

std::string SmallModule::Calls() const { return static_cast<char*>(dlsym(library_, "calls")); }

}  // namespace oam::test
