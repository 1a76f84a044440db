#include "simulated_board.h"

#include <algorithm>
#include <utility>

#include "sim_codes.h"

namespace oam::sim {

SimulatedBoard::SimulatedBoard(const BoardPlan& plan, const Thresholds& thresholds)
    : plan_(plan), thresholds_(thresholds) {}

bool SimulatedBoard::Adopt(const BoardPlan& plan) {
    const std::lock_guard hold(lock_);
    if (plan.product != plan_.product || plan.serial != plan_.serial) return false;
    const auto old = std::exchange(plan_, plan);
    for (const auto operation : {Operation::Start, Operation::Stop, Operation::Test}) {
        // A script that is written as before goes on where it is.
        if (old.scripts[operation].SameSteps(plan.scripts[operation])) {
            plan_.scripts[operation] = old.scripts[operation];
        }
    }
    return true;
}

BoardPlan SimulatedBoard::Plan() const {
    const std::lock_guard hold(lock_);
    return plan_;
}

bool SimulatedBoard::IsPresent() const {
    const std::lock_guard hold(lock_);
    return isPresent_;
}

oam_result SimulatedBoard::Run(Operation operation, const OperationDefault& usual) {
    std::unique_lock hold(lock_);
    if (const auto refused = WhyNotNow()) return refused;
    if (operation == Operation::Stop && state_ == RunState::Stopped) return OAM_SUCCESS;

    auto time = usual.time;
    const auto result = TakeOutcome(operation, usual, &time);
    const auto before = state_;
    const auto interruptions = interruptions_;
    state_ = rowOf(operation).during;
    interrupted_.wait_for(hold, time, [&] { return interruptions != interruptions_; });
    if (interruptions != interruptions_) return interruption_;

    switch (operation) {
        case Operation::Start:
            Enter(result ? RunState::Failed : RunState::Running);
            break;
        case Operation::Stop:
            Enter(result ? RunState::Failed : RunState::Stopped);
            break;
        case Operation::Test:
            state_ = before;
            break;
    }
    return result;
}

oam_result SimulatedBoard::WhyNotNow() const {
    if (isEnding_) return SIM_ENDING;
    if (!isPresent_) return SIM_BOARD_NOT_IN_SLOT;
    if (isDead_) return SIM_BOARD_DEAD;
    const bool isBusy = std::any_of(kOperations.begin(), kOperations.end(),
                                    [&](const OperationRow& row) { return row.during == state_; });
    return isBusy ? SIM_BOARD_BUSY : OAM_SUCCESS;
}

oam_result SimulatedBoard::TakeOutcome(Operation operation, const OperationDefault& usual,
                                       std::chrono::milliseconds* time) {
    *time = plan_.times[operation].value_or(usual.time);
    if (failures_[operation] > 0) {
        --failures_[operation];
        return rowOf(operation).failure;
    }
    const auto outcome = plan_.scripts[operation].TakeNext();
    if (!outcome) return usual.result;
    switch (outcome->kind) {
        case Outcome::Kind::Succeed:
            break;
        case Outcome::Kind::Fail:
            return rowOf(operation).failure;
        case Outcome::Kind::Hang:
            *time = outcome->hang;
            return SIM_NO_ANSWER;
        case Outcome::Kind::Code:
            return outcome->code;
    }
    return OAM_SUCCESS;
}

// A reading set by hand holds until the board starts, when the curves begin.
void SimulatedBoard::Enter(RunState state) {
    state_ = state;
    runningSince_.reset();
    if (state != RunState::Running) return;
    runningSince_ = Clock::now();
    temperatureByHand_.reset();
    fanByHand_.reset();
}

void SimulatedBoard::Interrupt(oam_result result, RunState state) {
    ++interruptions_;
    interruption_ = result;
    Enter(state);
    interrupted_.notify_all();
}

oam_result SimulatedBoard::Read(BoardStatus* status) const {
    const std::lock_guard hold(lock_);
    if (!isPresent_) return SIM_BOARD_NOT_IN_SLOT;
    const auto now = Clock::now();
    status->state = state_;
    status->readings = Sensors(now);
    status->uptime = std::chrono::duration_cast<std::chrono::seconds>(Age(now));
    return OAM_SUCCESS;
}

void SimulatedBoard::SetThresholds(const Thresholds& thresholds) {
    const std::lock_guard hold(lock_);
    thresholds_ = thresholds;
}

void SimulatedBoard::SetTemperature(int tenths) {
    const std::lock_guard hold(lock_);
    temperatureByHand_ = tenths;
}

void SimulatedBoard::SetFan(int revolutions) {
    const std::lock_guard hold(lock_);
    fanByHand_ = revolutions;
}

void SimulatedBoard::FailNext(Operation operation, unsigned int times) {
    const std::lock_guard hold(lock_);
    failures_[operation] = times;
}

std::vector<BoardEvent> SimulatedBoard::Remove() {
    const std::lock_guard hold(lock_);
    const bool wasRunning = runningSince_.has_value();
    isPresent_ = false;
    Interrupt(SIM_BOARD_NOT_IN_SLOT, RunState::Stopped);
    if (!wasRunning) return {};
    return {Lost("The board was removed while it was running.")};
}

std::vector<BoardEvent> SimulatedBoard::Die() {
    const std::lock_guard hold(lock_);
    if (!isPresent_ || isDead_) return {};
    isDead_ = true;
    Interrupt(SIM_BOARD_DEAD, RunState::Failed);
    return {Lost("The board does not answer any more.")};
}

void SimulatedBoard::Insert() {
    const std::lock_guard hold(lock_);
    if (isPresent_ && !isDead_) return;
    isPresent_ = true;
    isDead_ = false;
    Enter(RunState::Stopped);
}

void SimulatedBoard::Reset() {
    const std::lock_guard hold(lock_);
    Interrupt(SIM_BOARD_NOT_IN_SLOT, isDead_ ? RunState::Failed : RunState::Stopped);
}

void SimulatedBoard::End() {
    const std::lock_guard hold(lock_);
    isEnding_ = true;
    Interrupt(SIM_ENDING, RunState::Stopped);
}

std::vector<BoardEvent> SimulatedBoard::Look(Clock::time_point now) {
    const std::lock_guard hold(lock_);
    if (!isPresent_ || isDead_) return {};
    return watch_.Look(plan_.location, Sensors(now), thresholds_);
}

std::optional<Clock::time_point> SimulatedBoard::NextStep(Clock::time_point now) const {
    const std::lock_guard hold(lock_);
    if (!runningSince_) return {};
    std::optional<std::chrono::milliseconds> next;
    for (const auto* curve : {&plan_.temperature, &plan_.fan}) {
        const auto step = curve->NextStep(Age(now));
        if (step && (!next || *step < *next)) next = step;
    }
    if (!next) return {};
    return *runningSince_ + *next;
}

BoardEvent SimulatedBoard::Lost(const char* text) const {
    return {
        .location = plan_.location, .code = OAMEVN_BOARD_DEAD, .severity = OAM_ERROR, .text = text};
}

Clock::duration SimulatedBoard::Age(Clock::time_point now) const {
    return runningSince_ ? now - *runningSince_ : Clock::duration::zero();
}

Readings SimulatedBoard::Sensors(Clock::time_point now) const {
    const auto age = Age(now);
    return {.temperature = temperatureByHand_.value_or(plan_.temperature.ValueAt(age)),
            .fan = fanByHand_.value_or(plan_.fan.ValueAt(age))};
}

}  // namespace oam::sim
