// Operations on every board, each on a thread of its own.
#include "elsewhere.h"
#include "operations.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using ::testing::Values;

using AllBoards = AllBoardsTest;

class AllBoardsOperation : public AllBoards, public testing::WithParamInterface<Operation> {
  protected:
    const Operation& Row() const { return GetParam(); }
};

TEST_P(AllBoardsOperation, RunsOnAThreadForEachBoardAtOnce) {
    StartQuietly();
    Latch latch;
    On(Row(), [&latch](const std::string&) {
        latch.Wait();
        return 0u;
    });
    ASSERT_EQ(Row().request(nullptr, 0), OAM_SUCCESS);
    EXPECT_TRUE(latch.WaitForArrival(3));
    EXPECT_THAT(Reached(Row()), UnorderedElementsAre("Alpha", "Bravo", "charlie"));
    EXPECT_EQ(ThreadsOf(Row()).size(), 3u);
    EXPECT_EQ(ThreadsOf(Row()).count(std::this_thread::get_id()), 0u);
    latch.Open();
    EXPECT_TRUE(alerts.WaitForCode(Row().done, 3));
    EXPECT_THAT(alerts.Heard(Row().done),
                UnorderedElementsAre(Said{Row().done, 0, "Alpha", Row().succeeded},
                                     Said{Row().done, 0, "Bravo", Row().succeeded},
                                     Said{Row().done, 0, "charlie", Row().succeeded}));
}

TEST_P(AllBoardsOperation, LeavesTheTableFreeWhileThePluginWorks) {
    StartQuietly();
    Latch latch;
    On(Row(), [&latch](const std::string&) {
        latch.Wait();
        return 0u;
    });
    ASSERT_EQ(Row().request(nullptr, 0), OAM_SUCCESS);
    ASSERT_TRUE(latch.WaitForArrival(3));
    EXPECT_EQ(NumberOf("charlie"), Are(0));
    latch.Open();
    EXPECT_TRUE(alerts.WaitForCode(Row().done, 3));
}

TEST_P(AllBoardsOperation, TellsEachFailureApart) {
    StartQuietly();
    On(Row(), [](const std::string& board) { return board == "Bravo" ? 0x91u : 0u; });
    ASSERT_EQ(Row().request(nullptr, 0), OAM_SUCCESS);
    EXPECT_TRUE(alerts.WaitForCode(Row().done, 3));
    EXPECT_THAT(alerts.Heard(Row().done),
                UnorderedElementsAre(Said{Row().done, 0, "Alpha", Row().succeeded},
                                     Said{Row().done, 2, "Bravo", Row().failed},
                                     Said{Row().done, 0, "charlie", Row().succeeded}));
}

TEST_P(AllBoardsOperation, IsNothingWithoutBoards) {
    StartQuietly();
    EXPECT_EQ(_oamDeleteBoard(nullptr), OAM_SUCCESS);
    alerts.Clear();
    const size_t threads = ThreadCount();
    EXPECT_EQ(Row().request(nullptr, 0), OAM_SUCCESS);
    EXPECT_TRUE(WaitForThreads(threads));
    EXPECT_THAT(alerts.Heard(), IsEmpty());
    EXPECT_EQ(recorder.Count(Row().entry), 0u);
}

// The worker of the whole request waits for the table, which a deletion holds, until no thread can
// be made any more.
TEST_P(AllBoardsOperation, TellsForEachBoardThatNoThreadCanBeMade) {
    Configure("Doomed");
    StartQuietly();
    Latch latch;
    Script([&latch](ModuleScript& script) {
        script.destroyBoard = [&latch](const char*) {
            latch.Wait();
            return 0u;
        };
    });
    Elsewhere<oam_result> deletion([] { return _oamDeleteBoard("Doomed"); });
    ASSERT_TRUE(latch.WaitForArrival());
    ASSERT_EQ(Row().request(nullptr, 0), OAM_SUCCESS);
    {
        const NoNewThreads none;
        latch.Open();
        EXPECT_TRUE(alerts.WaitForCode(Row().done, 3));
    }
    ASSERT_TRUE(deletion.IsDone());
    EXPECT_EQ(deletion.Get(), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(Row().done),
                ElementsAre(Said{Row().done, 2, "Alpha", Row().noThread},
                            Said{Row().done, 2, "Bravo", Row().noThread},
                            Said{Row().done, 2, "charlie", Row().noThread}));
    EXPECT_EQ(recorder.Count(Row().entry), 0u);
    EXPECT_TRUE(WaitUntilIdle("Alpha"));
}

INSTANTIATE_TEST_SUITE_P(Each, AllBoardsOperation, Values(kStart, kStop, kTest),
                         [](const auto& row) { return row.param.name; });

TEST_F(AllBoards, AreTestedWithTheValueEach) {
    StartQuietly();
    ASSERT_EQ(_oamTestBoard(nullptr, 0xAB), OAM_SUCCESS);
    ASSERT_TRUE(alerts.WaitForCode(kTest.done, 3));
    EXPECT_THAT(
        recorder.Lines({"TestBoard"}),
        UnorderedElementsAre("rec.bpi TestBoard(Alpha, 171)", "rec.bpi TestBoard(Bravo, 171)",
                             "rec.bpi TestBoard(charlie, 171)"));
}

TEST_F(AllBoards, KeptWordingOfATestThatGetsNoThread) {
    EXPECT_STREQ(kTest.noThread, kStart.noThread);
    StartQuietly();
    Latch latch;
    Script([&latch](ModuleScript& script) {
        script.destroyBoard = [&latch](const char*) {
            latch.Wait();
            return 0u;
        };
    });
    Elsewhere<oam_result> deletion([] { return _oamDeleteBoard("Alpha"); });
    ASSERT_TRUE(latch.WaitForArrival());
    ASSERT_EQ(_oamTestBoard(nullptr, 0), OAM_SUCCESS);
    const NoNewThreads none;
    latch.Open();
    ASSERT_TRUE(alerts.WaitForCode(kTest.done, 2));
    EXPECT_EQ(alerts.Heard(kTest.done).at(0).text, "Can't create thread to start board.");
    ASSERT_TRUE(deletion.IsDone());
}

TEST_F(AllBoards, AreNeverTestedInTheCallersThread) {
    Settings({{"SynchronizeEnabled", "Yes"}});
    StartQuietly();
    ASSERT_EQ(_oamTestBoard(nullptr, OAM_SYNCHRONIZED), OAM_SUCCESS);
    ASSERT_TRUE(alerts.WaitForCode(kTest.done, 3));
    EXPECT_EQ(ThreadsOf(kTest).count(std::this_thread::get_id()), 0u);
    EXPECT_EQ(ThreadsOf(kTest).size(), 3u);
    for (const auto& call : recorder.Calls("TestBoard")) EXPECT_EQ(call.arguments.at(1), "2");
}

}  // namespace

}  // namespace oam::test
