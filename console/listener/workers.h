// The threads that serve connections: each connection has one while it lives.
//
// An event stream lives for hours. So that fifty of them hold up nobody, a connection that becomes
// one stops counting as a request: requests and streams have a limit of their own each, and what
// one kind does leaves the other its threads.
#pragma once

#include <httplib.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace oam::console {

class Workers : public httplib::TaskQueue {
  public:
    struct Limits {
        unsigned requests = 32;
        unsigned streams = 128;
    };
    // What outlives the queue, which the server destroys when it ends.
    class Counts;

    explicit Workers(std::shared_ptr<Counts> counts) : counts_(std::move(counts)) {}

    void enqueue(std::function<void()> task) override;
    void shutdown() override;

  private:
    void Work();

    const std::shared_ptr<Counts> counts_;
    std::vector<std::thread> threads_;
};

class Workers::Counts {
  public:
    explicit Counts(Limits limits) : limits_(limits) {}

    // The calling thread's connection is an event stream until the returned object goes. Nothing
    // when there are enough of them.
    std::shared_ptr<void> BecomeStream();

  private:
    friend class Workers;

    const Limits limits_;
    std::mutex mutex_;
    std::condition_variable news_;
    std::deque<std::function<void()>> tasks_;
    unsigned requests_ = 0;  // threads at work on one
    unsigned streams_ = 0;
    unsigned idle_ = 0;
    bool isEnding_ = false;
};

}  // namespace oam::console
