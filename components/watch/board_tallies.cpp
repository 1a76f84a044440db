#include "board_tallies.h"

#include <algorithm>
#include <array>
#include <tuple>

#include "kit/kept_text.h"
#include "oam/codes.h"
#include "oam/message.h"

namespace oam::watch {
namespace {

struct OperationRow {
    unsigned int code;
    Outcomes BoardTally::*outcomes;
};

constexpr std::array kOperations = {
    OperationRow{OAMEVN_STARTBOARD_DONE, &BoardTally::starts},
    OperationRow{OAMEVN_STOPBOARD_DONE, &BoardTally::stops},
    OperationRow{OAMEVN_TESTBOARD_DONE, &BoardTally::tests},
};

const OperationRow* findOperation(unsigned int code) {
    const auto row = std::ranges::find(kOperations, code, &OperationRow::code);
    return row == kOperations.end() ? nullptr : row;
}

std::uint64_t& bySeverity(BoardTally& tally, unsigned int severity) {
    switch (severity) {
        case OAM_INFORMATION:
            return tally.informations;
        case OAM_WARNING:
            return tally.warnings;
        default:
            return tally.errors;
    }
}

// No object has another kind of name, so nobody would ever ask for the counts.
bool canBeBoard(std::string_view name) { return !name.empty() && name.size() <= kit::kLongestName; }

}  // namespace

bool BoardTallies::Hear(const HeardAlert& alert, const FailureLimit& limit) {
    if (!canBeBoard(alert.source)) return false;
    const std::lock_guard hold(lock_);
    if (alert.code == OAMEVN_DELETED) {
        Forget(alert.source);
        return false;
    }
    if (alert.code == OAMEVN_RENAMED) Rename(alert.text, alert.source);
    auto& entry = EntryOf(alert.source);
    entry.lastHeard = ++heard_;
    const auto* const operation = findOperation(alert.code);
    if (operation == nullptr) {
        ++bySeverity(entry.tally, alert.severity);
        return false;
    }
    entry.isBoard = true;
    entry.tally.last = {.code = alert.code,
                        .severity = alert.severity,
                        .text = std::string(kit::trimmed(alert.text)),
                        .time = alert.time};
    auto& outcomes = entry.tally.*operation->outcomes;
    if (alert.severity == OAM_INFORMATION) {
        ++outcomes.succeeded;
        return false;
    }
    ++outcomes.failed;
    return entry.failures.Add(alert.moment, limit);
}

std::vector<BoardTallies::Known> BoardTallies::List() const {
    const std::lock_guard hold(lock_);
    std::vector<Known> known;
    known.reserve(ids_.size());
    for (const auto& [key, id] : ids_) known.push_back({id, entries_.at(id).tally.name});
    return known;
}

void BoardTallies::Confirm(const std::vector<Id>& boards) {
    const std::lock_guard hold(lock_);
    for (const auto id : boards) {
        const auto found = entries_.find(id);
        if (found != entries_.end()) found->second.isBoard = true;
    }
}

std::optional<BoardTally> BoardTallies::Get(Id id) const {
    const std::lock_guard hold(lock_);
    const auto found = entries_.find(id);
    if (found == entries_.end()) return {};
    return found->second.tally;
}

void BoardTallies::Reset() {
    const std::lock_guard hold(lock_);
    entries_.clear();
    ids_.clear();
}

BoardTallies::Entry& BoardTallies::EntryOf(std::string_view name) {
    const auto key = kit::lowerCase(name);
    const auto found = ids_.find(key);
    if (found != ids_.end()) return entries_.at(found->second);
    MakeRoom();
    auto& entry = entries_[nextId_];
    ids_[key] = nextId_++;
    entry.tally.name = name;
    return entry;
}

void BoardTallies::MakeRoom() {
    if (entries_.size() < kMostSources) return;
    const auto worth = [](const Entries::value_type& known) {
        return std::tuple(known.second.isBoard, known.second.lastHeard);
    };
    const auto least = std::ranges::min_element(entries_, {}, worth);
    ids_.erase(kit::lowerCase(least->second.tally.name));
    entries_.erase(least);
}

void BoardTallies::Rename(std::string_view from, std::string_view to) {
    auto moved = ids_.extract(kit::lowerCase(from));
    if (moved.empty()) return;
    const Id id = moved.mapped();
    // What was known under the new name was another's: no two objects have one name.
    Forget(to);
    moved.key() = kit::lowerCase(to);
    ids_.insert(std::move(moved));
    entries_.at(id).tally.name = to;
}

void BoardTallies::Forget(std::string_view name) {
    const auto found = ids_.find(kit::lowerCase(name));
    if (found == ids_.end()) return;
    entries_.erase(found->second);
    ids_.erase(found);
}

}  // namespace oam::watch
