#include "object_change.h"

#include <set>

#include "board_identity.h"
#include "failure.h"
#include "number.h"
#include "object_kind.h"
#include "object_reading.h"
#include "opened_object.h"
#include "storable.h"

namespace oam {
namespace {

// What a board answers to a name that its data file could not keep.
constexpr unsigned kBadName = 7;

std::string advice(unsigned code) {
    switch (code) {
        case OAMERR_ACCESS_DENIED:
            return "the keyword is unknown or read-only, or does not take this value; "
                   "`oam show --qualifiers` tells";
        case OAMERR_ALREADY_EXISTS:
            return "another object has this name or number";
        case OAMERR_FILE_WRITE_ERROR:
            return "look at the owner and the free space of oam/cfg";
        case kBadName:
            return "a name is not empty, has no blank at its ends, and no '<', '>', '\\'";
        default:
            return {};
    }
}

// Whose name or number it is that was refused as taken, as far as that can be told afterwards.
struct Clash {
    std::string keyword;
    std::string value;
    std::string rule;
};

Clash clashOf(const std::string& object, const std::vector<Assignment>& assignments) {
    for (const Assignment& change : assignments) {
        if (SameName(change.keyword, "Name")) {
            for (const std::string& other : ObjectNames())
                if (SameName(other, change.value) && !SameName(other, object))
                    return {change.keyword, change.value,
                            "the name " + Quoted(change.value) + " is taken already"};
        } else if (SameName(change.keyword, "Number")) {
            const auto number = ParseNumber(change.value);
            const Answer owner = number ? LookUpBoard(ByNumber{*number}) : Answer{1, {}};
            if (owner.IsGiven() && !SameName(owner.text, object))
                return {change.keyword, change.value,
                        "number " + change.value + " is " + Quoted(owner.text) + "'s already"};
        }
    }
    return {};
}

std::string whyIsLost(const std::string& object, const Assignment& change) {
    if (!SameName(change.keyword, "Name")) return WhyValueIsLost(change.value);
    return KindOf(object) == ObjectKind::kBoard ? WhyBoardNameIsLost(change.value)
                                                : WhyObjectNameIsLost(change.value);
}

void refuseWhatIsLost(const std::string& object, const Assignment& change) {
    const std::string keyword = WhyKeywordNameIsLost(object, change.keyword);
    if (!keyword.empty())
        throw Failure("the keyword name " + Quoted(change.keyword) + " cannot be kept: " + keyword)
            .About({object, change.keyword, change.value});
    const std::string value = whyIsLost(object, change);
    if (!value.empty())
        throw Failure("the value of " + Quoted(change.keyword) + " cannot be kept: " + value,
                      "data files hold texts as they stand; choose another value")
            .About({object, change.keyword, change.value});
}

// Closing a changed object commits it, and there is no other way to end the handle. So the change
// is taken back in two steps. First every keyword set so far gets its old value again, last one
// first, through the object: a plug-in that acts on values sees them return. Then the "Name" is
// taken off the handle. An object without a name cannot be committed, so the service drops all that
// was done through the handle, and what the data file holds stays. The first step alone would not
// do: a plug-in may refuse an old value, or may have created keywords. Should the second one not
// work, what is committed equals what was there before.
void takeBack(OpenedObject& object, const std::vector<Assignment>& before) {
    for (auto old = before.rbegin(); old != before.rend(); ++old)
        (void)_oamSetKeyword(object.Handle(), old->keyword.c_str(), old->value.c_str());
    (void)_oamDbSetProviderMode(object.Handle(), true);
    (void)_oamDbRemoveKeyword(object.Handle(), "Name");
    (void)object.Close();
}

}  // namespace

std::vector<Assignment> ParseAssignments(const std::vector<std::string>& texts) {
    std::vector<Assignment> assignments;
    std::set<std::string, NameLess> seen;
    for (const std::string& text : texts) {
        const size_t sign = text.find('=');
        if (sign == std::string::npos || sign == 0)
            throw UsageError("not of the form KEYWORD=VALUE: " + Quoted(text));
        assignments.push_back({text.substr(0, sign), text.substr(sign + 1)});
        if (!seen.insert(assignments.back().keyword).second)
            throw UsageError("given twice: " + Quoted(assignments.back().keyword));
    }
    return assignments;
}

void ApplyChange(const std::string& name, const std::vector<Assignment>& assignments,
                 bool withoutAlert) {
    for (const Assignment& change : assignments) refuseWhatIsLost(name, change);
    OpenedObject object(name, OAM_OPEN_WRITE);
    // All of them before the first is set: setting one may change another.
    std::vector<Answer> old;
    for (const Assignment& change : assignments) old.push_back(object.Keyword(change.keyword));
    std::vector<Assignment> before;
    for (size_t i = 0; i < assignments.size(); ++i) {
        const Assignment& change = assignments[i];
        const unsigned code =
            _oamSetKeyword(object.Handle(), change.keyword.c_str(), change.value.c_str());
        if (code) {
            takeBack(object, before);
            throw Failure(code,
                          "cannot set " + Quoted(change.keyword) + " of " + Quoted(name) +
                              ", nothing was changed",
                          advice(code))
                .About({name, change.keyword, change.value});
        }
        if (old[i].IsGiven()) before.push_back({change.keyword, old[i].text});
    }
    const unsigned code = withoutAlert ? object.CloseWithoutAlert() : object.Close();
    if (code == OAM_SUCCESS) return;
    const Clash clash = code == OAMERR_ALREADY_EXISTS ? clashOf(name, assignments) : Clash{};
    throw Failure(code, "the change of " + Quoted(name) + " was refused, nothing was changed",
                  clash.rule.empty() ? advice(code) : clash.rule)
        .About({name, clash.keyword, clash.value});
}

}  // namespace oam
