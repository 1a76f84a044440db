// The process ends while the service is at work: it ends as it was told to, every time, and the
// next one starts.
#include <gtest/gtest.h>

#include <random>

#include "crash/points.h"
#include "growth.h"
#include "oam/entry.h"
#include "spawned.h"
#include "support/objects.h"
#include "support/short_waits.h"
#include "support/sim_site.h"

namespace oam::torture {
namespace {

constexpr int kBoards = 4;

class ProcessEnd : public testing::Test {
  protected:
    // The library is started here once, to configure the boards, and no more.
    ProcessEnd() {
        UseShortWaits();
        EXPECT_TRUE(site_.StartWithBoards());
        EXPECT_EQ(test::Change(SimSite::BoardName(0), "AutoStart", "Yes"), OAM_SUCCESS);
        EXPECT_TRUE(ChangeSettings("Supervisor", {{"AutoStartEnabled", "Yes"}}));
        EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    }

    const SimSite site_{kBoards, 1};
    std::mt19937_64 random_{Seed()};
};

TEST_F(ProcessEnd, AtAnyMomentIsAnEnd) {
    constexpr const char* kKinds[] = {"return",     "exit",     "_exit",
                                      "quick_exit", "receiver", "stopped"};
    constexpr unsigned kLongest = 12000;  // microseconds; the automatic start comes after 5000
    const unsigned long ends = IsFull() ? 200 : 5;
    for (unsigned long i = 0; i < ends; ++i) {
        for (const char* kind : kKinds) {
            const std::string moment = std::to_string(random_() % kLongest);
            const std::string seed = std::to_string(random_() % 1000000);
            const Ended ended = RunToItsEnd({ENDING_PROCESS, kind, moment, seed});
            ASSERT_TRUE(ended.IsFine()) << kind << ' ' << moment << ' ' << seed << ' ' << ended;
        }
    }
    TellFigures("process ends", Grouped(ends * std::size(kKinds)) + " of " +
                                    std::to_string(std::size(kKinds)) +
                                    " kinds, 0 crashed, 0 hung");
}

TEST_F(ProcessEnd, OfAProgramThatLoadsAndUnloadsTheLibrary) {
    const unsigned long programs = IsFull() ? 50 : 3;
    const unsigned long lives = IsFull() ? 20 : 5;
    for (unsigned long i = 0; i < programs; ++i) {
        const Ended ended =
            RunToItsEnd({DLOPEN_USER, OAM_LIBRARY, std::to_string(lives), std::to_string(i)});
        ASSERT_TRUE(ended.IsFine()) << ended;
    }
    TellFigures("library users", Grouped(programs) + " programs with " + std::to_string(lives) +
                                     " lives each, 0 crashed, 0 hung");
}

}  // namespace
}  // namespace oam::torture
