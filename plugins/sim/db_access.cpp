#include "db_access.h"

#include <array>

#include "kept_text.h"

namespace oam::sim {

std::optional<std::string> readKeyword(unsigned long handle, const std::string& keyword) {
    std::array<char, kLongestValue + 1> text;
    if (_oamDbGetKeyword(handle, keyword.c_str(), text.data(), text.size())) return {};
    return text.data();
}

std::optional<std::string> readQualifier(unsigned long handle, const std::string& keyword,
                                         const std::string& qualifier) {
    std::array<char, kLongestValue + 1> text;
    if (_oamDbGetQualifier(handle, keyword.c_str(), qualifier.c_str(), text.data(), text.size())) {
        return {};
    }
    return text.data();
}

}  // namespace oam::sim
