// Waits for operations: which are whose, until when.
//
// A wait ends with the operation, at its time limit, when its caller cancels it or goes away, and
// with the daemon; whatever comes first answers it, and nothing answers twice.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "operations/operation_book.h"

namespace oam::server {

class OperationWaits {
  public:
    explicit OperationWaits(OperationBook& book);
    // Ends all waits.
    ~OperationWaits();

    using Clock = std::chrono::steady_clock;
    // `done` is called once, on any thread, with the operation as it then is. Nothing when there is
    // no such operation; else the wait's number.
    std::optional<std::uint64_t> Add(const std::string& id, const std::string& user,
                                     std::optional<Clock::time_point> limit,
                                     OperationBook::Done done);
    void End(std::uint64_t wait);
    // All of this user's for this operation; how many.
    unsigned EndOf(const std::string& id, const std::string& user);

  private:
    struct Wait {
        std::string id;
        std::string user;
        std::uint64_t inBook = 0;
        std::optional<Clock::time_point> limit;
    };
    void Work();

    OperationBook& book_;
    std::mutex mutex_;
    std::condition_variable news_;
    std::map<std::uint64_t, Wait> waits_;
    std::uint64_t last_ = 0;
    bool isEnding_ = false;
    std::thread thread_;  // ends waits at their limits
};

}  // namespace oam::server
