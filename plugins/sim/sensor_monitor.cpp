#include "sensor_monitor.h"

#include <utility>

namespace oam::sim {

void SensorMonitor::Begin(std::shared_ptr<Chassis> chassis, Deliver deliver) {
    thread_ =
        std::thread([state = state_, chassis = std::move(chassis), deliver = std::move(deliver)] {
            try {
                Follow(*state, *chassis, deliver);
            } catch (...) {
                // Short of memory the curves stand still; the host goes on.
            }
        });
}

void SensorMonitor::Follow(State& state, Chassis& chassis, const Deliver& deliver) {
    std::unique_lock hold(state.lock);
    while (!state.isEnding) {
        state.isWoken = false;
        hold.unlock();
        const auto now = Clock::now();
        const auto events = chassis.Look(now);
        const auto next = chassis.NextStep(now);
        hold.lock();
        if (state.isEnding) return;
        if (!events.empty()) {
            state.isDelivering = true;
            hold.unlock();
            deliver(events);
            hold.lock();
            state.isDelivering = false;
            state.changed.notify_all();
        }
        const auto isTouched = [&] { return state.isWoken || state.isEnding; };
        if (next) {
            state.changed.wait_until(hold, *next, isTouched);
        } else {
            state.changed.wait(hold, isTouched);
        }
    }
}

void SensorMonitor::Wake() {
    const std::lock_guard hold(state_->lock);
    state_->isWoken = true;
    state_->changed.notify_all();
}

void SensorMonitor::End(std::chrono::milliseconds patience) {
    if (!thread_.joinable()) return;
    std::unique_lock hold(state_->lock);
    state_->isEnding = true;
    state_->changed.notify_all();
    if (!state_->changed.wait_for(hold, patience, [&] { return !state_->isDelivering; })) {
        return thread_.detach();
    }
    hold.unlock();
    thread_.join();
}

}  // namespace oam::sim
