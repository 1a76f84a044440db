#include "seen.h"

namespace oam::torture {
namespace {

using State = v1::Operation::State;

bool isOutcome(State state) {
    return state == v1::Operation::STATE_DONE || state == v1::Operation::STATE_FAILED ||
           state == v1::Operation::STATE_REFUSED;
}

}  // namespace

void Seen::Attempt(const std::string& board, const std::string& value) {
    const std::lock_guard hold(mutex_);
    boards_[board].underWay.insert(value);
}

void Seen::Acknowledge(const std::string& board, const std::string& value) {
    const std::lock_guard hold(mutex_);
    ++changes_;
    boards_[board] = {value, {}};
}

void Seen::Found(const std::string& board, const std::string& value) {
    const std::lock_guard hold(mutex_);
    Board& known = boards_[board];
    if (value != known.acknowledged && known.underWay.count(value) == 0)
        faults_.push_back(board + " has \"" + value + "\" after \"" + known.acknowledged +
                          "\" was acknowledged");
    known = {value, {}};
}

void Seen::Given(const std::string& operation) {
    const std::lock_guard hold(mutex_);
    if (!operations_.emplace(operation, v1::Operation::STATE_RUNNING).second)
        faults_.push_back("operation " + operation + " was given twice");
}

void Seen::Told(const v1::Operation& operation, bool isLaterLife) {
    const std::lock_guard hold(mutex_);
    State& known = operations_[operation.id()];
    const State told = operation.state();
    if (isLaterLife && told == v1::Operation::STATE_RUNNING)
        faults_.push_back("operation " + operation.id() + " still runs after the kill");
    // Unknown is for ever; an outcome that was told stays, or was lost with the daemon.
    const bool isLost = isOutcome(known) && told == v1::Operation::STATE_UNKNOWN && isLaterLife;
    const bool isKept = known == told || known == v1::Operation::STATE_RUNNING;
    if (!isKept && !isLost)
        faults_.push_back("operation " + operation.id() + " was " +
                          v1::Operation::State_Name(known) + " and is " +
                          v1::Operation::State_Name(told));
    known = told;
}

std::vector<std::string> Seen::Operations() const {
    const std::lock_guard hold(mutex_);
    std::vector<std::string> all;
    for (const auto& [id, state] : operations_) all.push_back(id);
    return all;
}

void Seen::Alert(const v1::Alert& alert) {
    const std::lock_guard hold(mutex_);
    // The name of its code may be asked for later only.
    v1::Alert same = alert;
    same.clear_code_name();
    const std::string text = same.ShortDebugString();
    const auto [known, isNew] = alerts_.emplace(alert.sequence(), text);
    if (!isNew && known->second != text)
        faults_.push_back("one number, two alerts: " + known->second + " and " + text);
}

std::uint64_t Seen::Newest() const {
    const std::lock_guard hold(mutex_);
    return alerts_.empty() ? 0 : alerts_.rbegin()->first;
}

void Seen::Fault(const std::string& fault) {
    const std::lock_guard hold(mutex_);
    faults_.push_back(fault);
}

std::vector<std::string> Seen::Faults() const {
    const std::lock_guard hold(mutex_);
    return faults_;
}

std::size_t Seen::Changes() const {
    const std::lock_guard hold(mutex_);
    return changes_;
}

std::size_t Seen::Alerts() const {
    const std::lock_guard hold(mutex_);
    return alerts_.size();
}

}  // namespace oam::torture
