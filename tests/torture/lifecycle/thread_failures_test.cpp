// No thread can be made, at each point of each operation that makes some: the request or each
// board's outcome says so, and everything works as soon as there are threads again.
#include <gtest/gtest.h>

#include <set>

#include "crash/points.h"
#include "memory/thread_fuse.h"
#include "oam/entry.h"
#include "support/alert_log.h"
#include "support/places.h"
#include "support/resources.h"
#include "support/sim_site.h"
#include "support/watchdog.h"

namespace oam::torture {
namespace {

constexpr std::size_t kBoards = 3;

// Outcomes that an operation is to bring; 0: it is over when it returns.
struct Operation {
    const char* name;
    unsigned (*call)();
    unsigned outcome = 0;
    std::size_t outcomes = 0;
};

std::ostream& operator<<(std::ostream& out, const Operation& operation) {
    return out << operation.name;
}

const test::Installation* s_home = nullptr;

std::string exportFile() { return s_home->Path("all.oam"); }

const Operation kOperations[] = {
    {"StartOfTheService",
     [] {
         (void)_oamExit();
         return unsigned{_oamInit()};
     }},
    {"Restart", [] { return unsigned{_oamRestart()}; }},
    {"Import", [] { return unsigned{_oamConfigImport(exportFile().c_str())}; }},
    {"StartOfOne", [] { return unsigned{_oamStartBoard("Sim 0", 0)}; }, OAMEVN_STARTBOARD_DONE, 1},
    {"StopOfOne", [] { return unsigned{_oamStopBoard("Sim 0", 0)}; }, OAMEVN_STOPBOARD_DONE, 1},
    {"TestOfOne", [] { return unsigned{_oamTestBoard("Sim 0", 0)}; }, OAMEVN_TESTBOARD_DONE, 1},
    {"StartOfAll", [] { return unsigned{_oamStartBoard(nullptr, 0)}; }, OAMEVN_STARTBOARD_DONE,
     kBoards},
    {"StopOfAll", [] { return unsigned{_oamStopBoard(nullptr, 0)}; }, OAMEVN_STOPBOARD_DONE,
     kBoards},
    {"TestOfAll", [] { return unsigned{_oamTestBoard(nullptr, 0)}; }, OAMEVN_TESTBOARD_DONE,
     kBoards},
    {"SynchronizedStart", [] { return unsigned{_oamStartBoard(nullptr, OAM_SYNCHRONIZED)}; },
     OAMEVN_STARTBOARD_DONE, kBoards},
};

struct Totals {
    std::size_t points = 0;
    std::size_t operations = 0;
    std::size_t wrong = 0;
} s_totals;

// The last line of the program.
class TellTotals : public testing::Environment {
  public:
    void TearDown() override {
        TellFigures("thread failures", std::to_string(s_totals.points) + " starts of threads of " +
                                           std::to_string(s_totals.operations) +
                                           " operations, all tried twice, " +
                                           std::to_string(s_totals.wrong) + " operations wrong");
    }
};

[[maybe_unused]] const auto* const kTold = testing::AddGlobalTestEnvironment(new TellTotals);

class WithoutThreads : public testing::TestWithParam<Operation> {
  protected:
    WithoutThreads() {
        std::thread([] {}).join();  // a sanitizer starts a thread of its own with the first one
        atRest_ = LookAtResources().threads + SimSite::kOwnThreads;
        s_home = &site_.home;
        EXPECT_TRUE(site_.StartWithBoards());
        EXPECT_EQ(_oamConfigExport(exportFile().c_str()), OAM_SUCCESS);
        Settle();
    }
    ~WithoutThreads() override { (void)_oamExit(); }

    void Settle() const {
        if (!AwaitThreads(atRest_)) Watchdog::GiveUp("threads do not end");
    }

    // The operation with its outcomes: how many of them said that there was no thread.
    unsigned Carry(const Operation& operation, std::size_t* refusals) {
        alerts_.Clear();
        unsigned code;
        {
            const InCall here(operation.name);
            code = operation.call();
        }
        if (code == OAM_SUCCESS && operation.outcomes != 0) {
            EXPECT_TRUE(alerts_.WaitForCode(operation.outcome, operation.outcomes));
        }
        Settle();
        *refusals = 0;
        std::multiset<std::string> boards;
        for (const test::Said& said : alerts_.Heard(operation.outcome)) {
            boards.insert(said.source);
            const bool isRefused = said.text.starts_with("Can't create thread");
            if (isRefused) ++*refusals;
            EXPECT_EQ(said.severity, unsigned{isRefused ? OAM_ERROR : OAM_INFORMATION}) << said;
        }
        if (code == OAM_SUCCESS && operation.outcomes != 0) {
            EXPECT_EQ(boards.size(), operation.outcomes) << "one outcome for each board";
        }
        return code;
    }

    // With threads again all boards start, and nothing is open. A refused import has left an empty
    // configuration, says its description; the next one brings the boards back.
    void ExpectSound(unsigned code) {
        ASSERT_EQ(_oamInit(), OAM_SUCCESS);  // nothing, when it runs already
        if (code != OAM_SUCCESS && GetParam().outcomes == 0) {
            EXPECT_EQ(_oamConfigImport(exportFile().c_str()), OAM_SUCCESS);
        }
        std::size_t refusals = 0;
        EXPECT_EQ(Carry(kOperations[6], &refusals), OAM_SUCCESS);
        EXPECT_EQ(refusals, 0u);
        EXPECT_EQ(_oamConfigImport("/there is no such file"), OAMERR_NOT_FOUND)
            << "an object is open";
    }

    void FailAt(std::size_t nth, Failing how) {
        SCOPED_TRACE(testing::Message()
                     << "start " << nth
                     << (how == Failing::kOnce ? " fails" : " and all later ones fail"));
        std::size_t refusals = 0;
        unsigned code;
        std::size_t starts;
        {
            const ThreadFuse fuse(nth, how);
            code = Carry(GetParam(), &refusals);
            starts = ThreadFuse::Starts();
        }
        EXPECT_GE(starts, nth) << "it was not tried";
        // Only the thread of the automatic start can be missing without a word.
        const bool isTold = code == OAMERR_CANT_CREATE_THREAD || refusals != 0;
        EXPECT_TRUE(isTold || (code == OAM_SUCCESS && GetParam().outcomes == 0)) << code;
        ExpectSound(code);
    }

    const Watchdog watchdog_;
    const SimSite site_{kBoards};
    test::AlertLog alerts_;
    int atRest_ = 0;
};

TEST_P(WithoutThreads, IsToldAndLeavesTheServiceSound) {
    std::size_t refusals = 0;
    std::size_t points;
    {
        const ThreadFuse none(0, Failing::kOnce);
        ASSERT_EQ(Carry(GetParam(), &refusals), OAM_SUCCESS);
        points = ThreadFuse::Starts();
    }
    const bool isSynchronized = std::string_view(GetParam().name) == "SynchronizedStart";
    EXPECT_EQ(points == 0, isSynchronized) << points;
    for (std::size_t nth = 1; nth <= points; ++nth) {
        for (const Failing how : {Failing::kOnce, Failing::kFromThereOn}) FailAt(nth, how);
    }
    s_totals.points += points;
    ++s_totals.operations;
    if (HasFailure()) ++s_totals.wrong;
}

INSTANTIATE_TEST_SUITE_P(Each, WithoutThreads, testing::ValuesIn(kOperations),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace oam::torture
