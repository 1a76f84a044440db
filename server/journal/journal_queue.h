// Lines on their way into the systemd journal. A thread of its own sends them, so that a journal
// that takes none keeps nobody waiting; lines that there is no room for are left out, which the
// next one tells. Any thread.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace oam::server {

class JournalQueue {
  public:
    using Fields = std::vector<std::string>;
    using Send = std::function<void(const Fields& fields)>;

    // `room` for so many lines that wait.
    JournalQueue(Send send, std::size_t room);
    // The rest is sent, unless the journal takes nothing.
    ~JournalQueue();
    JournalQueue(const JournalQueue&) = delete;
    JournalQueue& operator=(const JournalQueue&) = delete;

    void Put(const Fields& fields);

  private:
    // Outlives the queue when the journal takes nothing at the end.
    struct State {
        Send send;
        std::size_t room = 0;
        std::mutex mutex;
        std::condition_variable changed;
        std::deque<Fields> lines;
        std::size_t leftOut = 0;
        bool isEnding = false;
        bool isDone = false;
    };

    static void Work(State& state);

    const std::shared_ptr<State> state_;
    std::thread thread_;
};

}  // namespace oam::server
