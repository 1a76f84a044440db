#include "tally_keywords.h"

#include <array>
#include <ctime>

#include "oam/entry.h"

namespace oam::watch {
namespace {

std::string codeText(unsigned int code) {
    const char* const name = _oamGetText(code);
    return name != nullptr ? name : std::to_string(code);
}

std::string severityText(unsigned int severity) {
    switch (severity) {
        case OAM_INFORMATION:
            return "Information";
        case OAM_WARNING:
            return "Warning";
        default:
            return "Error";
    }
}

// In UTC, so that nobody needs to know the host's time zone to compare.
std::string timeText(std::chrono::system_clock::time_point time) {
    const auto seconds = std::chrono::system_clock::to_time_t(time);
    std::tm parts{};
    std::array<char, 64> text{};
    gmtime_r(&seconds, &parts);
    (void)std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text.data();
}

template <Outcomes BoardTally::*outcomes, std::uint64_t Outcomes::*number>
std::string outcomeCount(const BoardTally& tally) {
    return std::to_string(tally.*outcomes.*number);
}

template <std::uint64_t BoardTally::*number>
std::string alertCount(const BoardTally& tally) {
    return std::to_string(tally.*number);
}

// Empty until the first outcome.
template <auto LastOutcome::*field, auto text>
std::string lastText(const BoardTally& tally) {
    return tally.last ? text((*tally.last).*field) : std::string();
}

std::string sameAsHeard(const std::string& text) { return text; }

constexpr std::array kMembers = {
    kit::ComputedMember<BoardTally>{".Name", "Object", "the board",
                                    [](const BoardTally& tally) { return tally.name; }},
    kit::ComputedMember<BoardTally>{".Starts.Succeeded", "Integer", "starts that succeeded",
                                    outcomeCount<&BoardTally::starts, &Outcomes::succeeded>},
    kit::ComputedMember<BoardTally>{".Starts.Failed", "Integer", "starts that failed",
                                    outcomeCount<&BoardTally::starts, &Outcomes::failed>},
    kit::ComputedMember<BoardTally>{".Stops.Succeeded", "Integer", "stops that succeeded",
                                    outcomeCount<&BoardTally::stops, &Outcomes::succeeded>},
    kit::ComputedMember<BoardTally>{".Stops.Failed", "Integer", "stops that failed",
                                    outcomeCount<&BoardTally::stops, &Outcomes::failed>},
    kit::ComputedMember<BoardTally>{".Tests.Succeeded", "Integer", "tests that succeeded",
                                    outcomeCount<&BoardTally::tests, &Outcomes::succeeded>},
    kit::ComputedMember<BoardTally>{".Tests.Failed", "Integer", "tests that failed",
                                    outcomeCount<&BoardTally::tests, &Outcomes::failed>},
    kit::ComputedMember<BoardTally>{".Alerts.Information", "Integer", "other alerts that inform",
                                    alertCount<&BoardTally::informations>},
    kit::ComputedMember<BoardTally>{".Alerts.Warning", "Integer", "other alerts that warn",
                                    alertCount<&BoardTally::warnings>},
    kit::ComputedMember<BoardTally>{".Alerts.Error", "Integer", "other alerts that tell an error",
                                    alertCount<&BoardTally::errors>},
    kit::ComputedMember<BoardTally>{".Last.Code", "String", "event of the last outcome",
                                    lastText<&LastOutcome::code, codeText>},
    kit::ComputedMember<BoardTally>{".Last.Text", "String", "text of the last outcome",
                                    lastText<&LastOutcome::text, sameAsHeard>},
    kit::ComputedMember<BoardTally>{".Last.Severity", "String", "severity of the last outcome",
                                    lastText<&LastOutcome::severity, severityText>},
    kit::ComputedMember<BoardTally>{".Last.Time", "String", "when the last outcome was heard, UTC",
                                    lastText<&LastOutcome::time, timeText>},
};

constexpr kit::ComputedArray<BoardTally> kBoards("Boards", "what was heard of each board",
                                                 kMembers);

}  // namespace

const kit::ComputedArray<BoardTally>& tallyKeywords() { return kBoards; }

}  // namespace oam::watch
