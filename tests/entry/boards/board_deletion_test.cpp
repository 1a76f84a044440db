// Deleting boards: what the plug-in may say about it, and what is left.
#include <fstream>
#include <stdexcept>

#include "boards.h"
#include "elsewhere.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class BoardDeletion : public BoardTest {
  protected:
    void SetUp() override {
        BoardTest::SetUp();
        for (const char* board : {"Alpha", "Bravo"}) Configure(board);
        Configure("Stray", {{"Product", "Unheard of"}});
        StartQuietly();
    }
    void PluginAnswers(unsigned code) {
        Script([code](ModuleScript& script) {
            script.destroyBoard = [code](const char*) { return code; };
        });
    }
    // The number in the segment's first record, past the count and the name.
    static constexpr long kFirstNumber = 4 + 132;
    unsigned FirstNumber() const {
        unsigned number = 0;
        std::ifstream segment(home.Path("shm/OAM_BoardIDsShadow"), std::ios::binary);
        segment.seekg(kFirstNumber).read(reinterpret_cast<char*>(&number), sizeof number);
        EXPECT_TRUE(segment.good());
        return number;
    }
    void SetFirstNumber(unsigned number) const {
        std::fstream segment(home.Path("shm/OAM_BoardIDsShadow"),
                             std::ios::binary | std::ios::in | std::ios::out);
        segment.seekp(kFirstNumber).write(reinterpret_cast<const char*>(&number), sizeof number);
        EXPECT_TRUE(segment.good());
    }
};

TEST_F(BoardDeletion, AsksThePluginAndRemovesTheBoard) {
    EXPECT_EQ(_oamDeleteBoard("alpha"), OAM_SUCCESS);
    EXPECT_THAT(Asked(), ElementsAre("rec.bpi DestroyBoard(Alpha)"));
    EXPECT_THAT(BoardNames(), ElementsAre("Bravo"));
    EXPECT_FALSE(home.Exists("oam/cfg/Obj0.xmo"));
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_DELETED, 0, "Alpha", ""}));
}

// As the receiver of an alert that the plug-in raises in DestroyBoard might.
TEST_F(BoardDeletion, LetsNobodyDeleteTheBoardMeanwhile) {
    Script([&](ModuleScript& script) {
        script.destroyBoard = [](const char* board) {
            EXPECT_EQ(_oamDeleteBoard(board), OAMERR_ACCESS_DENIED);
            return 0u;
        };
    });
    EXPECT_EQ(_oamDeleteBoard("Alpha"), OAM_SUCCESS);
    EXPECT_THAT(BoardNames(), ElementsAre("Bravo"));
    EXPECT_EQ(_oamDeleteBoard(nullptr), OAM_SUCCESS);
    EXPECT_THAT(BoardNames(), IsEmpty());
}

TEST_F(BoardDeletion, OfABoardThatIsRenamedMeanwhileTakesItsRecord) {
    Script([&](ModuleScript& script) {
        script.destroyBoard = [](const char* board) {
            EXPECT_EQ(Change(board, "Name", "Renamed"), OAM_SUCCESS);
            return 0u;
        };
    });
    EXPECT_EQ(_oamDeleteBoard("Alpha"), OAM_SUCCESS);
    EXPECT_THAT(BoardNames(), ElementsAre("Bravo"));
}

TEST_F(BoardDeletion, IsRefusedWithThePluginsCode) {
    PluginAnswers(0xC1);
    EXPECT_EQ(_oamDeleteBoard("Alpha"), 0xC1u);
    EXPECT_THAT(BoardNames(), ElementsAre("Alpha", "Bravo"));
    EXPECT_TRUE(home.Exists("oam/cfg/Obj0.xmo"));
    EXPECT_THAT(alerts.Heard(), IsEmpty());
    Elsewhere<Numbers> query([] { return NumberOf("Alpha"); });
    ASSERT_TRUE(query.IsDone());
    EXPECT_EQ(query.Get(), Are(0));
}

TEST_F(BoardDeletion, IsRefusedWhenThePluginThrows) {
    Script([](ModuleScript& script) {
        script.destroyBoard = [](const char*) -> unsigned { throw std::runtime_error("no"); };
    });
    EXPECT_EQ(_oamDeleteBoard("Alpha"), OAM_REASON_FAILED);
    EXPECT_THAT(BoardNames(), ElementsAre("Alpha", "Bravo"));
}

TEST_F(BoardDeletion, GoesOnWhenThePluginDoesNotKnowTheBoard) {
    PluginAnswers(OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamDeleteBoard("Alpha"), OAM_SUCCESS);
    EXPECT_THAT(BoardNames(), ElementsAre("Bravo"));
}

TEST_F(BoardDeletion, OfAnUnknownObjectFails) {
    EXPECT_EQ(_oamDeleteBoard("Nobody"), OAMERR_NOT_FOUND);
    EXPECT_THAT(Asked(), IsEmpty());
}

TEST_F(BoardDeletion, KeptSuccessForABoardThatIsNotInTheTable) {
    EXPECT_EQ(_oamDeleteBoard("Stray"), OAM_SUCCESS);
    EXPECT_THAT(Asked(), IsEmpty());
    EXPECT_THAT(Objects(), ElementsAre("Alpha", "Bravo", "rec.bpi", "Supervisor"));
}

// A number that only the segment holds shows whether the segment was written again.
TEST_F(BoardDeletion, KeptShadowWhenTheBoardIsNotInTheTable) {
    const unsigned marked = 4711;
    SetFirstNumber(marked);
    EXPECT_EQ(_oamDeleteBoard("Stray"), OAM_SUCCESS);
    EXPECT_EQ(FirstNumber(), marked);
    EXPECT_EQ(_oamDeleteBoard("Bravo"), OAM_SUCCESS);
    EXPECT_EQ(FirstNumber(), 0u);
}

TEST_F(BoardDeletion, OfAllBoardsLeavesTheOtherObjects) {
    EXPECT_EQ(_oamDeleteBoard(nullptr), OAM_SUCCESS);
    EXPECT_THAT(Asked(), ElementsAre("rec.bpi DestroyBoard(Alpha)", "rec.bpi DestroyBoard(Bravo)"));
    EXPECT_THAT(BoardNames(), IsEmpty());
    EXPECT_THAT(Objects(), ElementsAre("rec.bpi", "Supervisor"));
}

TEST_F(BoardDeletion, RunsThePluginUnderTheTableLock) {
    Latch latch;
    Script([&latch](ModuleScript& script) {
        script.destroyBoard = [&latch](const char* board) -> unsigned {
            EXPECT_EQ(NumberOf(board).code, OAM_SUCCESS);
            latch.Wait();
            return 0;
        };
    });
    Elsewhere<oam_result> deletion([] { return _oamDeleteBoard("Alpha"); });
    ASSERT_TRUE(latch.WaitForArrival());
    Elsewhere<Numbers> query([] { return NumberOf("Alpha"); });
    EXPECT_TRUE(query.IsHeldBack());
    latch.Open();
    ASSERT_TRUE(deletion.IsDone());
    EXPECT_EQ(deletion.Get(), OAM_SUCCESS);
    ASSERT_TRUE(query.IsDone());
    EXPECT_EQ(query.Get(), NoNumbers(OAMERR_NOT_FOUND));
}

}  // namespace

}  // namespace oam::test
