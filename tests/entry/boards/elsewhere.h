// Work on another thread that a test can wait for without being caught in its hang.
#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <thread>
#include <utility>

namespace oam::test {

// Long enough to see that a thread is held back; only a wrong service is slower to go on.
constexpr std::chrono::milliseconds kHeldBack{300};
constexpr std::chrono::seconds kPatience{30};

// The threads of this process, as the system counts them.
size_t ThreadCount();
// Waits until there are at most so many; false when the patience is over.
bool WaitForThreads(size_t count);

// While it lives, a thread with the default stack size cannot be made: none has room for its stack.
class NoNewThreads {
  public:
    NoNewThreads();
    ~NoNewThreads();
    NoNewThreads(const NoNewThreads&) = delete;
    NoNewThreads& operator=(const NoNewThreads&) = delete;

  private:
    size_t stackSize_ = 0;
};

template <class Result>
class Elsewhere {
  public:
    explicit Elsewhere(std::function<Result()> work) {
        std::packaged_task<Result()> task(std::move(work));
        result_ = task.get_future();
        std::thread(std::move(task)).detach();
    }

    // True while the work is not done, after a look of some length.
    bool IsHeldBack() { return result_.wait_for(kHeldBack) == std::future_status::timeout; }
    bool IsDone(std::chrono::milliseconds limit = kPatience) {
        return result_.wait_for(limit) == std::future_status::ready;
    }
    // Only after IsDone.
    Result Get() { return result_.get(); }

  private:
    std::future<Result> result_;
};

}  // namespace oam::test
