// The service is started and stopped again and again in one process, with operations of its boards
// under way and the automatic start pending or just beginning.
#include <gtest/gtest.h>

#include <random>

#include "crash/host.h"
#include "crash/points.h"
#include "growth.h"
#include "oam/entry.h"
#include "support/objects.h"
#include "support/places.h"
#include "support/short_waits.h"
#include "support/sim_site.h"
#include "support/watchdog.h"

namespace oam::torture {
namespace {

constexpr int kBoards = 4;
constexpr unsigned long kFirstClient = 100;

std::atomic<unsigned long> s_heard{0};

// A receiver that reads what the alert is about.
unsigned receive(unsigned long, const oam_msg_tag* message) {
    unsigned number = 0;
    ++s_heard;
    (void)_oamBoardGetNumber(oamMessageSource(message), &number);
    return 0;
}

unsigned called(const char* name, oam_result (*function)() noexcept) {
    const InCall here(name);
    return function();
}

class Restarts : public testing::Test {
  protected:
    Restarts() {
        UseShortWaits();
        std::thread([] {}).join();  // a sanitizer starts a thread of its own with the first one
        (void)_oamAlertRegisterCallback(&receive);
    }
    ~Restarts() override {
        (void)_oamAlertRegisterCallback(nullptr);
        (void)_oamExit();
    }

    void Configure() {
        ASSERT_TRUE(site_.StartWithBoards());
        for (int i = 0; i < kBoards; i += 2) {
            ASSERT_EQ(test::Change(SimSite::BoardName(i), "AutoStart", "Yes"), OAM_SUCCESS);
            ASSERT_EQ(test::Change(SimSite::BoardName(i), "AutoStop", "Yes"), OAM_SUCCESS);
        }
        ASSERT_TRUE(ChangeSettings("Supervisor",
                                   {{"AutoStartEnabled", "Yes"}, {"AutoStopEnabled", "Yes"}}));
        configured_ = StateDigest();
        ASSERT_EQ(_oamExit(), OAM_SUCCESS);
    }

    // One life of the service, with requests that it may never come to carry out.
    void Live() {
        ASSERT_EQ(called("_oamInit", &_oamInit), OAM_SUCCESS);
        (void)_oamAlertRegister(kFirstClient + random_() % 3);
        for (unsigned i = random_() % 4; i > 0; --i) Request();
        std::this_thread::sleep_for(std::chrono::microseconds(random_() % 8000));
        if (random_() % 4 == 0) {
            ASSERT_EQ(called("_oamRestart", &_oamRestart), OAM_SUCCESS);
            Request();
        }
        ASSERT_EQ(called("_oamShutdown", &_oamShutdown), OAM_SUCCESS);
    }

    void Request() {
        const std::string board = SimSite::BoardName(static_cast<int>(random_() % kBoards));
        const char* name = random_() % 2 == 0 ? nullptr : board.c_str();
        const auto operations = {&_oamStartBoard, &_oamStopBoard, &_oamTestBoard};
        const InCall here("a request");
        EXPECT_EQ(operations.begin()[random_() % operations.size()](name, 0), OAM_SUCCESS);
        ++requests_;
    }

    const SimSite site_{kBoards, 1};
    std::mt19937_64 random_{Seed()};
    std::string configured_;
    unsigned long requests_ = 0;
};

TEST_F(Restarts, LeaveNothingBehind) {
    const Watchdog watchdog;
    const int threads = LookAtResources().threads;
    const unsigned long restarts = IsFull() ? 1000 : 30;
    ASSERT_NO_FATAL_FAILURE(Configure());
    // Each life has other threads, and what the C library keeps for threads settles late.
    const Allowed allowed = {.heapBytes = 16 * 1024};
    const std::string growth = Repeat(
        restarts, [this](unsigned long) { Live(); }, threads, allowed);
    ASSERT_EQ(_oamInit(), OAM_SUCCESS);
    EXPECT_EQ(StateDigest(), configured_);
    TellFigures("restarts", Grouped(restarts) + " with " + Grouped(requests_) +
                                " requests under way, " + Grouped(s_heard) + " alerts; " + growth);
}

}  // namespace
}  // namespace oam::torture
