// Threads for calls that may block, bounded, so that one hung plug-in costs its own board alone.
//
// A task has a lane: a board's name (without regard to case), or none. In a lane one task runs at a
// time and the others wait in order; tasks without a lane run as threads are free. At most
// `threads` run at once, and a lane that hangs holds one of them.
//
// Every task has a thread of its own that ends with it: what the service keeps for a thread (a
// table lock that a failed creation has left) is given back then, not when the thread gets its next
// task.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace oam::server {

class Lanes {
  public:
    struct Limits {
        std::size_t threads = 32;
        std::size_t waitingPerLane = 32;
        std::size_t waiting = 1024;
    };
    explicit Lanes(const Limits& limits);
    Lanes(const Lanes&) = delete;
    Lanes& operator=(const Lanes&) = delete;
    // Waits for what runs; what waits is dropped (its destructor runs).
    ~Lanes();

    struct Running {
        std::string what;  // "GetBoardStatus"
        std::string lane;
        std::chrono::steady_clock::time_point since;
        int thread = 0;  // as the kernel numbers threads; 0: it is just beginning
    };

    // Why a task was not taken: who holds its lane, or (lane full of nobody) all threads.
    struct Refusal {
        std::string text;  // "GetBoardStatus of \"Board 3\" has not returned for 40 s"
    };
    // Nothing when it was taken. The task must not throw. A thread that cannot be made is a refusal
    // too.
    std::optional<Refusal> Post(const std::string& what, const std::string& lane,
                                std::function<void()> task);

    // Oldest first.
    std::vector<Running> Runs() const;
    std::size_t Waiting() const;
    // How many may run at once.
    std::size_t Threads() const;

    // Holds new tasks back, waits until none runs (at most `limit`), calls `alone` on this thread,
    // and lets the tasks go on. False, and nothing was called, when the time was over. A task that
    // calls it waits for itself until then. Should the system not have one thread for the tasks
    // that were held back, they are dropped.
    bool Alone(std::chrono::milliseconds limit, const std::function<void()>& alone);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace oam::server
