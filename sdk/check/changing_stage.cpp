// Changing: every keyword is set as its qualifiers allow, and as they do not.
//
// Every trial puts the stored value back; where the module does not let it, the installation is
// thrown away anyhow.
#include <limits>

#include "finding.h"
#include "opened_object.h"
#include "qualifiers.h"
#include "shown.h"
#include "stages.h"

namespace oam::check {
namespace {

constexpr std::size_t kLongestStored = 2047;

// One keyword of an object that is open for writing.
class Trial {
  public:
    Trial(const OpenedObject& object, std::string keyword)
        : object_(object),
          keyword_(std::move(keyword)),
          qualifiers_(Qualifiers::Read(object_, keyword_)),
          original_(object_.Get(keyword_).value_or("")) {}

    // Of the object that is open. The stored value is back at the end, if that can be.
    void Run() {
        if (qualifiers_.isReadOnly) {
            Refused(Rule::ReadOnly, OtherValue());
        } else if (!qualifiers_.choices.empty()) {
            RunChoices();
        } else if (qualifiers_.isNumber) {
            RunNumber();
        } else {
            (void)Try("check");
        }
        RunStorable();
        RunQualifiers();
        Restore();
    }

    // A value that differs from the stored one, and that every other rule allows.
    std::string OtherValue() const {
        for (const auto& choice : qualifiers_.choices)
            if (!EqualNoCase(choice, original_)) return choice;
        if (qualifiers_.isNumber) {
            const auto min = qualifiers_.min.value_or(0);
            return qualifiers_.Written(qualifiers_.NumberOf(original_) == min ? min + 1 : min);
        }
        return original_ + "x";
    }

    void Restore() const {
        if (object_.Get(keyword_) != original_) (void)object_.Set(keyword_, original_);
    }

  private:
    // The answer; what is read afterwards must be what it says.
    oam_result Try(const std::string& value) {
        const std::string before = object_.Get(keyword_).value_or("");
        const auto refused = object_.Set(keyword_, value);
        const std::string after = object_.Get(keyword_).value_or("");
        const std::string& expected = refused ? before : value;
        if (!EqualNoCase(after, expected))
            Tell(Rule::KeptValue, Entry::SetKeyword,
                 Shown(value) + " was " + (refused ? "refused" : "accepted") + ", but now it is " +
                     Quoted(after));
        return refused;
    }

    void Accepted(const std::string& value) {
        const auto refused = Try(value);
        // The value may be another object's, which the service knows.
        if (refused && refused != OAMERR_ALREADY_EXISTS)
            Tell(Rule::Accepts, Entry::SetKeyword, Shown(value) + " was refused");
    }

    void Refused(Rule rule, const std::string& value) {
        if (!Try(value)) Tell(rule, Entry::SetKeyword, Shown(value) + " was accepted");
    }

    void RunChoices() {
        for (const auto& choice : qualifiers_.choices) Accepted(choice);
        for (const char* none : {"no such choice", ""})
            if (!qualifiers_.Allow(none)) Refused(Rule::Choices, none);
    }

    void RunNumber() {
        constexpr std::numeric_limits<long long> kLimits;
        if (qualifiers_.min) {
            Accepted(qualifiers_.Written(*qualifiers_.min));
            if (*qualifiers_.min > kLimits.min())
                Refused(Rule::Range, qualifiers_.Written(*qualifiers_.min - 1));
        }
        if (qualifiers_.max) {
            Accepted(qualifiers_.Written(*qualifiers_.max));
            if (*qualifiers_.max < kLimits.max())
                Refused(Rule::Range, qualifiers_.Written(*qualifiers_.max + 1));
            Refused(Rule::Range, "1" + std::string(30, '0'));
        }
        for (const char* noNumber : {"", "no number", "1 2"}) Refused(Rule::Range, noNumber);
    }

    void RunStorable() {
        Refused(Rule::Storable, "a<b");
        Refused(Rule::Storable, std::string(kLongestStored + 1, '1'));
    }

    // A stored qualifier is an entry of its own, which must not be a client's way around the rules.
    void RunQualifiers() {
        for (const char* qualifier : {"ReadOnly", "Max", "Type"}) {
            const auto before = object_.GetQualifier(keyword_, qualifier);
            if (!before) continue;
            const std::string entry = keyword_ + "?" + qualifier;
            if (object_.Set(entry, *before + "0") != OAM_SUCCESS) continue;
            if (object_.GetQualifier(keyword_, qualifier) == before) continue;
            Tell(Rule::FixedQualifiers, Entry::SetKeyword, Quoted(entry) + " was changed");
            (void)object_.Set(entry, *before);
        }
    }

    std::string Shown(const std::string& value) const {
        return Quoted(keyword_) + " to " + Quoted(value);
    }

    const OpenedObject& object_;
    std::string keyword_;
    Qualifiers qualifiers_;
    std::string original_;
};

std::vector<std::string> settable(const OpenedObject& object) {
    auto names = object.Keywords();
    // The name is the service's own business; it has a rule of its own.
    std::erase_if(names, [](const auto& name) { return EqualNoCase(name, "Name"); });
    return names;
}

std::vector<std::string> settableOf(const std::string& name) {
    const OpenedObject object(name, OAM_OPEN_READ);
    return object.Failure() ? std::vector<std::string>() : settable(object);
}

// Nothing when nobody may change the object, or the close was refused.
std::optional<std::string> valueBehindClose(OpenedObject& object, const std::string& keyword) {
    if (object.Close()) return {};
    const OpenedObject again(object.Name(), OAM_OPEN_READ);
    return again.Failure() ? std::nullopt : again.Get(keyword);
}

void checkTrials(const std::string& name, const std::string& keyword) {
    OpenedObject object(name, OAM_OPEN_WRITE);
    if (object.Failure()) return;
    Trial(object, keyword).Run();
}

// What was accepted is still there when the object has been closed.
void checkKeeping(const std::string& name, const std::string& keyword) {
    OpenedObject object(name, OAM_OPEN_WRITE);
    if (object.Failure()) return;
    const std::string before = object.Get(keyword).value_or("");
    const std::string other = Trial(object, keyword).OtherValue();
    if (object.Set(keyword, other)) return;
    const auto kept = valueBehindClose(object, keyword);
    if (kept && !EqualNoCase(*kept, other))
        Tell(Rule::KeptValue, Entry::CloseObject,
             Quoted(keyword) + " was set to " + Quoted(other) + " and is " + Quoted(*kept) +
                 " when the object has been closed");
    const OpenedObject again(name, OAM_OPEN_WRITE);
    if (!again.Failure()) (void)again.Set(keyword, before);
}

}  // namespace

void CheckChanging(Bench& bench) {
    if (!bench.Start()) return;
    (void)bench.CreateBoards();
    for (const auto& name : bench.Objects())
        for (const auto& keyword : settableOf(name)) {
            if (bench.Next()) checkTrials(name, keyword);
            if (bench.Next()) checkKeeping(name, keyword);
        }
    bench.Stop();
}

}  // namespace oam::check
