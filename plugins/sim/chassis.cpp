#include "chassis.h"

#include <iterator>

namespace oam::sim {
namespace {

void append(std::vector<BoardEvent>&& more, std::vector<BoardEvent>* events) {
    events->insert(events->end(), std::make_move_iterator(more.begin()),
                   std::make_move_iterator(more.end()));
}

}  // namespace

std::vector<BoardEvent> Chassis::Load(const std::vector<BoardPlan>& plans,
                                      const Thresholds& thresholds) {
    std::vector<BoardEvent> events;
    const std::lock_guard hold(lock_);
    if (isEnded_) return events;
    Slots slots;
    for (const auto& plan : plans) {
        const auto old = slots_.find(plan.location);
        const bool stays = old != slots_.end() && old->second->Adopt(plan);
        slots[plan.location] =
            stays ? old->second : std::make_shared<SimulatedBoard>(plan, thresholds);
    }
    slots_.swap(slots);
    for (const auto& [location, board] : slots) {
        const auto now = slots_.find(location);
        const bool isGone = now == slots_.end() || now->second != board;
        if (isGone) append(board->Remove(), &events);
    }
    return events;
}

std::shared_ptr<SimulatedBoard> Chassis::At(Location location) const {
    const std::lock_guard hold(lock_);
    const auto found = slots_.find(location);
    return found == slots_.end() ? nullptr : found->second;
}

std::vector<std::shared_ptr<SimulatedBoard>> Chassis::Boards() const {
    const std::lock_guard hold(lock_);
    std::vector<std::shared_ptr<SimulatedBoard>> boards;
    for (const auto& [location, board] : slots_) boards.push_back(board);
    return boards;
}

std::vector<BoardEvent> Chassis::Look(Clock::time_point now) {
    std::vector<BoardEvent> events;
    for (const auto& board : Boards()) append(board->Look(now), &events);
    return events;
}

std::optional<Clock::time_point> Chassis::NextStep(Clock::time_point now) const {
    std::optional<Clock::time_point> next;
    for (const auto& board : Boards()) {
        const auto step = board->NextStep(now);
        if (step && (!next || *step < *next)) next = step;
    }
    return next;
}

void Chassis::End() {
    const std::lock_guard hold(lock_);
    isEnded_ = true;
    for (const auto& [location, board] : slots_) board->End();
}

}  // namespace oam::sim
