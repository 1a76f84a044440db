#include "value_check.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

#include "kit/db_access.h"
#include "kit/kept_text.h"
#include "kit/text_scan.h"

namespace oam::sim {
namespace {

constexpr long long kLowest = std::numeric_limits<long long>::min();
constexpr long long kHighest = std::numeric_limits<long long>::max();
constexpr long long kMostElements = 4096;

// Nothing when it is not stored.
std::optional<std::string> readQualifier(unsigned long handle, const std::string& keyword,
                                         const std::string& qualifier) {
    std::array<char, kit::kLongestValue + 1> text;
    if (_oamDbGetQualifier(handle, keyword.c_str(), qualifier.c_str(), text.data(), text.size())) {
        return {};
    }
    return text.data();
}

// A qualifier that is no number is as good as none.
long long numberQualifier(unsigned long handle, const std::string& keyword, const char* qualifier,
                          long long usual, int base = 10) {
    const auto text = readQualifier(handle, keyword, qualifier);
    return text ? kit::boundedNumber(*text, kLowest, kHighest, base).value_or(usual) : usual;
}

bool isInRange(unsigned long handle, const std::string& keyword, std::string_view value) {
    const auto asked = numberQualifier(handle, keyword, "Base", 10);
    const int base = asked >= 2 && asked <= 36 ? static_cast<int>(asked) : 10;
    const auto min = numberQualifier(handle, keyword, "Min", 0, base);
    const auto max = numberQualifier(handle, keyword, "Max", 32767, base);
    return kit::boundedNumber(value, min, max, base).has_value();
}

bool isBareFileName(std::string_view value) {
    return !value.empty() && value.find('/') == std::string_view::npos && value != "." &&
           value != "..";
}

bool fitsType(unsigned long handle, const std::string& keyword, std::string_view value) {
    const auto type = readQualifier(handle, keyword, "Type").value_or("String");
    if (kit::sameText(type, "Integer")) return isInRange(handle, keyword, value);
    if (kit::sameText(type, "Object")) return kit::canNameObject(value);
    if (kit::sameText(type, "FileName")) return isBareFileName(value);
    return true;
}

bool isYes(unsigned long handle, const std::string& keyword, const char* qualifier) {
    return kit::sameText(readQualifier(handle, keyword, qualifier).value_or("No"), "Yes");
}

// The element is "Base[i]" or "Base[i].Member"; "Base.Count" says how many there are.
bool isAmongOthers(unsigned long handle, const std::string& keyword, std::string_view value) {
    const auto open = keyword.find('[');
    const auto close = keyword.find(']', std::min(open, keyword.size()));
    if (close == std::string::npos) return false;
    const auto base = keyword.substr(0, open);
    const auto count = kit::readKeyword(handle, base + ".Count").value_or("0");
    const auto bounded = kit::boundedNumber(count, 0, kMostElements).value_or(0);
    for (long long i = 0; i < bounded; ++i) {
        const auto name = base + "[" + std::to_string(i) + keyword.substr(close);
        if (kit::sameText(name, keyword)) continue;
        const auto other = kit::readKeyword(handle, name);
        if (other && kit::sameText(*other, value)) return true;
    }
    return false;
}

}  // namespace

std::optional<std::string> acceptedValue(unsigned long handle, const std::string& keyword,
                                         std::string_view value) {
    if (!kit::canKeepValue(value) || !fitsType(handle, keyword, value)) return {};
    if (isYes(handle, keyword, "Distinct") && isAmongOthers(handle, keyword, value)) return {};
    const auto choices = numberQualifier(handle, keyword, "Choices.Count", 0);
    for (long long i = 0; i < choices; ++i) {
        const auto choice = readQualifier(handle, keyword, "Choices[" + std::to_string(i) + "]");
        if (!choice) return {};
        if (kit::sameText(*choice, value)) return choice;
    }
    if (choices > 0) return {};
    return std::string(value);
}

oam_result checkChange(unsigned long handle, const std::string& keyword, std::string_view value,
                       std::string* stored) {
    if (!kit::canKeepKeyword(keyword)) return OAMERR_SET_BOARD_KEYWORD_FAIL;
    // "Keyword?Qualifier" is how a qualifier is stored: it would lift the rules that hold here.
    if (keyword.find('?') != std::string::npos) return OAMERR_ACCESS_DENIED;
    if (isYes(handle, keyword, "ReadOnly")) return OAMERR_ACCESS_DENIED;
    auto accepted = acceptedValue(handle, keyword, value);
    if (!accepted) return OAMERR_SET_BOARD_KEYWORD_FAIL;
    *stored = std::move(*accepted);
    return OAM_SUCCESS;
}

}  // namespace oam::sim
