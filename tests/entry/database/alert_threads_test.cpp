// Alerts raised on several threads at once.
#include <atomic>
#include <thread>

#include "support/service_test.h"

namespace oam::test {
namespace {

constexpr unsigned kHeld = 0x5001;
constexpr unsigned kFree = 0x5002;

class AlertThreads : public ServiceTest {
  protected:
    Recorder::Change HoldsBack(Latch& latch) {
        return [&latch](ModuleScript& script) {
            script.alertReceive = [&latch](const oam_msg_tag* message) {
                if (message->code == kHeld) latch.Wait();
                return 0u;
            };
        };
    }

    size_t Received(const std::string& file, unsigned code) {
        size_t count = 0;
        for (const RecordedCall& call : recorder.Calls("AlertReceive")) {
            if (call.file == file && call.arguments[0] == std::to_string(code)) ++count;
        }
        return count;
    }
};

TEST_F(AlertThreads, CallbackRunsForSeveralAlertsAtOnce) {
    Start();
    Latch latch;
    alerts.AnswerWith([&](const Alert& alert) {
        if (alert.code == kHeld) latch.Wait();
        return 0u;
    });
    std::thread first([] { EXPECT_EQ(Raise(kHeld, 0, "Test", "text"), OAM_SUCCESS); });
    std::thread second([] { EXPECT_EQ(Raise(kHeld, 0, "Test", "text"), OAM_SUCCESS); });
    EXPECT_TRUE(latch.WaitForArrival(2)) << "the second call waits for the first";
    EXPECT_EQ(_oamAlertRegister(5), OAM_SUCCESS) << "the table is not locked meanwhile";
    EXPECT_EQ(Raise(kFree, 0, "Test", "text"), OAM_SUCCESS);
    latch.Open();
    first.join();
    second.join();
}

TEST_F(AlertThreads, ComponentsReceiveOneAlertAtATime) {
    std::atomic<int> inside{0};
    std::atomic<bool> together{false};
    for (const char* file : {"c.emc", "d.emc"}) {
        AddComponent(file, [&](ModuleScript& script) {
            script.alertReceive = [&](const oam_msg_tag*) {
                if (++inside > 1) together = true;
                std::this_thread::yield();
                --inside;
                return 0u;
            };
        });
    }
    Start();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int round = 0; round < 50; ++round) (void)Raise(kFree, 0, "Test", "text");
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_FALSE(together);
    EXPECT_EQ(Received("c.emc", kFree), 200u) << "every alert arrives";
    EXPECT_EQ(Received("d.emc", kFree), 200u);
}

TEST_F(AlertThreads, PluginsReceiveOneAlertAtATime) {
    std::atomic<int> inside{0};
    std::atomic<bool> together{false};
    for (const char* file : {"a.bpi", "b.bpi"}) {
        AddPlugin(file, [&](ModuleScript& script) {
            script.alertReceive = [&](const oam_msg_tag*) {
                if (++inside > 1) together = true;
                std::this_thread::yield();
                --inside;
                return 0u;
            };
        });
    }
    Start();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int round = 0; round < 50; ++round) (void)Raise(kFree, 0, "Test", "text");
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_FALSE(together);
    EXPECT_EQ(Received("a.bpi", kFree), 200u) << "every alert arrives";
    EXPECT_EQ(Received("b.bpi", kFree), 200u);
}

TEST_F(AlertThreads, BusyPluginDoesNotKeepAnAlertFromTheComponents) {
    Latch latch;
    AddComponent("c.emc");
    AddPlugin("a.bpi", HoldsBack(latch));
    Start();
    std::thread held([] { (void)Raise(kHeld, 0, "Test", "text"); });
    EXPECT_TRUE(latch.WaitForArrival());
    std::thread next([] { (void)Raise(kFree, 0, "Test", "text"); });
    EXPECT_TRUE(recorder.WaitFor([&] { return Received("c.emc", kFree) == 1; }));
    EXPECT_EQ(Received("a.bpi", kFree), 0u) << "the plug-ins are still busy";
    latch.Open();
    held.join();
    next.join();
    EXPECT_TRUE(recorder.WaitFor([&] { return Received("a.bpi", kFree) == 1; }));
    EXPECT_TRUE(alerts.WaitForCode(kFree));
}

TEST_F(AlertThreads, LogLinesOfSeveralThreadsDoNotMix) {
    Start();
    EXPECT_EQ(Change("Supervisor", "OammonLog", "Yes"), OAM_SUCCESS);
    const std::string text(300, 'x');
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 25; ++round) {
                EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "Test", text + "\n"), OAM_SUCCESS);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    const std::string log = home.Read("oam/log/oammon.log");
    std::string expected = log.substr(0, log.find('\n') + 1);
    for (int i = 0; i < 100; ++i) expected += text + "\n";
    EXPECT_EQ(log, expected);
}

}  // namespace
}  // namespace oam::test
