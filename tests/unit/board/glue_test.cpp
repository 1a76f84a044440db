// The glue between objects and plug-ins: who is called with what, and what a refusal leaves.
#include "board_room.h"
#include "oam/shadow.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Glue : public BoardRoom {
  protected:
    Glue() {
        EXPECT_EQ(oamShadowInit(), OAM_SUCCESS);
        plugin = AddPlugin<1>("a.bpi");
        other = AddPlugin<2>("b.bpi");
        AddBoard("B", 0, plugin);
        AddBoard("C", 1, other);
        AddBoard("Unserved", 2, nullptr);
        doors.TakeCalls();
    }
    const CPlugin* plugin;
    const CPlugin* other;
    char buffer[8] = "";
};

TEST_F(Glue, BoardAccessReachesTheBoardsOwnPlugin) {
    EXPECT_EQ(BoardOpen("c", 5, 1), OAM_SUCCESS);
    EXPECT_EQ(BoardClose("C", 5), OAM_SUCCESS);
    EXPECT_EQ(BoardSetKeyword("B", 5, "Key", "v"), OAM_SUCCESS);
    EXPECT_EQ(BoardGetKeyword("B", 5, "Key", buffer, 8), OAM_SUCCESS);
    EXPECT_EQ(BoardGetQualifier("B", 5, "Key", "Max", nullptr, 0), OAM_SUCCESS);
    EXPECT_THAT(doors.Calls(),
                ElementsAre("p2.OpenObject(5, 1)", "p2.CloseObject(5)", "p1.SetKeyword(5, Key, v)",
                            "p1.GetKeyword(5, Key, buffer, 8)",
                            "p1.GetQualifier(5, Key, Max, null, 0)"));
}

TEST_F(Glue, PluginAccessReachesTheNamedPlugin) {
    EXPECT_EQ(PluginOpen("B.BPI", 5, 1), OAM_SUCCESS);
    EXPECT_EQ(PluginClose("b.bpi", 5), OAM_SUCCESS);
    EXPECT_EQ(PluginSetKeyword("a.bpi", 5, "Name", " x"), OAM_SUCCESS) << "without the name check";
    EXPECT_EQ(PluginGetKeyword("a.bpi", 5, "Key", buffer, 8), OAM_SUCCESS);
    EXPECT_EQ(PluginGetQualifier("a.bpi", 5, "Key", "Max", buffer, 8), OAM_SUCCESS);
    EXPECT_THAT(doors.Calls(),
                ElementsAre("p2.OpenObject(5, 1)", "p2.CloseObject(5)",
                            "p1.SetKeyword(5, Name,  x)", "p1.GetKeyword(5, Key, buffer, 8)",
                            "p1.GetQualifier(5, Key, Max, buffer, 8)"));
}

TEST_F(Glue, AnswersComeBackUnchanged) {
    doors.Answer("p1.GetKeyword", oam_result(0x1234));
    EXPECT_EQ(BoardGetKeyword("B", 5, "Key", buffer, 8), oam_result(0x1234));
    EXPECT_EQ(PluginGetKeyword("a.bpi", 5, "Key", buffer, 8), oam_result(0x1234));
}

TEST_F(Glue, UnknownBoardOrPluginIsNotFound) {
    for (const char* board : {"None", "Unserved"}) {
        EXPECT_EQ(BoardOpen(board, 5, 1), OAMERR_NOT_FOUND);
        EXPECT_EQ(BoardClose(board, 5), OAMERR_NOT_FOUND);
        EXPECT_EQ(BoardSetKeyword(board, 5, "Key", "v"), OAMERR_NOT_FOUND);
        EXPECT_EQ(BoardGetKeyword(board, 5, "Key", buffer, 8), OAMERR_NOT_FOUND);
        EXPECT_EQ(BoardGetQualifier(board, 5, "Key", "Max", buffer, 8), OAMERR_NOT_FOUND);
    }
    EXPECT_EQ(plugins().Insert("unbound.bpi"), OAM_SUCCESS);
    for (const char* name : {"none.bpi", "unbound.bpi"}) {
        EXPECT_EQ(PluginOpen(name, 5, 1), OAMERR_NOT_FOUND);
        EXPECT_EQ(PluginClose(name, 5), OAMERR_NOT_FOUND);
        EXPECT_EQ(PluginSetKeyword(name, 5, "Key", "v"), OAMERR_NOT_FOUND);
        EXPECT_EQ(PluginGetKeyword(name, 5, "Key", buffer, 8), OAMERR_NOT_FOUND);
        EXPECT_EQ(PluginGetQualifier(name, 5, "Key", "Max", buffer, 8), OAMERR_NOT_FOUND);
    }
    EXPECT_THAT(doors.Calls(), IsEmpty());
}

TEST_F(Glue, QualifiersAreStoredWhateverTheName) {
    EXPECT_EQ(BoardSetQualifier("None", 5, "Key", "Max", "9"), OAM_SUCCESS);
    doors.Answer("_oamDbSetQualifier", OAMERR_ACCESS_DENIED);
    EXPECT_EQ(PluginSetQualifier("none.bpi", 6, "Key", "Max", "9"), OAMERR_ACCESS_DENIED);
    EXPECT_THAT(doors.Calls(), ElementsAre("_oamDbSetQualifier(5, Key, Max, 9)",
                                           "_oamDbSetQualifier(6, Key, Max, 9)"));
}

TEST_F(Glue, PluginWorksWithoutTheTableLock) {
    doors.On("p1.SetKeyword", [] {
        EXPECT_EQ(TableMutex::Depth(), 0);
        return OAM_SUCCESS;
    });
    EXPECT_EQ(BoardSetKeyword("B", 5, "Key", "v"), OAM_SUCCESS);
}

TEST_F(Glue, KeptNameThatCannotBeKeptIsRefusedWithSeven) {
    for (const char* bad : {"", " B", "B ", " ", "a<b", "a>b", "a\\b", "<", "\\"}) {
        EXPECT_EQ(BoardSetKeyword("B", 5, "nAmE", bad), oam_result(7)) << bad;
    }
    EXPECT_EQ(BoardSetKeyword("B", 5, "Name", nullptr), oam_result(7));
    EXPECT_THAT(doors.Calls(), IsEmpty());
    EXPECT_EQ(BoardSetKeyword("None", 5, "Name", " "), oam_result(7)) << "checked first";
}

TEST_F(Glue, OtherNamesAndKeywordsPass) {
    for (const char* good : {"a b", "x", "100%s", "a\tb", "\"x\"", "a/b", "\tB"}) {
        EXPECT_EQ(BoardSetKeyword("B", 5, "Name", good), OAM_SUCCESS) << good;
    }
    EXPECT_EQ(BoardSetKeyword("B", 5, "Named", " <"), OAM_SUCCESS);
    EXPECT_EQ(doors.Calls().size(), 8u);
}

// ---- Creation and deletion

TEST_F(Glue, CreationAsksThePluginThenMakesTheRecordAndPublishes) {
    EXPECT_EQ(products().Insert("Prod", other), OAM_SUCCESS);
    ConfigDoor::The().AddObject("New");
    EXPECT_EQ(BoardCreate("PROD", "New"), OAM_SUCCESS);
    EXPECT_EQ(doors.Calls().front(), "p2.CreateBoard(New, PROD)");
    EXPECT_EQ(doors.Calls().back(), "Publish(B, C, New, Unserved)");
    EXPECT_EQ(Board("New").plugin, other);
    EXPECT_EQ(Board("New").values.number, 3u);
}

TEST_F(Glue, CreationOfAnUnknownProductAsksNobody) {
    EXPECT_EQ(BoardCreate("Prod", "New"), OAMERR_NOT_FOUND);
    EXPECT_EQ(BoardCreate(nullptr, "New"), OAMERR_NOT_FOUND);
    EXPECT_THAT(doors.Calls(), IsEmpty());
}

TEST_F(Glue, CreationThatThePluginRefusesMakesNoRecord) {
    EXPECT_EQ(products().Insert("Prod", plugin), OAM_SUCCESS);
    doors.Answer("p1.CreateBoard", oam_result(0x55));
    EXPECT_EQ(BoardCreate("Prod", "New"), oam_result(0x55));
    EXPECT_THAT(doors.Calls(), ElementsAre("p1.CreateBoard(New, Prod)"));
    EXPECT_EQ(boardTable().Find("New"), nullptr);
}

TEST_F(Glue, CreationThatFailsLaterPublishesAllTheSame) {
    EXPECT_EQ(products().Insert("Prod", plugin), OAM_SUCCESS);
    ConfigDoor::The().AddObject("New");
    doors.Answer("_oamOpenObject", oam_result(0x55));
    EXPECT_EQ(BoardCreate("Prod", "New"), oam_result(0x55));
    EXPECT_EQ(doors.Calls().back(), "Publish(B, C, New, Unserved)");
}

TEST_F(Glue, KeptDeletionOfAnUnknownBoardSucceedsAndPublishesNothing) {
    EXPECT_EQ(BoardDelete("None"), OAM_SUCCESS);
    EXPECT_THAT(doors.Calls(), IsEmpty());
    EXPECT_EQ(TableMutex::Depth(), 0);
}

TEST_F(Glue, DeletionAsksThePluginUnderTheTableLockThenRemovesAndPublishes) {
    int depth = -1;
    doors.On("p1.DestroyBoard", [&] {
        depth = TableMutex::Depth();
        return OAM_SUCCESS;
    });
    EXPECT_EQ(BoardDelete("b"), OAM_SUCCESS);
    EXPECT_EQ(depth, 1);
    EXPECT_EQ(TableMutex::Depth(), 0);
    EXPECT_THAT(doors.Calls(), ElementsAre("p1.DestroyBoard(B)", "Publish(C, Unserved)"));
}

TEST_F(Glue, DeletionOfABoardThatThePluginDoesNotKnowSucceeds) {
    doors.Answer("p1.DestroyBoard", OAMERR_NOT_FOUND);
    EXPECT_EQ(BoardDelete("B"), OAM_SUCCESS);
    EXPECT_EQ(boardTable().Find("B"), nullptr);
}

TEST_F(Glue, DeletionThatThePluginRefusesKeepsTheBoard) {
    doors.Answer("p1.DestroyBoard", oam_result(0x55));
    EXPECT_EQ(BoardDelete("B"), oam_result(0x55));
    EXPECT_NE(boardTable().Find("B"), nullptr);
    EXPECT_EQ(TableMutex::Depth(), 0);
    EXPECT_THAT(doors.CallsOf({"Publish"}), IsEmpty());
}

TEST_F(Glue, DeletionOfABoardWithoutAPluginAsksNobody) {
    EXPECT_EQ(BoardDelete("Unserved"), OAM_SUCCESS);
    EXPECT_THAT(doors.Calls(), ElementsAre("Publish(B, C)"));
}

TEST_F(Glue, WithoutAShadowNothingIsPublishedAndThatIsNoFailure) {
    EXPECT_EQ(oamShadowExit(), OAM_SUCCESS);
    doors.TakeCalls();
    EXPECT_EQ(BoardDelete("Unserved"), OAM_SUCCESS);
    EXPECT_THAT(doors.Calls(), IsEmpty());
}

TEST_F(Glue, DeletionFindsABoardThatItsPluginHasRenamed) {
    doors.On("p1.DestroyBoard", [&] {
        int index;
        EXPECT_TRUE(boardTable().FindByName("B", &index));
        EXPECT_TRUE(boardTable().At(index)->name.Assign("Z"));
        boardTable().Move(index, boardTable().Count());
        return OAM_SUCCESS;
    });
    EXPECT_EQ(BoardDelete("B"), OAM_SUCCESS);
    EXPECT_THAT(BoardNames(), ElementsAre("C", "Unserved"));
}

}  // namespace
}  // namespace oam::test
