// The proxies pass every operation on: the object's own name first, the rest unchanged.
#include "config_room.h"
#include "objects/kinds.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;

class Proxy : public ConfigRoom {
  protected:
    // What each operation of the object notes at its door, and whether the answer comes back.
    std::vector<std::string> Forwarded(KOR_CMObject& object, const std::string& door) {
        for (const char* operation : {"Open", "Close", "SetKeyword", "GetKeyword", "SetQualifier",
                                      "GetQualifier"}) {
            doors.Answer(door + operation, oam_result(0x99));
        }
        EXPECT_EQ(object.TrapOpen(77, 3), oam_result(0x99));
        EXPECT_EQ(object.TrapClose(77), oam_result(0x99));
        EXPECT_EQ(object.TrapSetKeyword(77, "Key", "value"), oam_result(0x99));
        EXPECT_EQ(object.TrapGetKeyword(77, "Key", buffer, 8), oam_result(0x99));
        EXPECT_EQ(object.TrapGetKeyword(77, "Key", nullptr, 0), oam_result(0x99));
        EXPECT_EQ(object.TrapSetQualifier(77, "Key", "Max", "9"), oam_result(0x99));
        EXPECT_EQ(object.TrapGetQualifier(77, "Key", "Max", buffer, 8), oam_result(0x99));
        return doors.TakeCalls();
    }
    static std::vector<std::string> Expected(const std::string& door, const std::string& name) {
        return {door + "Open(" + name + ", 77, 3)",
                door + "Close(" + name + ", 77)",
                door + "SetKeyword(" + name + ", 77, Key, value)",
                door + "GetKeyword(" + name + ", 77, Key, buffer, 8)",
                door + "GetKeyword(" + name + ", 77, Key, null, 0)",
                door + "SetQualifier(" + name + ", 77, Key, Max, 9)",
                door + "GetQualifier(" + name + ", 77, Key, Max, buffer, 8)"};
    }

    char buffer[8] = "";
};

TEST_F(Proxy, OfABoardGoesToTheBoards) {
    CMOBoard board("Board 1", "Obj0.xmo");
    EXPECT_EQ(Forwarded(board, "Board"), Expected("Board", "Board 1"));
}

TEST_F(Proxy, OfAPluginGoesToThePlugins) {
    CMOPlugin plugin("x.bpi");
    EXPECT_EQ(Forwarded(plugin, "Plugin"), Expected("Plugin", "x.bpi"));
}

TEST_F(Proxy, OfAComponentGoesToTheComponents) {
    CMOEmc component("x.emc");
    EXPECT_EQ(Forwarded(component, "Emc"), Expected("Emc", "x.emc"));
}

TEST_F(Proxy, WritesTheAnswerIntoTheCallersBuffer) {
    CMOBoard board("Board 1", "Obj0.xmo");
    doors.AnswerText("BoardGetKeyword", "text");
    EXPECT_EQ(board.TrapGetKeyword(1, "Key", buffer, sizeof buffer), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "text");
}

TEST_F(Proxy, CreatesABoardWithTheProductFirst) {
    CMOBoard board("Board 1", "Obj0.xmo");
    doors.Answer("BoardCreate", oam_result(5));
    EXPECT_EQ(board.TrapCreate("Board 1", "Prod"), oam_result(5));
    EXPECT_EQ(board.TrapCreate("Board 1", nullptr), oam_result(5));
    EXPECT_THAT(doors.Calls(), ElementsAre("BoardCreate(Prod, Board 1)",
                                           "BoardCreate(null, Board 1)"));
}

TEST_F(Proxy, DeletesABoardByItsName) {
    CMOBoard board("Board 1", "Obj0.xmo");
    doors.Answer("BoardDelete", oam_result(6));
    EXPECT_EQ(board.TrapDelete(), oam_result(6));
    EXPECT_THAT(doors.Calls(), ElementsAre("BoardDelete(Board 1)"));
}

TEST_F(Proxy, OfAFileIsCreatedAndDeletedWithoutAnyone) {
    CMOPlugin plugin("x.bpi");
    CMOEmc component("x.emc");
    for (KOR_CMObject* object : {static_cast<KOR_CMObject*>(&plugin),
                                 static_cast<KOR_CMObject*>(&component)}) {
        EXPECT_EQ(object->TrapCreate(object->Name(), nullptr), OAM_SUCCESS);
        EXPECT_EQ(object->TrapDelete(), OAM_SUCCESS);
        EXPECT_EQ(object->InitKeywords(), OAM_SUCCESS);
        EXPECT_EQ(object->ValidateChanges(), OAM_SUCCESS);
        EXPECT_FALSE(object->IsBoard());
    }
    EXPECT_TRUE(doors.Calls().empty());
}

TEST_F(Proxy, FollowsARename) {
    CMOBoard board("Board 1", "Obj0.xmo");
    OwnedText name;
    ASSERT_TRUE(name.Assign("Fresh"));
    board.SwapName(&name);
    EXPECT_EQ(board.TrapClose(1), OAM_SUCCESS);
    EXPECT_THAT(doors.Calls(), ElementsAre("BoardClose(Fresh, 1)"));
}

TEST_F(Proxy, KeptDataFileEndsAtTheFirstDotOfTheName) {
    EXPECT_STREQ(CMOPlugin("vxplugin.bpi").DataFileName(), "vxplugin.xmo");
    EXPECT_STREQ(CMOPlugin("card1.BPI").DataFileName(), "card1.xmo");
    EXPECT_STREQ(CMOEmc("a.b.emc").DataFileName(), "a.xmo");
    EXPECT_STREQ(CMOEmc(".emc").DataFileName(), ".xmo");
    EXPECT_STREQ(CMOEmc("nodot").DataFileName(), "nodot");
    std::string name(300, 'n');
    std::string dataFile = name;
    EXPECT_EQ(CMOEmc(name.append(".emc").c_str()).DataFileName(), dataFile.append(".xmo"));
}

TEST_F(Proxy, OnlyABoardIsABoard) {
    EXPECT_TRUE(CMOBoard("x", "y").IsBoard());
    EXPECT_FALSE(CMOSuper().IsBoard());
}

}  // namespace
}  // namespace oam::test
