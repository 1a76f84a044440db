// The latest failures of one board, to tell when they become too many.
//
// A failure counts for the length of the window. The limit is crossed by the failure that makes the
// number reach it; it can be crossed again only after the number has fallen below it.
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>

namespace oam::watch {

struct FailureLimit {
    static constexpr unsigned int kMostFailures = 100;

    unsigned int failures = 0;  // up to kMostFailures; 0: there is no limit
    std::chrono::seconds window{0};
};

class FailureWindow {
  public:
    using Moment = std::chrono::steady_clock::time_point;

    // True when this failure crosses the limit.
    bool Add(Moment now, const FailureLimit& limit) {
        while (!moments_.empty() && moments_.front() <= now - limit.window) moments_.pop_front();
        const auto before = moments_.size();
        if (before == FailureLimit::kMostFailures) moments_.pop_front();
        moments_.push_back(now);
        return before < limit.failures && moments_.size() >= limit.failures;
    }

  private:
    std::deque<Moment> moments_;
};

}  // namespace oam::watch
