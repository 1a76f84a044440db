// Removing objects from the registry.
#include "config_room.h"
#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RegistryRemoval : public ConfigRoom {
  protected:
    RegistryRemoval() {
        for (const char* name : {"Board 1", "Board 2", "Supervisor", "x.bpi"}) {
            EXPECT_EQ(registry.Insert(name, nullptr), OAM_SUCCESS);
            EXPECT_EQ(registry.Find(name)->Save(), OAM_SUCCESS);
        }
    }

    CArrayPtrsToMObject registry{0, kTableGrowth};
};

TEST_F(RegistryRemoval, TakesTheDataFileAndTellsIt) {
    EXPECT_EQ(registry.Remove("BOARD 1"), OAM_SUCCESS);
    EXPECT_THAT(doors.Calls(), ElementsAre("BoardDelete(Board 1)",
                                           "AlertNotify(OAMEVN_DELETED, 0, Board 1, )"));
    EXPECT_THAT(Names(registry), ElementsAre("Board 2", "Supervisor", "x.bpi"));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Obj1.xmo", "Super.xmo", "x.xmo"));
}

TEST_F(RegistryRemoval, MissingDataFileIsNoFailure) {
    home.Remove("oam/cfg/Obj0.xmo");
    EXPECT_EQ(registry.Remove("Board 1"), OAM_SUCCESS);
    EXPECT_EQ(doors.Calls().back(), "AlertNotify(OAMEVN_DELETED, 0, Board 1, )");
}

TEST_F(RegistryRemoval, UnknownNameIsNotFound) {
    EXPECT_EQ(registry.Remove("Board 3"), OAMERR_NOT_FOUND);
    EXPECT_THAT(doors.Calls(), IsEmpty());
}

TEST_F(RegistryRemoval, OpenObjectStays) {
    unsigned long handle = 0;
    ASSERT_EQ(registry.DbOpenObject(1, "Board 1", &handle, 0), OAMERR_FILE_READ_ERROR);
    home.Remove("oam/cfg/Obj0.xmo");
    ASSERT_EQ(registry.DbOpenObject(1, "Board 1", &handle, 0), OAM_SUCCESS);
    EXPECT_EQ(registry.Remove("Board 1"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(registry.RemoveFile("Board 1"), OAMERR_ACCESS_DENIED);
    EXPECT_THAT(doors.Calls(), IsEmpty()) << "its kind is not asked";
    EXPECT_EQ(registry.Count(), 4);
    EXPECT_EQ(registry.DbCloseObject(handle), OAM_SUCCESS);
}

TEST_F(RegistryRemoval, RefusalOfTheKindIsToldToTheSinkAndKeepsTheObject) {
    doors.Answer("BoardDelete", oam_result(0x1234));
    EXPECT_EQ(registry.Remove("board 1"), oam_result(0x1234));
    EXPECT_EQ(doors.DebugText(),
              "Call to Object board 1 TrapDelete with error code 0x1234.\n");
    EXPECT_EQ(registry.Count(), 4);
    EXPECT_TRUE(home.Exists("oam/cfg/Obj0.xmo"));
}

TEST_F(RegistryRemoval, OfAnObjectThatIsBeingRemovedIsRefused) {
    oam_result inside = OAM_SUCCESS;
    doors.On("BoardDelete", [&] {
        inside = registry.Remove("Board 1");
        return OAM_SUCCESS;
    });
    EXPECT_EQ(registry.Remove("Board 1"), OAM_SUCCESS);
    EXPECT_EQ(inside, OAMERR_ACCESS_DENIED);
    EXPECT_THAT(doors.CallsOf({"BoardDelete"}), ElementsAre("BoardDelete(Board 1)"));
    EXPECT_EQ(registry.Count(), 3);
}

TEST_F(RegistryRemoval, IsAskedAnewAfterARefusal) {
    doors.Answer("BoardDelete", oam_result(9));
    EXPECT_EQ(registry.Remove("Board 1"), oam_result(9));
    doors.Answer("BoardDelete", OAM_SUCCESS);
    EXPECT_EQ(registry.Remove("Board 1"), OAM_SUCCESS);
}

TEST_F(RegistryRemoval, TakesTheObjectUnderTheNameThatItsKindGaveItMeanwhile) {
    doors.On("BoardDelete", [&] {
        home.Remove("oam/cfg/Obj0.xmo");
        unsigned long handle = 0;
        EXPECT_EQ(registry.DbOpenObject(1, "Board 1", &handle, kProvide), OAM_SUCCESS);
        EXPECT_EQ(registry.DbSetKeyword(handle, "Name", "Zebra"), OAM_SUCCESS);
        return registry.DbCloseObject(handle);
    });
    EXPECT_EQ(registry.Remove("Board 1"), OAM_SUCCESS);
    EXPECT_THAT(Names(registry), ElementsAre("Board 2", "Supervisor", "x.bpi"));
    EXPECT_EQ(doors.Calls().back(), "AlertNotify(OAMEVN_DELETED, 0, Zebra, )");
}

TEST_F(RegistryRemoval, ObjectThatItsKindOpensMeanwhileStays) {
    home.Remove("oam/cfg/Obj0.xmo");
    unsigned long handle = 0;
    doors.On("BoardDelete", [&] { return registry.DbOpenObject(1, "Board 1", &handle, 0); });
    EXPECT_EQ(registry.Remove("Board 1"), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(registry.Count(), 4);
    EXPECT_EQ(registry.DbCloseObject(handle), OAM_SUCCESS);
}

TEST_F(RegistryRemoval, OfTheFileAloneKeepsTheObject) {
    EXPECT_EQ(registry.RemoveFile("Board 1"), OAM_SUCCESS);
    EXPECT_EQ(registry.RemoveFile("Board 1"), OAMERR_NOT_FOUND) << "the file";
    EXPECT_EQ(registry.RemoveFile("Board 9"), OAMERR_NOT_FOUND);
    EXPECT_EQ(registry.Count(), 4);
    EXPECT_THAT(doors.Calls(), IsEmpty());
}

TEST_F(RegistryRemoval, OfAllBoardsKeepsTheOthers) {
    EXPECT_EQ(registry.RemoveAllBoards(), OAM_SUCCESS);
    EXPECT_THAT(Names(registry), ElementsAre("Supervisor", "x.bpi"));
    EXPECT_THAT(doors.CallsOf({"BoardDelete"}),
                ElementsAre("BoardDelete(Board 1)", "BoardDelete(Board 2)"));
}

TEST_F(RegistryRemoval, OfAllBoardsEndsAtTheFirstFailure) {
    doors.Answer("BoardDelete", oam_result(9));
    EXPECT_EQ(registry.RemoveAllBoards(), oam_result(9));
    EXPECT_THAT(doors.CallsOf({"BoardDelete"}), ElementsAre("BoardDelete(Board 1)"));
    EXPECT_EQ(registry.Count(), 4);
}

TEST_F(RegistryRemoval, OfAllBoardsEndsWhereThereIsANewOneAfterEach) {
    int made = 0;
    doors.On("BoardDelete", [&] {
        EXPECT_LT(made, 1000);
        return registry.Insert(("Board 1" + std::to_string(made++)).c_str(), nullptr);
    });
    EXPECT_EQ(registry.RemoveAllBoards(), OAMERR_ACCESS_DENIED);
}

TEST_F(RegistryRemoval, OfEverythingAsksAndTellsNobody) {
    registry.RemoveAll(false);
    EXPECT_EQ(registry.Count(), 0);
    EXPECT_EQ(registry.Capacity(), 0);
    EXPECT_THAT(doors.Calls(), IsEmpty());
    EXPECT_EQ(home.List("oam/cfg").size(), 4u) << "the files stay";
}

TEST_F(RegistryRemoval, OfEverythingTakesTheFilesWhenAsked) {
    registry.RemoveAll(true);
    EXPECT_THAT(home.List("oam/cfg"), IsEmpty());
    EXPECT_THAT(doors.Calls(), IsEmpty());
}

TEST_F(RegistryRemoval, OfEverythingEndsOpenHandles) {
    unsigned long handle = 0;
    ASSERT_EQ(registry.DbOpenObject(1, "x.bpi", &handle, 0), OAMERR_FILE_READ_ERROR);
    home.Remove("oam/cfg/x.xmo");
    ASSERT_EQ(registry.DbOpenObject(1, "x.bpi", &handle, 0), OAM_SUCCESS);
    registry.RemoveAll(false);
    EXPECT_EQ(openObjects().Count(), 0);
}

TEST_F(RegistryRemoval, WithoutMemoryToShrinkKeepsTheObject) {
    EXPECT_EQ(registry.Remove("Board 2"), OAM_SUCCESS);
    EXPECT_EQ(registry.Remove("x.bpi"), OAM_SUCCESS);
    EXPECT_EQ(registry.Remove("Supervisor"), OAM_SUCCESS);
    doors.TakeCalls();
    {
        const AllocationFuse fuse(1);
        EXPECT_EQ(registry.Remove("Board 1"), OAMERR_NOT_ENOUGH_MEMORY);
    }
    EXPECT_THAT(Names(registry), ElementsAre("Board 1"));
    EXPECT_TRUE(home.Exists("oam/cfg/Obj0.xmo"));
    EXPECT_THAT(doors.Calls(), ElementsAre("BoardDelete(Board 1)"));
    EXPECT_EQ(registry.Remove("Board 1"), OAM_SUCCESS);
    EXPECT_EQ(registry.Capacity(), 0);
}

}  // namespace
}  // namespace oam::test
