// One simulated board: the hardware in a slot, whatever it is configured as.
//
// The service lets one operation at a time through for each configured board; the board itself
// refuses a second one, because two configured boards may claim the same slot. An operation waits
// on the board's own condition, so removal, death and the plug-in's Exit end it at once.
//
// The board's lock guards everything below it and is held for no call that leaves the plug-in: what
// an alert must tell is returned as events, and the caller raises them afterwards.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "board_plan.h"
#include "operation.h"
#include "sensor_watch.h"

namespace oam::sim {

using Clock = std::chrono::steady_clock;

// What an operation takes and how it ends when the chassis file says nothing.
struct OperationDefault {
    std::chrono::milliseconds time{0};
    oam_result result = OAM_SUCCESS;
};

struct BoardStatus {
    RunState state = RunState::Stopped;
    Readings readings;
    std::chrono::seconds uptime{0};
};

class SimulatedBoard {
  public:
    SimulatedBoard(const BoardPlan& plan, const Thresholds& thresholds);

    SimulatedBoard(const SimulatedBoard&) = delete;
    SimulatedBoard& operator=(const SimulatedBoard&) = delete;

    // What the file says of it now. A change of behaviour applies to the board that is there; one
    // of product or serial number is another board, which is refused.
    bool Adopt(const BoardPlan& plan);

    BoardPlan Plan() const;
    bool IsPresent() const;

    // Runs the operation to its end, in its own time. A stop of a stopped board is done at once; a
    // test leaves the board in the state that it found.
    oam_result Run(Operation operation, const OperationDefault& usual);

    // SIM_BOARD_NOT_IN_SLOT for a board that was pulled.
    oam_result Read(BoardStatus* status) const;

    void SetThresholds(const Thresholds& thresholds);
    void SetTemperature(int tenths);
    void SetFan(int revolutions);
    void FailNext(Operation operation, unsigned int times);

    // A pulled board keeps its place: it can be put back, and is then stopped and sound.
    std::vector<BoardEvent> Remove();
    std::vector<BoardEvent> Die();
    void Insert();

    // Stops the board whatever it does; its configuration is gone.
    void Reset();

    // Ends the running operation; none begins any more.
    void End();

    // The events that are due, and when to look again if nobody touches the board. The two take
    // the same time, so that no step falls between them.
    std::vector<BoardEvent> Look(Clock::time_point now);
    std::optional<Clock::time_point> NextStep(Clock::time_point now) const;

  private:
    oam_result WhyNotNow() const;
    oam_result TakeOutcome(Operation operation, const OperationDefault& usual,
                           std::chrono::milliseconds* time);
    void Enter(RunState state);
    void Interrupt(oam_result result, RunState state);
    BoardEvent Lost(const char* text) const;
    Clock::duration Age(Clock::time_point now) const;
    Readings Sensors(Clock::time_point now) const;

    mutable std::mutex lock_;
    std::condition_variable interrupted_;
    BoardPlan plan_;
    Thresholds thresholds_;
    RunState state_ = RunState::Stopped;
    bool isPresent_ = true;
    bool isDead_ = false;
    bool isEnding_ = false;

    // Counts interruptions, so that an operation knows that it no longer owns the state.
    unsigned int interruptions_ = 0;
    oam_result interruption_ = OAM_SUCCESS;

    std::optional<Clock::time_point> runningSince_;
    std::optional<int> temperatureByHand_;
    std::optional<int> fanByHand_;
    PerOperation<unsigned int> failures_;
    SensorWatch watch_;
};

}  // namespace oam::sim
