// Threads for requests and for streams do not take each other's.
#include "listener/workers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>

namespace oam::console {
namespace {

TEST(ConsoleWorkers, ServeRequestsBesideAsManyStreamsAsThereMayBe) {
    const auto counts = std::make_shared<Workers::Counts>(Workers::Limits{2, 3});
    Workers workers(counts);
    std::promise<void> end;
    const std::shared_future<void> ended = end.get_future().share();
    std::promise<void> allThere;
    std::atomic<int> streams{0};
    for (int i = 0; i < 3; ++i)
        workers.enqueue([&] {
            const auto place = counts->BecomeStream();
            EXPECT_NE(place, nullptr);
            if (++streams == 3) allThere.set_value();
            ended.wait();
        });
    allThere.get_future().wait();
    std::promise<bool> refused;
    workers.enqueue([&] { refused.set_value(counts->BecomeStream() == nullptr); });
    EXPECT_TRUE(refused.get_future().get());
    for (int i = 0; i < 20; ++i) {
        std::promise<void> served;
        workers.enqueue([&] { served.set_value(); });
        served.get_future().wait();
    }
    end.set_value();
    workers.shutdown();
}

TEST(ConsoleWorkers, BoundRequestsAndServeAllOfThemInTurn) {
    const auto counts = std::make_shared<Workers::Counts>(Workers::Limits{4, 4});
    Workers workers(counts);
    std::atomic<int> running{0}, most{0}, done{0};
    for (int i = 0; i < 500; ++i)
        workers.enqueue([&] {
            const int now = ++running;
            int seen = most;
            while (now > seen && !most.compare_exchange_weak(seen, now)) {
            }
            std::this_thread::yield();
            --running;
            ++done;
        });
    workers.shutdown();
    EXPECT_EQ(done, 500);
    EXPECT_LE(most, 4);
}

}  // namespace
}  // namespace oam::console
