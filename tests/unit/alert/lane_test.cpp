// The lane to one kind of receiver: one alert at a time, in order, and never a wait under a
// database lock.
#include "alert/lane.h"

#include <atomic>
#include <functional>
#include <thread>

#include "alert_room.h"
#include "base/database_lock.h"
#include "base/foreign_frame.h"
#include "plugins/recorder/host.h"
#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;

// The lane calls a plain function, so what it does lies beside it.
std::function<oam_result(const oam_msg_tag*)> s_receive;
oam_result receive(const oam_msg_tag* message) noexcept { return s_receive(message); }

class Lane : public ::testing::Test {
  protected:
    Lane() {
        s_receive = [this](const oam_msg_tag* message) {
            Note(std::string("in ") + oamMessageText(message));
            if (strcmp(oamMessageText(message), "long") == 0) latch.Wait();
            Note(std::string("out ") + oamMessageText(message));
            return oam_result(message->severity);
        };
    }
    ~Lane() override { s_receive = nullptr; }

    static Message Saying(const std::string& text, unsigned result = 0) {
        return {OAMEVN_ALERT, result, "S", text};
    }
    // Puts a thread into the receiver, where it stays until Release.
    void Occupy(unsigned result = 0) {
        inside_ = std::thread([this, result] {
            insideResult = lane.Deliver(Saying("long", result).Get());
        });
        ASSERT_TRUE(latch.WaitForArrival());
    }
    void Release() {
        latch.Open();
        inside_.join();
    }
    void Note(const std::string& line) {
        const std::lock_guard hold(mutex_);
        notes_.push_back(line);
        threads_.push_back(std::this_thread::get_id());
    }
    std::vector<std::string> Notes() {
        const std::lock_guard hold(mutex_);
        return notes_;
    }
    std::vector<std::thread::id> Threads() {
        const std::lock_guard hold(mutex_);
        return threads_;
    }

    ReceiverLane lane{&receive};
    Latch latch;
    oam_result insideResult = OAMERR_BASE;

  private:
    std::thread inside_;
    std::mutex mutex_;
    std::vector<std::string> notes_;
    std::vector<std::thread::id> threads_;
};

TEST_F(Lane, AnswersWhatTheReceiverAnswers) {
    EXPECT_EQ(lane.Deliver(Saying("a", 5).Get()), oam_result(5));
    EXPECT_EQ(lane.Deliver(Saying("b").Get()), OAM_SUCCESS);
    EXPECT_THAT(Notes(), ElementsAre("in a", "out a", "in b", "out b"));
}

TEST_F(Lane, LetsOneAlertInAtATime) {
    Occupy();
    std::vector<std::thread> others;
    for (int i = 0; i < 4; ++i) {
        others.emplace_back([this] { EXPECT_EQ(lane.Deliver(Saying("x").Get()), OAM_SUCCESS); });
    }
    EXPECT_THAT(Notes(), ElementsAre("in long"));
    Release();
    for (std::thread& other : others) other.join();
    const std::vector<std::string> notes = Notes();
    ASSERT_EQ(notes.size(), 10u);
    for (size_t i = 0; i < notes.size(); i += 2) {
        EXPECT_EQ(notes[i].substr(3), notes[i + 1].substr(4)) << "no other in between";
    }
}

TEST_F(Lane, LetsAReceiverComeInAgain) {
    const auto plain = s_receive;
    s_receive = [&](const oam_msg_tag* message) {
        if (strcmp(oamMessageText(message), "outer") != 0) return plain(message);
        return lane.Deliver(Saying("inner", 3).Get());
    };
    EXPECT_EQ(lane.Deliver(Saying("outer").Get()), oam_result(3));
    EXPECT_THAT(Notes(), ElementsAre("in inner", "out inner"));
    s_receive = plain;
}

TEST_F(Lane, ThreadUnderADatabaseLockLeavesACopyAndGoesOn) {
    Occupy(7);
    {
        const TableGuard hold;
        Message message = Saying("copied", 9);
        EXPECT_EQ(lane.Deliver(message.Get()), OAM_SUCCESS) << "not the receiver's result";
        EXPECT_THAT(Notes(), ElementsAre("in long"));
        strcpy(message.Text(), "xxxxxx");
    }
    Release();
    EXPECT_EQ(insideResult, oam_result(7)) << "of its own alert, not of the copy";
    EXPECT_THAT(Notes(), ElementsAre("in long", "out long", "in copied", "out copied"));
    EXPECT_EQ(Threads()[2], Threads()[0]) << "the one inside delivers it";
}

TEST_F(Lane, ManagerLockCountsLikeTheTableLock) {
    Occupy();
    {
        const ManagerGuard hold;
        EXPECT_EQ(lane.Deliver(Saying("copied").Get()), OAM_SUCCESS);
    }
    Release();
    EXPECT_THAT(Notes(), ElementsAre("in long", "out long", "in copied", "out copied"));
}

// Each inside its own lane and on the way into the other's.
TEST_F(Lane, TwoThreadsInTwoLanesDoNotWaitForEachOther) {
    ReceiverLane other{&receive};
    std::atomic<int> arrived = 0;
    s_receive = [&](const oam_msg_tag* message) {
        const std::string text = oamMessageText(message);
        Note(text);
        if (text != "a" && text != "b") return OAM_SUCCESS;
        ++arrived;
        while (arrived < 2) std::this_thread::yield();
        ReceiverLane& target = text == "a" ? other : lane;
        return target.Deliver(Saying("from " + text).Get());
    };
    std::thread first([&] { EXPECT_EQ(lane.Deliver(Saying("a").Get()), OAM_SUCCESS); });
    std::thread second([&] { EXPECT_EQ(other.Deliver(Saying("b").Get()), OAM_SUCCESS); });
    first.join();
    second.join();
    EXPECT_THAT(Notes(), ::testing::UnorderedElementsAre("a", "b", "from a", "from b"));
}

// Each alert is answered by one more: without an end on one thread, and so on two.
TEST_F(Lane, TwoThreadsInTwoLanesDoNotLeadEachOtherOn) {
    ReceiverLane other{&receive};
    std::atomic<int> arrived = 0;
    std::atomic<int> received = 0;
    s_receive = [&](const oam_msg_tag* message) {
        const ForeignFrame frame;
        if (!frame.MayEnter()) return OAMERR_ACCESS_DENIED;
        if (arrived < 2) ++arrived;
        while (arrived < 2) std::this_thread::yield();
        EXPECT_LT(++received, 10 * kMostInnerEntries);
        if (received > 10 * kMostInnerEntries) return OAM_SUCCESS;
        (void)lane.Deliver(message);
        (void)other.Deliver(message);
        return OAM_SUCCESS;
    };
    const Message message = Saying("again");
    std::thread first([&] { (void)lane.Deliver(message.Get()); });
    std::thread second([&] { (void)other.Deliver(message.Get()); });
    first.join();
    second.join();
    s_receive = [](const oam_msg_tag*) { return OAM_SUCCESS; };
}

TEST_F(Lane, DeliversCopiesInTheOrderInWhichTheyWereLeft) {
    Occupy();
    {
        const ManagerGuard hold;
        for (const char* text : {"1", "2", "3"}) {
            EXPECT_EQ(lane.Deliver(Saying(text).Get()), OAM_SUCCESS);
        }
    }
    Release();
    EXPECT_THAT(Notes(), ElementsAre("in long", "out long", "in 1", "out 1", "in 2", "out 2",
                                     "in 3", "out 3"));
    EXPECT_EQ(lane.Deliver(Saying("4").Get()), OAM_SUCCESS);
    EXPECT_EQ(Notes().back(), "out 4");
}

TEST_F(Lane, DeliversACopyThatIsLeftWhileAnotherIsDelivered) {
    const auto plain = s_receive;
    s_receive = [&](const oam_msg_tag* message) {
        if (strcmp(oamMessageText(message), "1") == 0) {
            std::thread([&] {
                const TableGuard hold;
                EXPECT_EQ(lane.Deliver(Saying("2").Get()), OAM_SUCCESS);
            }).join();
        }
        return plain(message);
    };
    EXPECT_EQ(lane.Deliver(Saying("1").Get()), OAM_SUCCESS);
    EXPECT_THAT(Notes(), ElementsAre("in 1", "out 1", "in 2", "out 2"));
    s_receive = plain;
}

TEST_F(Lane, FreeLaneIsEnteredUnderALockToo) {
    const TableGuard hold;
    EXPECT_EQ(lane.Deliver(Saying("a", 4).Get()), oam_result(4));
    EXPECT_EQ(Threads().front(), std::this_thread::get_id());
}

TEST_F(Lane, CopyThatFindsNoMemoryIsAFailureAndLost) {
    Occupy();
    {
        const TableGuard hold;
        EXPECT_EQ(FailEachAllocation([&] { return lane.Deliver(Saying("copied").Get()); },
                                     [&](oam_result result) {
                                         EXPECT_EQ(result, OAMERR_NOT_ENOUGH_MEMORY);
                                     }),
                  OAM_SUCCESS);
    }
    Release();
    EXPECT_THAT(Notes(), ElementsAre("in long", "out long", "in copied", "out copied"))
        << "the last attempt alone";
}

// Those who wait are woken, also when others enter a free lane in between without its lock.
TEST_F(Lane, LosesNobodyInACrowd) {
    constexpr int kThreads = 4;
    constexpr int kEach = 3000;
    std::atomic<int> inside{0};
    std::atomic<int> most{0};
    std::atomic<int> received{0};
    s_receive = [&](const oam_msg_tag*) {
        most = std::max(most.load(), ++inside);
        ++received;
        --inside;
        return OAM_SUCCESS;
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([this, i] {
            const Message message = Saying("one");
            for (int n = 0; n < kEach; ++n) {
                // Some of them may not wait.
                if (i == 0 && n % 2 == 0) {
                    const ManagerGuard hold;
                    EXPECT_EQ(lane.Deliver(message.Get()), OAM_SUCCESS);
                } else {
                    EXPECT_EQ(lane.Deliver(message.Get()), OAM_SUCCESS);
                }
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(received, kThreads * kEach);
    EXPECT_EQ(most, 1);
}

}  // namespace
}  // namespace oam::test
