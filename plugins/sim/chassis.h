// The simulated chassis: which board is in which slot now.
//
// The lock guards the map alone. A board is handed out as a shared pointer, so that a thread that
// works with one needs neither the lock nor the map: detection may replace the board, and Exit may
// end the simulation, under its feet. A board's lock may be taken under the chassis' one, never the
// other way round.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "simulated_board.h"

namespace oam::sim {

class Chassis {
  public:
    // Makes the slots as planned. A board that is still there goes on with what it does; one that
    // is gone is as good as pulled, and its events are returned. After End it changes nothing.
    std::vector<BoardEvent> Load(const std::vector<BoardPlan>& plans, const Thresholds& thresholds);

    // Null when there is no such slot.
    std::shared_ptr<SimulatedBoard> At(Location location) const;

    // In the order of their locations.
    std::vector<std::shared_ptr<SimulatedBoard>> Boards() const;

    // The events that are due on all boards, and when to look again; see SimulatedBoard.
    std::vector<BoardEvent> Look(Clock::time_point now);
    std::optional<Clock::time_point> NextStep(Clock::time_point now) const;

    void End();

  private:
    using Slots = std::map<Location, std::shared_ptr<SimulatedBoard>>;

    mutable std::mutex lock_;
    Slots slots_;
    bool isEnded_ = false;
};

}  // namespace oam::sim
