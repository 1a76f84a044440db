#include "settings.h"

#include <array>

#include "kit/forever.h"
#include "kit/keyword_store.h"

namespace oam::pci {
namespace {

constexpr const char* kRoot = "Sysfs.Root";
constexpr const char* kControl = "Driver.Control";
constexpr const char* kBindLimit = "Timing.BindMs";
constexpr const char* kMatch = "Match";
constexpr long long kUsualBindLimit = 2000;
constexpr long long kLongestBindLimit = 60000;
constexpr long long kMostMatches = 64;
constexpr std::size_t kLongestRoot = 512;
// The service makes a board's first name of the product and a number.
constexpr std::size_t kLongestProduct = kit::kLongestName - sizeof " 2147483647";

struct FirstMatch {
    const char* vendor;
    const char* device;
    const char* deviceClass;
    const char* product;
};

// Telephony cards that the class does not tell, then what the class tells.
constexpr std::array kFirstMatches = {
    FirstMatch{"d161", "*", "*", "PCI-TELEPHONY"},  FirstMatch{"1923", "*", "*", "PCI-TELEPHONY"},
    FirstMatch{"*", "*", "0402*", "PCI-TELEPHONY"}, FirstMatch{"*", "*", "0204*", "PCI-ISDN"},
    FirstMatch{"*", "*", "0200*", "PCI-ETHERNET"},  FirstMatch{"*", "*", "0280*", "PCI-NETWORK"},
};

// A new row fits no device until it is filled in: no device has this vendor.
constexpr FirstMatch kNewMatch = {"ffff", "*", "*", "PCI-BOARD"};

const FirstMatch& firstMatch(std::size_t index) {
    return index < kFirstMatches.size() ? kFirstMatches[index] : kNewMatch;
}

bool isIdPattern(std::string_view value) { return isPattern(value, kIdDigits); }
bool isClassPattern(std::string_view value) { return isPattern(value, kClassDigits); }
bool isProduct(std::string_view value) { return value.size() <= kLongestProduct; }

bool isRoot(std::string_view value) {
    return value.starts_with('/') && value.size() <= kLongestRoot;
}

struct MatchMember {
    const char* name;
    const char* FirstMatch::*first;
    std::string MatchRow::*field;
    const char* type;
    bool (*fits)(std::string_view value);
    const char* description;
};

constexpr std::array kMatchMembers = {
    MatchMember{".Vendor", &FirstMatch::vendor, &MatchRow::vendor, "String", isIdPattern,
                "four hexadecimal digits, ? for any one, * for the rest"},
    MatchMember{".Device", &FirstMatch::device, &MatchRow::device, "String", isIdPattern,
                "four hexadecimal digits, ? for any one, * for the rest"},
    MatchMember{".Class", &FirstMatch::deviceClass, &MatchRow::deviceClass, "String",
                isClassPattern, "six hexadecimal digits, ? for any one, * for the rest"},
    MatchMember{".Product", &FirstMatch::product, &MatchRow::product, "Object", isProduct,
                "product, served from the next start on"},
};

kit::KeywordRule matchRule(std::size_t index, const MatchMember& member) {
    return {.name = kit::elementName(kMatch, index, member.name),
            .value = firstMatch(index).*member.first,
            .type = member.type,
            .description = member.description,
            .fits = member.fits};
}

const std::vector<kit::KeywordRule>& plainRules() {
    static const auto& kRules = kit::forever(std::vector<kit::KeywordRule>{
        {.name = "Name", .type = "Object", .isReadOnly = true},
        {.name = kRoot,
         .value = "/sys",
         .description = "where the kernel's device tree is mounted",
         .fits = isRoot},
        // A host's own network card is a board to the kernel too.
        {.name = kControl,
         .value = "No",
         .choices = {"Yes", "No"},
         .description = "Yes lets a start and a stop bind and unbind kernel drivers"},
        kit::numberRule(kBindLimit, kUsualBindLimit, 0, kLongestBindLimit,
                        "milliseconds that a driver may take to bind or to let go"),
        kit::numberRule(kit::countName(kMatch), kFirstMatches.size(), 0, kMostMatches,
                        "rows of the table of boards; the first that fits counts"),
    });
    return kRules;
}

std::vector<kit::KeywordRule> matchRules(long long count) {
    std::vector<kit::KeywordRule> rules;
    for (long long i = 0; i < count; ++i) {
        for (const auto& member : kMatchMembers) {
            rules.push_back(matchRule(static_cast<std::size_t>(i), member));
        }
    }
    return rules;
}

long long matchCount(unsigned long handle) {
    return kit::readNumber(handle, kit::countName(kMatch), 0, kMostMatches, 0);
}

oam_result complete(unsigned long handle, const std::vector<kit::KeywordRule>& rules,
                    std::vector<std::string>* repairs) {
    if (auto failed = kit::installKeywords(handle, rules)) return failed;
    return kit::repairKeywords(handle, rules, repairs);
}

}  // namespace

std::optional<kit::KeywordRule> settingRule(std::string_view keyword) {
    if (const auto* const rule = kit::findRule(plainRules(), keyword)) return *rule;
    const auto place = kit::elementOf(keyword, kMatch);
    if (!place || place->index >= static_cast<std::size_t>(kMostMatches)) return {};
    for (const auto& member : kMatchMembers) {
        if (kit::sameText(member.name, place->rest)) return matchRule(place->index, member);
    }
    return {};
}

oam_result completeSettings(unsigned long handle, std::vector<std::string>* repairs) {
    if (auto failed = complete(handle, plainRules(), repairs)) return failed;
    return complete(handle, matchRules(matchCount(handle)), repairs);
}

Settings readSettings(unsigned long handle) {
    Settings settings;
    settings.tree.root = kit::readKeyword(handle, kRoot).value_or("");
    settings.mayControl = kit::readKeyword(handle, kControl).value_or("") == "Yes";
    settings.bindLimit = std::chrono::milliseconds(
        kit::readNumber(handle, kBindLimit, 0, kLongestBindLimit, kUsualBindLimit));
    const auto count = matchCount(handle);
    for (long long i = 0; i < count; ++i) {
        auto& row = settings.matches.emplace_back();
        for (const auto& member : kMatchMembers) {
            const auto name = kit::elementName(kMatch, static_cast<std::size_t>(i), member.name);
            row.*member.field = kit::readKeyword(handle, name).value_or("");
        }
    }
    return settings;
}

}  // namespace oam::pci
