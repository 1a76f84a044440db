// Between the database and the board table: a new board's record, and the table from the objects.
#include "board/board_store.h"

#include "board_room.h"
#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class NewBoard : public BoardRoom {
  protected:
    NewBoard() {
        plugin = AddPlugin();
        ConfigDoor::The().AddObject("B", {{"Product", "Prod"}});
    }
    // What the failing creation has left of the table lock is given back.
    int GiveTableBack() NO_THREAD_SAFETY_ANALYSIS {
        const int depth = TableMutex::Depth();
        for (int i = 0; i < depth; ++i) TableLock().Unlock();
        return depth;
    }
    void ExpectFailure(const std::string& step, bool recordStays) {
        SCOPED_TRACE(step);
        doors.Answer(step, oam_result(0x42));
        EXPECT_EQ(boardIDsCreate("B", plugin), oam_result(0x42));
        EXPECT_EQ(GiveTableBack(), 1);
        EXPECT_EQ(BoardNames(),
                  recordStays ? std::vector<std::string>{"B"} : std::vector<std::string>{});
        EXPECT_EQ(ConfigDoor::The().StillOpen(), 0u);
    }

    const CPlugin* plugin;
};

TEST_F(NewBoard, GetsItsRecordItsKeywordsAndItsNumberOnceMoreThroughTheOrdinaryPath) {
    EXPECT_EQ(boardIDsCreate("B", plugin), OAM_SUCCESS);
    std::vector<std::string> calls = doors.Calls();
    std::erase_if(calls,
                  [](const std::string& call) { return call.starts_with("_oamDbGetKeyword("); });
    EXPECT_THAT(
        calls,
        ElementsAre("_oamDbOpenObject(B, 3)", "_oamDbSetKeyword(1, Number, 0)",
                    "_oamDbSetKeyword(1, Driver.Name, )", "_oamDbSetKeyword(1, Driver.BoardId, )",
                    "_oamDbSetKeyword(1, Location.PCI.Bus, )",
                    "_oamDbSetKeyword(1, Location.PCI.Slot, )",
                    "_oamDbSetKeyword(1, Location.PCI.IOAddress, )",
                    "_oamDbSetKeyword(1, Eeprom.SerialNum, )",
                    "_oamDbSetKeyword(1, Clocking.HBus.ClockMode, )",
                    "_oamDbSetKeyword(1, AutoStart, No)", "_oamDbSetKeyword(1, AutoStop, No)",
                    "_oamDbCloseObject(1)", "_oamOpenObject(handle, B, 1)",
                    "_oamSetKeyword(2, Number, 0)", "_oamCloseObject_WOAN(2)"));
    EXPECT_EQ(TableMutex::Depth(), 0);
    EXPECT_EQ(Board("B").plugin, plugin);
    EXPECT_EQ(Board("B").values.cpciShelf, 32u);
    EXPECT_STREQ(Board("B").values.product.OrEmpty(), "") << "the commit fills it in";
}

TEST_F(NewBoard, KeywordsThatThePluginMadeAreLeftAlone) {
    ConfigDoor::The().AddObject("B", {{"AutoStart", "Yes"}, {"Driver.Name", "AG"}});
    EXPECT_EQ(boardIDsCreate("B", plugin), OAM_SUCCESS);
    EXPECT_EQ(ConfigDoor::The().Stored("B", "AutoStart"), "Yes");
    EXPECT_EQ(ConfigDoor::The().Stored("B", "Driver.Name"), "AG");
    EXPECT_EQ(ConfigDoor::The().Stored("B", "AutoStop"), "No");
    EXPECT_EQ(ConfigDoor::The().Stored("B", "XLaw"), std::nullopt);
}

TEST_F(NewBoard, GetsTheLowestFreeNumber) {
    AddBoard("A", 0, plugin);
    AddBoard("C", 2, plugin);
    EXPECT_EQ(boardIDsCreate("B", plugin), OAM_SUCCESS);
    EXPECT_EQ(Board("B").values.number, 1u);
    EXPECT_EQ(ConfigDoor::The().Stored("B", "Number"), "1");
}

TEST_F(NewBoard, TableIsHeldWhileTheObjectIsWrittenAndFreeForTheCommit) {
    int atWrite = -1;
    int atCommit = -1;
    doors.On("_oamDbSetKeyword", [&] {
        atWrite = TableMutex::Depth();
        return OAM_SUCCESS;
    });
    doors.On("_oamCloseObject_WOAN", [&] {
        atCommit = TableMutex::Depth();
        return OAM_SUCCESS;
    });
    EXPECT_EQ(boardIDsCreate("B", plugin), OAM_SUCCESS);
    EXPECT_EQ(atWrite, 1);
    EXPECT_EQ(atCommit, 0);
}

TEST_F(NewBoard, KeptTakenNameLeavesTheTableLocked) {
    AddBoard("b", 9, plugin);
    EXPECT_EQ(boardIDsCreate("B", plugin), OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(GiveTableBack(), 1);
    EXPECT_THAT(BoardNames(), ElementsAre("b"));
}

TEST_F(NewBoard, KeptFailedOpeningLeavesTheTableLockedWithoutTheRecord) {
    ExpectFailure("_oamDbOpenObject", false);
}

TEST_F(NewBoard, KeptFailedWriteLeavesTheTableLockedWithoutTheRecord) {
    ExpectFailure("_oamDbSetKeyword", false);
    EXPECT_EQ(doors.Calls().back(), "_oamDbCloseObject(1)");
}

TEST_F(NewBoard, KeptFailedClosingLeavesTheTableLockedWithoutTheRecord) {
    ExpectFailure("_oamDbCloseObject", false);
}

TEST_F(NewBoard, FailedCommitOfTheNumberKeepsTheRecordAndGivesTheTableBack) {
    doors.Answer("_oamOpenObject", oam_result(0x42));
    EXPECT_EQ(boardIDsCreate("B", plugin), oam_result(0x42));
    EXPECT_EQ(TableMutex::Depth(), 0);
    EXPECT_THAT(BoardNames(), ElementsAre("B"));
}

TEST_F(NewBoard, AnswersTheSettingOfTheNumberNotTheClosing) {
    doors.Answer("_oamCloseObject_WOAN", oam_result(1));
    EXPECT_EQ(boardIDsCreate("B", plugin), OAM_SUCCESS);
    (void)boardTable().Remove("B");
    doors.Answer("_oamSetKeyword", oam_result(2));
    EXPECT_EQ(boardIDsCreate("B", plugin), oam_result(2));
    EXPECT_EQ(ConfigDoor::The().StillOpen(), 0u);
}

TEST_F(NewBoard, WithoutMemoryIsNotInTheTable) {
    EXPECT_EQ(FailEachAllocation([&] { return boardIDsCreate("B", plugin); },
                                 [&](oam_result result) {
                                     EXPECT_EQ(result, OAMERR_NOT_ENOUGH_MEMORY);
                                     EXPECT_EQ(GiveTableBack(), 1);
                                     EXPECT_THAT(BoardNames(), IsEmpty());
                                 }),
              OAM_SUCCESS);
    EXPECT_THAT(BoardNames(), ElementsAre("B"));
}

// ---- The table from the objects

class StoredBoards : public BoardRoom {
  protected:
    StoredBoards() {
        plugin = AddPlugin();
        EXPECT_EQ(products().Insert("Prod", plugin), OAM_SUCCESS);
    }
    void AddObject(const std::string& name, ConfigDoor::Entries entries) {
        entries.emplace("Product", "prod");
        ConfigDoor::The().AddObject(name, entries);
    }
    const CPlugin* plugin;
};

TEST_F(StoredBoards, ObjectsOfAKnownProductAreBoardsOfItsPlugin) {
    AddObject("B", {{"Number", "5"}, {"Driver.Name", "AG"}});
    ConfigDoor::The().AddObject("Supervisor");
    ConfigDoor::The().AddObject("Foreign", {{"Product", "Other"}});
    EXPECT_EQ(boardIDsInit(), OAM_SUCCESS);
    EXPECT_THAT(BoardNames(), ElementsAre("B"));
    EXPECT_EQ(Board("B").plugin, plugin);
    EXPECT_EQ(Board("B").values.number, 5u);
    EXPECT_STREQ(Board("B").values.driverName.Get(), "AG");
    EXPECT_EQ(ConfigDoor::The().StillOpen(), 0u);
}

TEST_F(StoredBoards, ArePublishedOnceTheTableIsFull) {
    AddObject("A", {{"Number", "1"}});
    AddObject("B", {{"Number", "2"}});
    EXPECT_EQ(plugins().Insert("VxPlugin.BPI"), OAM_SUCCESS);
    EXPECT_EQ(boardIDsInit(), OAM_SUCCESS);
    EXPECT_THAT(doors.CallsOf({"oamShadowInit", "Publish"}),
                ElementsAre("oamShadowInit()", "Publish(A, B)"));
    EXPECT_TRUE(ShadowDoor::The().publishedUsingVxPlugin);
    EXPECT_TRUE(isUsingVxPlugin());
}

TEST_F(StoredBoards, MissingNumberIsZeroAndTakenOnceOnly) {
    AddObject("A", {});
    EXPECT_EQ(boardIDsInit(), OAM_SUCCESS);
    EXPECT_EQ(Board("A").values.number, 0u);
    EXPECT_EQ(boardIDsExit(), OAM_SUCCESS);
    AddObject("B", {});
    EXPECT_EQ(boardIDsInit(), OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(BoardNames(), IsEmpty());
    EXPECT_EQ(doors.Calls().back(), "oamShadowExit()");
}

TEST_F(StoredBoards, ObjectThatCannotBeOpenedOrClosedStopsTheFilling) {
    AddObject("A", {});
    for (const char* step : {"DbOpenObjectAsFound", "_oamDbCloseObject"}) {
        doors.Answer(step, oam_result(0x42));
        EXPECT_EQ(boardIDsInit(), oam_result(0x42)) << step;
        EXPECT_THAT(BoardNames(), IsEmpty());
        doors.Reset();
    }
}

TEST_F(StoredBoards, ObjectThatIsNoBoardIsClosedAgain) {
    ConfigDoor::The().AddObject("Supervisor");
    EXPECT_EQ(boardIDsInit(), OAM_SUCCESS);
    EXPECT_THAT(doors.CallsOf({"DbOpenObjectAsFound", "_oamDbCloseObject"}),
                ElementsAre("DbOpenObjectAsFound(Supervisor)", "_oamDbCloseObject(1)"));
}

TEST_F(StoredBoards, FailedShadowEmptiesTheTable) {
    AddObject("A", {});
    doors.Answer("oamShadowInit", OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(boardIDsInit(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_THAT(BoardNames(), IsEmpty());
}

TEST_F(StoredBoards, FailedPublicationIsNoFailure) {
    AddObject("A", {});
    doors.Answer("Publish", OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(boardIDsInit(), OAM_SUCCESS);
    EXPECT_THAT(BoardNames(), ElementsAre("A"));
}

TEST_F(StoredBoards, NameThatDoesNotFitIsPassedOverAndTold) {
    AddObject("A", {{"Number", "1"}});
    AddObject("B" + std::string(127, 'b'), {{"Number", "2"}});
    AddObject("C", {{"Number", "3"}});
    EXPECT_EQ(boardIDsInit(), OAM_SUCCESS);
    EXPECT_THAT(BoardNames(), ElementsAre("A", "C"));
    EXPECT_THAT(doors.CallsOf({"AlertNotify"}),
                ElementsAre("AlertNotify(OAMEVN_ALERT, 1, Board, Object 1 has a name of more than "
                            "127 characters and is passed over)"));
}

TEST_F(StoredBoards, DatabaseIsReadWithoutTheTableLock) {
    AddObject("A", {});
    doors.On("_oamDbGetKeyword", [] {
        EXPECT_EQ(TableMutex::Depth(), 0);
        return OAM_SUCCESS;
    });
    EXPECT_EQ(boardIDsInit(), OAM_SUCCESS);
}

TEST_F(StoredBoards, WithoutMemoryAreAllThereOrNone) {
    AddObject("A", {{"Driver.Name", "AG"}});
    EXPECT_EQ(FailEachAllocation([&] { return boardIDsInit(); },
                                 [&](oam_result result) {
                                     // The shadow is published whatever becomes of it.
                                     if (result == OAM_SUCCESS) {
                                         EXPECT_THAT(BoardNames(), ElementsAre("A"));
                                         EXPECT_EQ(boardIDsExit(), OAM_SUCCESS);
                                     } else {
                                         EXPECT_EQ(result, OAMERR_NOT_ENOUGH_MEMORY);
                                         EXPECT_THAT(BoardNames(), IsEmpty());
                                     }
                                 }),
              OAM_SUCCESS);
    EXPECT_THAT(BoardNames(), ElementsAre("A"));
}

}  // namespace
}  // namespace oam::test
