// Secrets: random ones, and comparing them in a time that tells nothing.
#pragma once

#include <string>
#include <string_view>

namespace oam::console {

// 256 random bits, in letters that need no escape in a URL, a header or a cookie.
std::string NewSecret();

bool IsSameSecret(std::string_view given, std::string_view right);

}  // namespace oam::console
