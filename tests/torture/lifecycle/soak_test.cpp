// The same a million times: memory, descriptors and threads stay as they are.
#include <gtest/gtest.h>

#include <atomic>

#include "crash/points.h"
#include "growth.h"
#include "oam/entry.h"
#include "support/alert_log.h"
#include "support/objects.h"
#include "support/places.h"
#include "support/short_waits.h"
#include "support/sim_site.h"
#include "support/watchdog.h"

namespace oam::torture {
namespace {

constexpr int kBoards = 4;

std::atomic<unsigned long> s_outcomes{0};
std::atomic<unsigned long> s_started{0};
std::atomic<unsigned long> s_heard{0};

// Keeps nothing of what it hears.
unsigned receive(unsigned long client, const oam_msg_tag* message) {
    ++s_heard;
    if (client == OAM_INTERNAL_CLIENT && message->code == OAMEVN_STARTBOARD_DONE) {
        if (message->severity == OAM_INFORMATION) ++s_started;
        ++s_outcomes;
    }
    return 0;
}

unsigned long rounds(unsigned long full, unsigned long quick) { return IsFull() ? full : quick; }

class Soak : public testing::Test {
  protected:
    Soak() {
        UseShortWaits();
        std::thread([] {}).join();  // a sanitizer starts a thread of its own with the first one
        (void)_oamAlertRegisterCallback(&receive);
        threads_ = LookAtResources().threads + SimSite::kOwnThreads;
        EXPECT_TRUE(site_.StartWithBoards());
        for (unsigned long client : {1, 2}) EXPECT_EQ(_oamAlertRegister(client), OAM_SUCCESS);
    }
    ~Soak() override {
        (void)_oamExit();
        (void)_oamAlertRegisterCallback(nullptr);
    }

    void Tell(const char* what, unsigned long rounds, const std::string& growth) const {
        TellFigures("soak", Grouped(rounds) + ' ' + what + ", " + Grouped(s_heard) +
                                " alerts heard" +
                                (SimSite::IsInMemory() ? ", files in memory; " : "; ") + growth);
    }

    const Watchdog watchdog_;
    const SimSite site_{kBoards};
    int threads_ = 0;
};

TEST_F(Soak, OfCommits) {
    const unsigned long commits = rounds(1000000, 2000);
    const auto commit = [](unsigned long turn) {
        const std::string board = SimSite::BoardName(static_cast<int>(turn % kBoards));
        const std::string value = std::to_string(turn % 1000);
        const char* keyword = turn % 2 == 0 ? "Driver.BoardId" : "Fan.Warning";
        ASSERT_EQ(test::Change(board, keyword, value), OAM_SUCCESS);
        // A new name and the old one again.
        if (turn % 64 == 0) {
            ASSERT_EQ(test::Change(board, "Name", "Renamed"), OAM_SUCCESS);
            ASSERT_EQ(test::Change("Renamed", "Name", board), OAM_SUCCESS);
        }
    };
    Tell("commits", commits, Repeat(commits, commit, threads_));
}

TEST_F(Soak, OfAlerts) {
    const unsigned long alerts = rounds(10000000, 20000);
    const std::string record =
        test::MakeRecord(OAMEVN_ALERT, OAM_WARNING, SimSite::BoardName(0), "once more");
    const auto raise = [&](unsigned long) {
        ASSERT_EQ(_oamAlertNotify(test::AsMessage(record)), OAM_SUCCESS);
    };
    Tell("alerts", alerts, Repeat(alerts, raise, threads_));
}

// Each start on a thread of its own; the next comes when the outcome was told.
TEST_F(Soak, OfStarts) {
    const unsigned long starts = rounds(100000, 300);
    unsigned long accepted = 0;
    const auto start = [&](unsigned long turn) {
        const std::string board = SimSite::BoardName(static_cast<int>(turn % kBoards));
        ASSERT_EQ(_oamStartBoard(board.c_str(), 0), OAM_SUCCESS);
        // One for each board is under way.
        if (++accepted % kBoards != 0) return;
        const InCall here("awaiting the outcomes of starts");
        while (s_outcomes < accepted) std::this_thread::yield();
    };
    s_outcomes = s_started = 0;
    Tell("starts", starts, Repeat(starts, start, threads_));
    // An outcome is told just before the board takes the next start.
    EXPECT_GT(s_started, starts / 2);
}

}  // namespace
}  // namespace oam::torture
