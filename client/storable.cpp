#include "storable.h"

#include <algorithm>

#include "data_file.h"
#include "foreign_text.h"
#include "object_kind.h"

namespace oam {
namespace {

std::string whyTextIsLost(const std::string& text) {
    if (std::any_of(text.begin(), text.end(), IsControl)) return "it contains a control character";
    if (text.find('<') != std::string::npos) return "it contains '<'";
    if (!text.empty() && (IsWhiteSpace(text.front()) || IsWhiteSpace(text.back())))
        return "it begins or ends with a blank";
    return {};
}

std::string whyNameIsLost(const std::string& name) {
    if (name.empty()) return "it is empty";
    if (name.find_first_of(">\\") != std::string::npos) return "it contains '>' or a backslash";
    if (std::string_view("/!?").find(name.front()) != std::string_view::npos)
        return "it begins with '/', '!' or '?'";
    return whyTextIsLost(name);
}

}  // namespace

std::string WhyObjectNameIsLost(const std::string& name) {
    if (name.size() > kLongestName) return "it is longer than 127 bytes";
    return whyNameIsLost(name);
}

std::string WhyKeywordNameIsLost(const std::string& object, const std::string& keyword) {
    if (object.size() + keyword.size() + 2 >= kDataPathSize)
        return "it is longer than 253 bytes together with its object's name";
    return whyNameIsLost(keyword);
}

std::string WhyValueIsLost(const std::string& value) {
    if (value.size() > kLongestValue) return "it is longer than 2047 bytes";
    return whyTextIsLost(value);
}

std::string WhyBoardNameIsLost(const std::string& name) {
    if (KindOf(name) != ObjectKind::kBoard)
        return "an object of that name is no board at the next start";
    return WhyObjectNameIsLost(name);
}

}  // namespace oam
