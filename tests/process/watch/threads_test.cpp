// Alerts and readers on many threads, and alerts under the service's locks.
#include <atomic>
#include <thread>

#include "watch_test.h"

namespace oam::test {
namespace {

class WatchThreads : public WatchTest {};

TEST_F(WatchThreads, LoseNoAlertWhileOthersRead) {
    constexpr int kRaisers = 4;
    constexpr int kAlerts = 200;
    ASSERT_EQ(Change(kWatch, "Threshold.Failures", "0"), OAM_SUCCESS);
    std::atomic<bool> isDone = false;
    std::vector<std::thread> raisers;
    for (int i = 0; i < kRaisers; ++i) {
        raisers.emplace_back([] {
            for (int k = 0; k < kAlerts; ++k) k % 2 ? Fail() : Succeed();
        });
    }
    std::thread reader([&] {
        while (!isDone) {
            EXPECT_EQ(Names(), std::vector<std::string>{kBoard});
            EXPECT_EQ(Of(kBoard, "Name"), Is(kBoard));
        }
    });
    for (auto& raiser : raisers) raiser.join();
    isDone = true;
    reader.join();
    EXPECT_EQ(Of(kBoard, "Starts.Succeeded"), Is(std::to_string(kRaisers * kAlerts / 2)));
    EXPECT_EQ(Of(kBoard, "Starts.Failed"), Is(std::to_string(kRaisers * kAlerts / 2)));
}

// While all boards are started one after another the service holds its locks around the plug-in.
TEST_F(WatchThreads, TakeAlertsWhileTheServicesLocksAreHeld) {
    ASSERT_EQ(Change(kWatch, "Threshold.Failures", "1"), OAM_SUCCESS);
    recorder.Script(kPlugin, [](ModuleScript& script) {
        script.startBoard = [](const char*) {
            std::thread([] { Fail(); }).join();
            return 0u;
        };
    });
    EXPECT_EQ(_oamStartBoard(nullptr, OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_EQ(Of(kBoard, "Starts.Failed"), Is("1"));
    EXPECT_EQ(Warnings().size(), 1u);
}

}  // namespace
}  // namespace oam::test
