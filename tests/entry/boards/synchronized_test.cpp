// Synchronized starts and stops: in the caller's thread, one board after another.
#include "elsewhere.h"
#include "operations.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::Values;

class Synchronized : public AllBoardsTest, public testing::WithParamInterface<Operation> {
  protected:
    const Operation& Row() const { return GetParam(); }
    // Everything that was told, with the boards of successful operations.
    std::vector<Said> Whole(const std::vector<std::string>& boards) const {
        std::vector<Said> told;
        for (const std::string& board : boards) {
            if (Row().done == kStop.done) {
                told.push_back({OAMEVN_STOPBOARD_REQ, 0, board, "Stop board in 150ms."});
            }
            told.push_back({Row().done, 0, board, Row().succeeded});
        }
        return told;
    }
};

TEST_P(Synchronized, RunsOneBoardAfterAnotherInTheCallersThread) {
    StartQuietly();
    EXPECT_EQ(Row().request(nullptr, OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_EQ(alerts.Heard(), Whole({"Alpha", "Bravo", "charlie"}));
    EXPECT_THAT(Reached(Row()), ElementsAre("Alpha", "Bravo", "charlie"));
    EXPECT_THAT(ThreadsOf(Row()), ElementsAre(std::this_thread::get_id()));
}

TEST_P(Synchronized, RunsOneBoardInTheCallersThread) {
    StartQuietly();
    EXPECT_EQ(Row().request("Bravo", OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_EQ(alerts.Heard(), Whole({"Bravo"}));
    EXPECT_THAT(ThreadsOf(Row()), ElementsAre(std::this_thread::get_id()));
}

TEST_P(Synchronized, LeavesTheBoardIdleWhenItReturns) {
    StartQuietly();
    EXPECT_EQ(Row().request("Bravo", OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_EQ(Row().request("Bravo", OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_EQ(alerts.Heard(), Whole({"Bravo", "Bravo"}));
}

TEST_P(Synchronized, IsSetByTheSupervisorForEveryRequest) {
    Settings({{"SynchronizeEnabled", "Yes"}});
    StartQuietly();
    EXPECT_EQ(Row().request(nullptr, 0), OAM_SUCCESS);
    EXPECT_EQ(alerts.Heard(), Whole({"Alpha", "Bravo", "charlie"}));
    EXPECT_EQ(Row().request("Bravo", 0), OAM_SUCCESS);
    EXPECT_EQ(alerts.Heard(), Whole({"Alpha", "Bravo", "charlie", "Bravo"}));
    EXPECT_THAT(ThreadsOf(Row()), ElementsAre(std::this_thread::get_id()));
}

TEST_P(Synchronized, FollowsTheSupervisorWhileTheServiceRuns) {
    StartQuietly();
    EXPECT_EQ(Change("Supervisor", "SynchronizeEnabled", "Yes"), OAM_SUCCESS);
    alerts.Clear();
    EXPECT_EQ(Row().request("Bravo", 0), OAM_SUCCESS);
    EXPECT_EQ(alerts.Heard(), Whole({"Bravo"}));
    EXPECT_EQ(Change("Supervisor", "SynchronizeEnabled", "No"), OAM_SUCCESS);
    recorder.Clear();
    alerts.Clear();
    EXPECT_EQ(Row().request("Bravo", 0), OAM_SUCCESS);
    ASSERT_TRUE(alerts.WaitForCode(Row().done));
    EXPECT_EQ(ThreadsOf(Row()).count(std::this_thread::get_id()), 0u);
}

TEST_P(Synchronized, GoesOnAfterAFailure) {
    StartQuietly();
    On(Row(), [](const std::string& board) { return board == "Alpha" ? 0x92u : 0u; });
    EXPECT_EQ(Row().request(nullptr, OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(Row().done),
                ElementsAre(Said{Row().done, 2, "Alpha", Row().failed},
                            Said{Row().done, 0, "Bravo", Row().succeeded},
                            Said{Row().done, 0, "charlie", Row().succeeded}));
}

TEST_P(Synchronized, GoesOnAfterABoardThatIsBusy) {
    StartQuietly();
    Latch latch;
    HoldBack(kTest, "Bravo", latch);
    EXPECT_EQ(Row().request(nullptr, OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_THAT(Reached(Row()), ElementsAre("Alpha", "charlie"));
    EXPECT_EQ(alerts.Heard(Row().done).at(1).source, "Bravo");
    EXPECT_EQ(alerts.Heard(Row().done).at(1).severity, 2u);
    LetGo(kTest, "Bravo", latch);
}

TEST_P(Synchronized, FollowsATableThatItsPluginChanges) {
    StartQuietly();
    On(Row(), [](const std::string& board) -> unsigned {
        if (board != "Alpha") return 0;
        EXPECT_EQ(CreateBoard(kProduct), "Card 0");
        return _oamDeleteBoard("charlie");
    });
    EXPECT_EQ(Row().request(nullptr, OAM_SYNCHRONIZED), OAM_SUCCESS);
    EXPECT_THAT(Reached(Row()), ElementsAre("Alpha", "Bravo", "Card 0"));
    EXPECT_EQ(alerts.Heard(Row().done).size(), 3u);
}

TEST_P(Synchronized, HoldsTheTableForAllBoards) {
    StartQuietly();
    Latch latch;
    On(Row(), [&latch](const std::string& board) {
        if (board == "Bravo") latch.Wait();
        return 0u;
    });
    Elsewhere<oam_result> request([this] { return Row().request(nullptr, OAM_SYNCHRONIZED); });
    ASSERT_TRUE(latch.WaitForArrival());
    Elsewhere<Numbers> query([] { return NumberOf("charlie"); });
    EXPECT_TRUE(query.IsHeldBack());
    latch.Open();
    ASSERT_TRUE(query.IsDone());
    EXPECT_EQ(query.Get(), Are(0));
    ASSERT_TRUE(request.IsDone());
    EXPECT_EQ(request.Get(), OAM_SUCCESS);
}

TEST_P(Synchronized, LeavesTheTableFreeForOneBoard) {
    StartQuietly();
    Latch latch;
    On(Row(), [&latch](const std::string&) {
        latch.Wait();
        return 0u;
    });
    Elsewhere<oam_result> request([this] { return Row().request("Bravo", OAM_SYNCHRONIZED); });
    ASSERT_TRUE(latch.WaitForArrival());
    EXPECT_FALSE(request.IsDone(std::chrono::milliseconds(0)));
    EXPECT_EQ(NumberOf("charlie"), Are(0));
    latch.Open();
    ASSERT_TRUE(request.IsDone());
    EXPECT_EQ(request.Get(), OAM_SUCCESS);
}

TEST_P(Synchronized, LetsThePluginAskAndOpenObjects) {
    StartQuietly();
    On(Row(), [](const std::string& board) -> unsigned {
        EXPECT_EQ(NumberOf(board).code, OAM_SUCCESS);
        return Change(board, "Location.PCI.Bus", "8");
    });
    EXPECT_EQ(DbChange("Bravo", "Location.PCI.Bus", "0"), OAM_SUCCESS);
    EXPECT_EQ(DbChange("Alpha", "Location.PCI.Bus", "0"), OAM_SUCCESS);
    EXPECT_EQ(DbChange("charlie", "Location.PCI.Bus", "0"), OAM_SUCCESS);
    EXPECT_EQ(Row().request(nullptr, OAM_SYNCHRONIZED), OAM_SUCCESS);
    for (const char* board : {"Alpha", "Bravo", "charlie"}) EXPECT_EQ(BusSlotOf(board), Are(8, 0));
}

// One thread has an object's opening under way, in the plug-in, which will ask the table; the other
// runs the boards and its plug-in opens objects.
TEST_P(Synchronized, DoesNotHangWhileAnotherThreadOpensABoard) {
    StartQuietly();
    Latch latch;
    const std::thread::id here = std::this_thread::get_id();
    Script([&, this](ModuleScript& script) {
        script.openObject = [&latch, here](unsigned long, unsigned) -> unsigned {
            if (std::this_thread::get_id() == here) {
                latch.Wait();
                EXPECT_EQ(NumberOf("Alpha").code, OAM_SUCCESS);
            }
            return 0;
        };
        OnOperation(script, Row(), [](const std::string& board) -> unsigned {
            return KeywordOf(board, "Name") == Is(board) ? 0 : 0x93;
        });
    });
    Elsewhere<oam_result> request([&, this] {
        EXPECT_TRUE(latch.WaitForArrival());
        Elsewhere<int> release([&latch] {
            std::this_thread::sleep_for(kHeldBack);  // nothing tells that a thread waits for a lock
            latch.Open();
            return 0;
        });
        const oam_result requested = Row().request(nullptr, OAM_SYNCHRONIZED);
        EXPECT_TRUE(release.IsDone());
        return requested;
    });
    unsigned long handle = 0;
    EXPECT_EQ(_oamOpenObject(kClient, "Bravo", &handle, kRead), OAM_SUCCESS);
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    ASSERT_TRUE(request.IsDone());
    EXPECT_EQ(request.Get(), OAM_SUCCESS);
    EXPECT_EQ(alerts.Heard(Row().done).size(), 3u);
}

TEST_P(Synchronized, DoesNotHangWhileBoardsAreChanged) {
    StartQuietly();
    On(Row(), [](const std::string&) -> unsigned {
        return KeywordOf("Supervisor", "Name") == Is("Supervisor") ? 0 : 0x94;
    });
    const int rounds = Row().done == kStop.done ? 2 : 30;
    Elsewhere<int> changes([rounds] {
        for (int i = 0; i < 5 * rounds; ++i) {
            (void)DbChange("Bravo", "Location.PCI.Bus", std::to_string(i));
            (void)KeywordOf("Alpha", "Name");
        }
        return 0;
    });
    for (int i = 0; i < rounds; ++i) {
        EXPECT_EQ(Row().request(nullptr, OAM_SYNCHRONIZED), OAM_SUCCESS);
    }
    ASSERT_TRUE(changes.IsDone());
    EXPECT_EQ(alerts.Heard(Row().done).size(), static_cast<size_t>(3 * rounds));
}

INSTANTIATE_TEST_SUITE_P(Each, Synchronized, Values(kStart, kStop),
                         [](const auto& row) { return row.param.name; });

}  // namespace

}  // namespace oam::test
