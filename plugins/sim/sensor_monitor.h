// The thread that follows the sensors' curves and tells what it finds.
//
// It looks at the chassis with no lock of its own held and delivers with none at all. End stops it
// and waits for it. A delivery is waited for with a limit only: its receiver may want a lock that
// the thread which ends the plug-in holds. The monitor is then let go; it touches nothing but what
// it co-owns, ends after that delivery, and the plug-in's file stays mapped.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "chassis.h"

namespace oam::sim {

class SensorMonitor {
  public:
    using Deliver = std::function<void(const std::vector<BoardEvent>&)>;

    SensorMonitor() = default;
    ~SensorMonitor() { End(kPatience); }

    SensorMonitor(const SensorMonitor&) = delete;
    SensorMonitor& operator=(const SensorMonitor&) = delete;

    // Throws std::system_error when there can be no thread.
    void Begin(std::shared_ptr<Chassis> chassis, Deliver deliver);

    // Something changed that may have moved the next step.
    void Wake();

    // Waits so long for a delivery that is under way.
    static constexpr std::chrono::seconds kPatience{2};
    void End(std::chrono::milliseconds patience);

  private:
    struct State {
        std::mutex lock;
        std::condition_variable changed;
        bool isWoken = false;
        bool isDelivering = false;
        bool isEnding = false;
    };

    static void Follow(State& state, Chassis& chassis, const Deliver& deliver);

    const std::shared_ptr<State> state_ = std::make_shared<State>();
    std::thread thread_;
};

}  // namespace oam::sim
