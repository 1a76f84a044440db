#include "alert_inbox.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <cstring>
#include <thread>

#include "interruption.h"
#include "oam/codes.h"
#include "support/alert_log.h"

namespace oam::test {
namespace {

constexpr auto kLong = std::chrono::seconds(60);

class AlertInboxTest : public ::testing::Test {
  protected:
    void SetUp() override {
        inbox.Listen([](const oam::Alert&) { return true; });
    }
    void TearDown() override {
        inbox.Listen(nullptr);
        while (inbox.Take()) {
        }
        inbox.TakeLost();
    }

    void Put(const std::string& text, unsigned severity = OAM_INFORMATION) {
        const std::string record = MakeRecord(OAMEVN_ALERT, severity, "source", text);
        inbox.Put(*AsMessage(record));
    }

    static AlertInbox::Deadline In(std::chrono::milliseconds time) {
        return std::chrono::steady_clock::now() + time;
    }

    AlertInbox& inbox = AlertInbox::Instance();
    Interruption interruption;
};

}  // namespace

TEST_F(AlertInboxTest, GivesAlertsInTheOrderInWhichTheyCame) {
    Put("first", OAM_ERROR);
    Put("second");
    const auto alert = inbox.Take();
    ASSERT_TRUE(alert);
    EXPECT_EQ(alert->text, "first");
    EXPECT_EQ(alert->source, "source");
    EXPECT_EQ(alert->severity, unsigned{OAM_ERROR});
    EXPECT_EQ(alert->code, unsigned{OAMEVN_ALERT});
    EXPECT_EQ(inbox.Take()->text, "second");
    EXPECT_FALSE(inbox.Take());
}

TEST_F(AlertInboxTest, KeepsOnlyWhatIsWanted) {
    inbox.Listen([](const oam::Alert& alert) { return alert.text == "wanted"; });
    Put("unwanted");
    Put("wanted");
    EXPECT_EQ(inbox.Take()->text, "wanted");
    EXPECT_FALSE(inbox.Take());
}

TEST_F(AlertInboxTest, WaitsForAnAlertOfAnotherThread) {
    std::thread raiser([this] { Put("late"); });
    const auto alert = inbox.Wait(In(kLong), interruption);
    raiser.join();
    ASSERT_TRUE(alert);
    EXPECT_EQ(alert->text, "late");
}

TEST_F(AlertInboxTest, EndsAWaitAtItsDeadline) {
    EXPECT_FALSE(inbox.Wait(In(std::chrono::milliseconds(20)), interruption));
}

TEST_F(AlertInboxTest, EndsAWaitWhenTheOperatorInterrupts) {
    std::thread operatorThread([] { kill(getpid(), SIGTERM); });
    EXPECT_FALSE(inbox.Wait(std::nullopt, interruption));
    operatorThread.join();
    EXPECT_TRUE(interruption.IsRequested());
}

TEST_F(AlertInboxTest, LosesTheOldestAlertsWhenTooManyCome) {
    for (size_t i = 0; i < kAlertsKept + 5; ++i) Put(std::to_string(i));
    EXPECT_EQ(inbox.TakeLost(), 5u);
    EXPECT_EQ(inbox.TakeLost(), 0u);
    EXPECT_EQ(inbox.Take()->text, "5");
}

TEST_F(AlertInboxTest, ReadsNothingOutsideOfARecord) {
    std::string record = MakeRecord(OAMEVN_ALERT, 0, "source", "text");
    oam_msg_tag header;
    std::memcpy(&header, record.data(), sizeof header);
    header.textOffset = 0x7fffffff;
    header.sourceOffset = 4;
    std::memcpy(record.data(), &header, sizeof header);
    inbox.Put(*AsMessage(record));
    const auto alert = inbox.Take();
    ASSERT_TRUE(alert);
    EXPECT_EQ(alert->text, "");
    EXPECT_EQ(alert->source, "");
}

}  // namespace oam::test
