// Base64 with padding, as JSON members carry bytes that are no text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace oam::console {

std::string ToBase64(std::string_view bytes);
// Nothing when it is none.
std::optional<std::string> FromBase64(std::string_view text);

}  // namespace oam::console
