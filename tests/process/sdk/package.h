// The package as a board maker has it: installed into a prefix of its own, once for all tests here
// (see CMakeLists.txt).
#pragma once

#include <filesystem>

namespace oam::test {

inline std::filesystem::path PackagePrefix() { return OAM_PACKAGE_PREFIX; }
inline std::filesystem::path PackageProgram(const char* name) {
    return PackagePrefix() / "bin" / name;
}
inline std::filesystem::path KitFile(const char* relative) {
    return PackagePrefix() / "share/oam/sdk" / relative;
}
inline std::filesystem::path BadPlugin(const std::string& name) {
    return std::filesystem::path(OAM_BAD_PLUGINS) / (name + ".bpi");
}

}  // namespace oam::test
