#include "chassis_source.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "builtin_chassis.h"
#include "chassis_file.h"

namespace oam::sim {
namespace {

// No public call tells the installation directory, so the platform's rule is followed.
std::filesystem::path configurationDirectory() {
    const char* const named = std::getenv("KOR_DIR");
    const bool isAbsolute = named != nullptr && *named == '/';
    return std::filesystem::path(isAbsolute ? named : OAM_DEFAULT_DIR) / "oam" / "cfg";
}

}  // namespace

std::optional<std::string> chassisText(const std::string& fileName) {
    const auto path = configurationDirectory() / fileName;
    std::error_code failed;
    const auto status = std::filesystem::status(path, failed);
    if (status.type() == std::filesystem::file_type::not_found) {
        return std::string(builtInChassis());
    }
    // Opening anything but a file might wait for ever.
    if (!std::filesystem::is_regular_file(status)) return {};
    const auto size = std::filesystem::file_size(path, failed);
    std::ifstream file(path, std::ios::binary);
    if (failed || !file) return {};
    // One byte more than the parser takes lets it notice a file that is too long.
    std::string text(std::min<std::uintmax_t>(size, kLongestFile + 1), '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (file.bad()) return {};
    text.resize(static_cast<std::size_t>(file.gcount()));
    return text;
}

}  // namespace oam::sim
