#include "kept_text.h"

#include <algorithm>

#include "text_scan.h"

namespace oam::sim {
namespace {

// The first characters that the file's reader takes for something other than a begin tag.
constexpr std::string_view kMarkers = "!?/";

bool canBeTag(std::string_view text) {
    return !text.empty() && canKeepValue(text) &&
           text.find_first_of(">\\") == std::string_view::npos &&
           kMarkers.find(text.front()) == std::string_view::npos;
}

// At its next start the service would take such an object for a plug-in's or a component's.
bool namesLoadedFile(std::string_view text) {
    const auto extension = text.substr(std::min(text.rfind('.'), text.size()));
    return sameText(extension, ".bpi") || sameText(extension, ".emc");
}

}  // namespace

bool canKeepValue(std::string_view value) {
    return value.size() <= kLongestValue && value == trimmed(value) &&
           !hasControlCharacter(value) && value.find('<') == std::string_view::npos;
}

bool canKeepKeyword(std::string_view keyword) {
    return keyword.size() <= kLongestKeyword && canBeTag(keyword);
}

bool canNameObject(std::string_view name) {
    return name.size() <= kLongestObjectName && canBeTag(name) && !namesLoadedFile(name);
}

}  // namespace oam::sim
