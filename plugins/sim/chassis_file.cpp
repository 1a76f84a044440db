#include "chassis_file.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <utility>

#include "kit/kept_text.h"
#include "sensor_watch.h"
#include "text_scan.h"

namespace oam::sim {
namespace {

bool isMacAddress(std::string_view text) {
    constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";
    constexpr std::string_view kSeparator = ":";
    if (text.size() != 17) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto allowed = i % 3 == 2 ? kSeparator : kHexDigits;
        if (allowed.find(text[i]) == std::string_view::npos) return false;
    }
    return true;
}

// A board is checked when it is complete, that is at the next one or at the end.
struct Draft {
    BoardPlan plan;
    unsigned int line = 0;
    bool hasBus = false;
    bool hasSlot = false;
};

class ChassisParser {
  public:
    ChassisReading Parse(std::string_view text) {
        if (text.size() > kLongestFile) {
            Report("the file is too long; its end is not read");
            text = text.substr(0, kLongestFile);
        }
        while (!text.empty()) {
            ++line_;
            const auto end = std::min(text.find('\n'), text.size());
            ReadLine(text.substr(0, end));
            text.remove_prefix(std::min(end + 1, text.size()));
        }
        FinishBoard();
        if (problemCount_ > kMostProblems) {
            const auto more = problemCount_ - kMostProblems;
            reading_.problems.push_back({0, std::to_string(more) + " more problems"});
        }
        return std::move(reading_);
    }

  private:
    // Stores the value in the current board; what is wanted instead when it is no good.
    using Setter = const char* (ChassisParser::*)(std::string_view value);
    struct Key {
        std::string_view word;
        Setter set;
    };
    static const Key* FindKey(std::string_view word);

    void Report(std::string what) { ReportAt(line_, std::move(what)); }
    void ReportAt(unsigned int line, std::string what) {
        if (++problemCount_ <= kMostProblems) reading_.problems.push_back({line, std::move(what)});
    }

    void ReadLine(std::string_view line) {
        if (line.size() > kLongestLine) return Report("the line is too long");
        line = kit::trimmed(line);
        if (line.empty() || line.front() == '#') return;
        if (line.find(':') == std::string_view::npos) {
            return Report("no \"key: value\": " + kit::quoted(line));
        }
        const auto word = takePart(&line, ':');
        const auto value = kit::trimmed(line);
        if (kit::sameText(word, "board")) return BeginBoard(value);
        const auto* key = FindKey(word);
        if (key == nullptr) return Report("unknown key " + kit::quoted(word));
        if (skipping_) return;
        if (!draft_) return Report(kit::quoted(word) + " stands before the first board");
        if (const char* wanted = (this->*key->set)(value)) {
            Report(kit::quoted(key->word) + " wants " + wanted + ", not " + kit::quoted(value));
        }
    }

    void BeginBoard(std::string_view name) {
        FinishBoard();
        skipping_ = !kit::canNameObject(name);
        if (skipping_) return Report("this cannot name a board: " + kit::quoted(name));
        draft_.emplace();
        draft_->plan.name = name;
        draft_->line = line_;
    }

    void FinishBoard() {
        if (!draft_) return;
        auto draft = std::move(*draft_);
        draft_.reset();
        if (const char* lack = WhatIsWrong(draft)) {
            return ReportAt(draft.line, kit::quoted(draft.plan.name) + " is left out: " + lack);
        }
        names_.insert(kit::lowerCase(draft.plan.name));
        locations_.insert(draft.plan.location);
        reading_.boards.push_back(std::move(draft.plan));
    }

    const char* WhatIsWrong(const Draft& draft) const {
        if (draft.plan.product.empty()) return "it has no product";
        if (!draft.hasBus || !draft.hasSlot) return "it has no bus and slot";
        if (!draft.plan.location.IsPlaced()) return "bus 0 slot 0 is no place";
        if (names_.contains(kit::lowerCase(draft.plan.name))) return "its name is taken";
        if (locations_.contains(draft.plan.location)) return "its bus and slot are taken";
        if (reading_.boards.size() == kMostBoards) return "there are too many boards";
        return nullptr;
    }

    const char* SetProduct(std::string_view value) {
        if (!kit::canNameObject(value)) return "a product's name";
        draft_->plan.product = value;
        return nullptr;
    }

    const char* SetBus(std::string_view value) {
        const auto bus = kit::boundedNumber(value, 0, kHighestBus);
        if (!bus) return "a number from 0 to 255";
        draft_->plan.location.bus = static_cast<unsigned int>(*bus);
        draft_->hasBus = true;
        return nullptr;
    }

    const char* SetSlot(std::string_view value) {
        const auto slot = kit::boundedNumber(value, 0, kHighestSlot);
        if (!slot) return "a number from 0 to 31";
        draft_->plan.location.slot = static_cast<unsigned int>(*slot);
        draft_->hasSlot = true;
        return nullptr;
    }

    const char* SetSerial(std::string_view value) {
        if (value.size() > kit::kLongestName || !kit::canKeepValue(value)) return "a serial number";
        draft_->plan.serial = value;
        return nullptr;
    }

    const char* AddMacAddress(std::string_view value) {
        auto& addresses = draft_->plan.macAddresses;
        if (addresses.size() == kMostMacAddresses) return "at most four lines";
        if (!isMacAddress(value)) return "an address like 02:00:00:00:00:01";
        addresses.emplace_back(value);
        return nullptr;
    }

    const char* SetTemperature(std::string_view value) {
        return SetCurve(value, kCoolest, kHottest, &draft_->plan.temperature);
    }
    const char* SetFan(std::string_view value) {
        return SetCurve(value, 0, kFastestFan, &draft_->plan.fan);
    }
    static const char* SetCurve(std::string_view value, int min, int max, Curve* curve) {
        const auto parsed = Curve::Parse(value, min, max);
        if (!parsed) return "a curve like \"350, 600 after 10s\"";
        *curve = *parsed;
        return nullptr;
    }

    template <Operation kOperation>
    const char* SetTime(std::string_view value) {
        const auto time = timeSpan(value);
        if (!time) return "a time like 250ms or 2s, at most an hour";
        draft_->plan.times[kOperation] = time;
        return nullptr;
    }

    template <Operation kOperation>
    const char* SetScript(std::string_view value) {
        const auto script = OutcomeScript::Parse(value);
        if (!script) return "outcomes like \"ok, fail, hang 2s, code 0x50001234\"";
        draft_->plan.scripts[kOperation] = *script;
        return nullptr;
    }

    ChassisReading reading_;
    std::size_t problemCount_ = 0;
    unsigned int line_ = 0;
    std::optional<Draft> draft_;
    bool skipping_ = false;
    std::set<std::string> names_;
    std::set<Location> locations_;
};

const ChassisParser::Key* ChassisParser::FindKey(std::string_view word) {
    static constexpr auto kKeys = std::to_array<Key>({
        {"product", &ChassisParser::SetProduct},
        {"bus", &ChassisParser::SetBus},
        {"slot", &ChassisParser::SetSlot},
        {"serial", &ChassisParser::SetSerial},
        {"mac", &ChassisParser::AddMacAddress},
        {"temperature", &ChassisParser::SetTemperature},
        {"fan", &ChassisParser::SetFan},
        {"start-time", &ChassisParser::SetTime<Operation::Start>},
        {"stop-time", &ChassisParser::SetTime<Operation::Stop>},
        {"test-time", &ChassisParser::SetTime<Operation::Test>},
        {"start", &ChassisParser::SetScript<Operation::Start>},
        {"stop", &ChassisParser::SetScript<Operation::Stop>},
        {"test", &ChassisParser::SetScript<Operation::Test>},
    });
    const auto key = std::find_if(kKeys.begin(), kKeys.end(),
                                  [&](const Key& row) { return kit::sameText(row.word, word); });
    return key == kKeys.end() ? nullptr : key;
}

}  // namespace

ChassisReading parseChassis(std::string_view text) { return ChassisParser().Parse(text); }

}  // namespace oam::sim
