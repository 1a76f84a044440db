// Texts of ours in JSON: a string, or {"base64": "..."} when the bytes are not UTF-8, so that every
// name and value comes through unchanged, both ways.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

namespace oam::console {

using Json = nlohmann::ordered_json;

Json TextToJson(const std::string& bytes);
// Nothing when it is neither.
std::optional<std::string> TextFromJson(const Json& json);

}  // namespace oam::console
