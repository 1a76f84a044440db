#include "mirror/text_json.h"

#include "foreign_text.h"
#include "mirror/base64.h"

namespace oam::console {

Json TextToJson(const std::string& bytes) {
    if (IsUtf8(bytes)) return bytes;
    return {{"base64", ToBase64(bytes)}};
}

std::optional<std::string> TextFromJson(const Json& json) {
    if (json.is_string()) return json.get<std::string>();
    if (!json.is_object() || json.size() != 1 || !json.contains("base64") ||
        !json["base64"].is_string())
        return std::nullopt;
    return FromBase64(json["base64"].get<std::string>());
}

}  // namespace oam::console
