// Chassis files of the simulated chassis: any bytes are safe input, and what is taken from them
// keeps the file's own rules.
//
// A board that was taken can be written down again and is then taken without a problem. A blank
// line in front moves the problems down by one line and changes nothing else.
#include <algorithm>
#include <set>
#include <string>

#include "chassis_file.h"
#include "fuzz_target.h"
#include "kit/kept_text.h"
#include "sensor_watch.h"
#include "text_scan.h"

namespace {

using namespace oam::sim;
namespace kit = oam::kit;
using oam::fuzz::Require;

bool isSamePlan(const BoardPlan& left, const BoardPlan& right) {
    return left.name == right.name && left.product == right.product &&
           left.location == right.location && left.serial == right.serial &&
           left.macAddresses == right.macAddresses;
}

bool areSamePlans(const ChassisReading& left, const ChassisReading& right) {
    return std::equal(left.boards.begin(), left.boards.end(), right.boards.begin(),
                      right.boards.end(), isSamePlan);
}

void holdsValues(const Curve& curve, int min, int max) {
    std::chrono::milliseconds age{0};
    for (std::size_t steps = 1;; ++steps) {
        const int value = curve.ValueAt(age);
        Require(value >= min && value <= max, "a curve's values are in their range");
        const auto next = curve.NextStep(age);
        if (!next) return;
        Require(steps < Curve::kLongest, "a curve is not too long");
        Require(*next > age && *next <= kLongestTime, "a curve's steps follow each other");
        age = *next;
    }
}

void holdsOutcomes(OutcomeScript script) {
    for (std::size_t i = 0; i <= OutcomeScript::kLongest; ++i) {
        const auto outcome = script.TakeNext();
        if (!outcome) return;
        Require(outcome->hang.count() >= 0 && outcome->hang <= kLongestTime, "a hang ends");
        Require((outcome->kind == Outcome::Kind::Code) == (outcome->code != OAM_SUCCESS),
                "a code is a failure's");
    }
    const auto last = script.TakeNext();
    Require(last && last == script.TakeNext(), "the last outcome stays");
}

void keepsTheRules(const BoardPlan& plan) {
    Require(kit::canNameObject(plan.name) && kit::canNameObject(plan.product),
            "names can be stored");
    Require(kit::canKeepValue(plan.serial) && plan.serial.size() <= kit::kLongestName,
            "serial numbers can be stored");
    Require(plan.location.IsPlaced() && plan.location.bus <= kHighestBus &&
                plan.location.slot <= kHighestSlot,
            "a board has a place");
    Require(plan.macAddresses.size() <= kMostMacAddresses, "not too many addresses");
    holdsValues(plan.temperature, kCoolest, kHottest);
    holdsValues(plan.fan, 0, kFastestFan);
    for (const Operation operation : {Operation::Start, Operation::Stop, Operation::Test}) {
        const auto& time = plan.times[operation];
        Require(!time || (time->count() >= 0 && *time <= kLongestTime), "an operation ends");
        holdsOutcomes(plan.scripts[operation]);
    }
}

void keepsTheRules(const ChassisReading& reading, std::string_view text) {
    Require(reading.boards.size() <= kMostBoards, "not too many boards");
    std::set<std::string> names;
    std::set<Location> locations;
    for (const BoardPlan& plan : reading.boards) {
        keepsTheRules(plan);
        Require(names.insert(kit::lowerCase(plan.name)).second, "no name comes twice");
        Require(locations.insert(plan.location).second, "no place comes twice");
    }
    Require(reading.problems.size() <= kMostProblems + 1, "problems are counted, not listed");
    const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
    for (const ChassisProblem& problem : reading.problems) {
        Require(problem.line <= lines, "a problem is in the file");
        Require(!problem.what.empty() && !kit::hasControl(problem.what), "a problem can be shown");
    }
}

std::string writtenDown(const ChassisReading& reading) {
    std::string text;
    for (const BoardPlan& plan : reading.boards) {
        text += "board: " + plan.name + "\nproduct: " + plan.product;
        text += "\nbus: " + std::to_string(plan.location.bus);
        text += "\nslot: " + std::to_string(plan.location.slot);
        text += "\nserial: " + plan.serial + '\n';
        for (const std::string& address : plan.macAddresses) text += "mac: " + address + '\n';
    }
    return text;
}

void movesDown(const ChassisReading& reading, std::string_view text) {
    const ChassisReading moved = parseChassis("\n" + std::string(text));
    Require(areSamePlans(reading, moved), "a blank line changes no board");
    const auto isMoved = [](const ChassisProblem& before, const ChassisProblem& after) {
        return after.what == before.what && after.line == (before.line ? before.line + 1 : 0);
    };
    Require(std::equal(reading.problems.begin(), reading.problems.end(), moved.problems.begin(),
                       moved.problems.end(), isMoved),
            "a blank line moves the problems");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = oam::fuzz::AsText(data, size);
    const ChassisReading reading = parseChassis(text);
    keepsTheRules(reading, text);
    movesDown(reading, text);
    const ChassisReading again = parseChassis(writtenDown(reading));
    Require(again.problems.empty(), "a board that was taken is taken again");
    Require(areSamePlans(reading, again), "a board that was taken is the same again");
    return 0;
}
