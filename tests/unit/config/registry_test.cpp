// The registry: which kind an object is, where it stands, and the names it makes.
#include "config/registry.h"

#include "config_room.h"
#include "objects/kinds.h"
#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Registry : public ConfigRoom {
  protected:
    void Insert(const std::string& name, const char* dataFile = nullptr) {
        ASSERT_EQ(registry.Insert(name.c_str(), dataFile), OAM_SUCCESS) << name;
    }
    KOR_CMObject* Object(const char* name) { return registry.Find(name); }
    int PositionOf(const char* name, bool found) const {
        int index = -1;
        EXPECT_EQ(registry.FindByName(name, &index), found) << name;
        return index;
    }
    std::vector<std::string> DataFiles() const {
        std::vector<std::string> files;
        for (int i = 0; i < registry.Count(); ++i) files.emplace_back(registry.At(i)->DataFileName());
        return files;
    }

    CArrayPtrsToMObject registry{0, kTableGrowth};
};

TEST_F(Registry, KindFollowsFromTheName) {
    for (const char* name : {"x.BPI", "x.emc", "x.bp", "x.bpi.bak", "Board 1", "Supervisor.emc"}) {
        Insert(name);
    }
    EXPECT_NE(dynamic_cast<CMOPlugin*>(Object("x.bpi")), nullptr);
    EXPECT_NE(dynamic_cast<CMOEmc*>(Object("x.emc")), nullptr);
    EXPECT_NE(dynamic_cast<CMOEmc*>(Object("supervisor.EMC")), nullptr);
    for (const char* board : {"x.bp", "x.bpi.bak", "Board 1"}) {
        EXPECT_NE(dynamic_cast<CMOBoard*>(Object(board)), nullptr) << board;
        EXPECT_TRUE(Object(board)->IsBoard());
    }
    EXPECT_FALSE(Object("x.bpi")->IsBoard());
    EXPECT_FALSE(Object("x.emc")->IsBoard());
}

TEST_F(Registry, SupervisorHasItsOwnSpellingAndFile) {
    Insert("supervisor", "Other.xmo");
    EXPECT_STREQ(registry.At(0)->Name(), "Supervisor");
    EXPECT_STREQ(registry.At(0)->DataFileName(), "Super.xmo");
    EXPECT_NE(dynamic_cast<CMOSuper*>(registry.At(0)), nullptr);
    EXPECT_FALSE(registry.At(0)->IsBoard());
    EXPECT_EQ(registry.Insert("SUPERVISOR", nullptr), OAMERR_ALREADY_EXISTS);
}

TEST_F(Registry, InsertWritesAndTellsNothing) {
    Insert("Board 1");
    EXPECT_THAT(doors.Calls(), IsEmpty());
    EXPECT_THAT(home.List("oam/cfg"), IsEmpty());
}

TEST_F(Registry, ProxyOfAFileHasTheDataFileOfItsName) {
    Insert("card1.BPI", "Obj7.xmo");
    Insert("comp.emc");
    EXPECT_STREQ(Object("card1.bpi")->DataFileName(), "card1.xmo");
    EXPECT_STREQ(Object("comp.emc")->DataFileName(), "comp.xmo");
}

TEST_F(Registry, BoardTakesTheDataFileItIsGiven) {
    Insert("Board 1", "Whatever.xmo");
    Insert("Board 2");
    EXPECT_THAT(DataFiles(), ElementsAre("Whatever.xmo", "Obj0.xmo"));
}

TEST_F(Registry, GapInTheDataFileNumbersIsFilled) {
    Insert("A", "Obj0.xmo");
    Insert("B", "Obj2.xmo");
    Insert("C");
    Insert("D");
    EXPECT_THAT(DataFiles(), ElementsAre("Obj0.xmo", "Obj2.xmo", "Obj1.xmo", "Obj3.xmo"));
}

TEST_F(Registry, OnlyNumberedDataFilesTakeANumber) {
    Insert("Supervisor");
    Insert("A", "obj0.xmo");
    Insert("B", "Object1.xmo");
    Insert("C", "Obj-1.xmo");
    Insert("D", "Obj99.xmo");
    Insert("E", "Obj99999999999999999999.xmo");
    Insert("F");
    EXPECT_STREQ(Object("F")->DataFileName(), "Obj0.xmo");
}

TEST_F(Registry, ObjectWithADataFileKeepsIt) {
    KOR_CMObject object("x", "Mine.xmo");
    EXPECT_EQ(registry.CreateUniqueDataFilename(&object), OAM_SUCCESS);
    EXPECT_STREQ(object.DataFileName(), "Mine.xmo");
}

TEST_F(Registry, FindsNamesAndInsertionPositionsWithoutRegardToCase) {
    for (const char* name : {"Delta", "alpha", "CHARLIE"}) Insert(name);
    EXPECT_THAT(Names(registry), ElementsAre("alpha", "CHARLIE", "Delta"));
    EXPECT_EQ(PositionOf("charlie", true), 1);
    EXPECT_EQ(PositionOf("bravo", false), 1);
    EXPECT_EQ(PositionOf("zulu", false), 3);
    EXPECT_EQ(registry.Insert("ALPHA", nullptr), OAMERR_ALREADY_EXISTS);
}

TEST_F(Registry, FindsDataFilesWithoutRegardToCaseAndTheFirstOfThem) {
    Insert("b.x.emc");
    Insert("b.emc");
    Insert("Z", "Obj5.xmo");
    int index = -1;
    EXPECT_TRUE(registry.FindByFile("B.XMO", &index));
    EXPECT_EQ(index, 0);
    EXPECT_TRUE(registry.FindByFile("obj5.XMO", &index));
    EXPECT_EQ(index, 2);
    EXPECT_FALSE(registry.FindByFile("Obj6.xmo", &index));
    EXPECT_EQ(index, 3) << "the count when there is none";
}

TEST_F(Registry, NumbersNamesFromZero) {
    char buffer[32] = "";
    EXPECT_EQ(registry.CreateUniqueName("Board", buffer, sizeof buffer), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "Board 0");
    Insert("board 0");
    Insert("Board 2");
    EXPECT_EQ(registry.CreateUniqueName("Board", buffer, sizeof buffer), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "Board 1");
    Insert("Board 1");
    EXPECT_EQ(registry.CreateUniqueName("Board", buffer, sizeof buffer), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "Board 3");
}

TEST_F(Registry, NumberThatWasGivenBackIsTheLowestAgain) {
    char buffer[32] = "";
    const auto next = [&](const char* base) {
        EXPECT_EQ(registry.CreateUniqueName(base, buffer, sizeof buffer), OAM_SUCCESS);
        return std::string(buffer);
    };
    for (int i = 0; i < 5; ++i) Insert(next("Board"));
    EXPECT_EQ(next("Board"), "Board 5");
    EXPECT_EQ(next(""), " 0");
    EXPECT_EQ(next("Board"), "Board 5");
    EXPECT_EQ(next("BOARD"), "BOARD 5");
    ASSERT_EQ(registry.Remove("Board 2"), OAM_SUCCESS);
    EXPECT_EQ(next("Board"), "Board 2");
    Insert(next("Board"));
    EXPECT_EQ(next("Board"), "Board 5");
    EXPECT_TRUE(registry.RemoveAll(false));
    EXPECT_EQ(next("Board"), "Board 0");
    EXPECT_EQ(next(std::string(14, 'x').c_str()), std::string(14, 'x') + " 0");
}

TEST_F(Registry, NameNeedsTheBasesLengthAndThirteen) {
    char buffer[18] = "before";
    EXPECT_EQ(registry.CreateUniqueName("Board", buffer, 17), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(buffer, "before");
    EXPECT_EQ(registry.CreateUniqueName("Board", buffer, 18), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "Board 0");
    EXPECT_EQ(registry.CreateUniqueName("100%s", buffer, 18), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "100%s 0");
}

TEST_F(Registry, GrowsAndShrinksInStepsOfSixteen) {
    for (int i = 0; i < 17; ++i) Insert("Board " + std::to_string(i));
    EXPECT_EQ(registry.Capacity(), 32);
    for (int i = 16; i >= 0; --i) {
        ASSERT_EQ(registry.Remove(("Board " + std::to_string(i)).c_str()), OAM_SUCCESS);
        EXPECT_EQ(registry.Capacity(), i == 0 ? 0 : 16);
    }
}

TEST_F(Registry, EnumeratesByPositionInNameOrder) {
    Insert("bravo");
    Insert("Alpha");
    char buffer[8] = "before";
    EXPECT_EQ(registry.DbEnumObjects(-1, buffer, sizeof buffer), OAMERR_NOT_FOUND);
    EXPECT_EQ(registry.DbEnumObjects(2, buffer, sizeof buffer), OAMERR_NOT_FOUND);
    EXPECT_EQ(registry.DbEnumObjects(0, buffer, 5), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(buffer, "before");
    EXPECT_EQ(registry.DbEnumObjects(0, buffer, 6), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "Alpha");
}

TEST_F(Registry, EnumeratesTheEntriesOfAnOpenObject) {
    Insert("Thing");
    unsigned long handle = 0;
    ASSERT_EQ(registry.DbOpenObject(1, "thing", &handle, kProvide), OAM_SUCCESS);
    EXPECT_EQ(Object("Thing")->DbSetKeyword("Bus", "1"), OAM_SUCCESS);
    EXPECT_EQ(Object("Thing")->DbSetQualifier("Bus", "Type", "x"), OAM_SUCCESS);
    char buffer[16];
    EXPECT_EQ(registry.DbEnumKeywords(handle, 1, buffer, sizeof buffer), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "Bus?Type");
    EXPECT_EQ(registry.DbEnumKeywords(handle, 1, buffer, 8), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(registry.DbEnumKeywords(handle, 2, buffer, sizeof buffer), OAMERR_NOT_FOUND);
    EXPECT_EQ(registry.DbEnumKeywords(handle, -1, buffer, sizeof buffer), OAMERR_NOT_FOUND);
    EXPECT_EQ(Object("Thing")->DbClose(handle, true), OAM_SUCCESS);
}

TEST_F(Registry, UnknownNameCannotBeOpened) {
    unsigned long handle = 42;
    EXPECT_EQ(registry.OpenObject(1, "none", &handle, 0), OAMERR_NOT_FOUND);
    EXPECT_EQ(registry.DbOpenObject(1, "none", &handle, 0), OAMERR_NOT_FOUND);
    EXPECT_EQ(handle, 42u);
}

TEST_F(Registry, TellsWhetherAnyObjectIsOpen) {
    Insert("A");
    Insert("B");
    EXPECT_FALSE(registry.AnyOpen());
    unsigned long handle = 0;
    ASSERT_EQ(registry.DbOpenObject(1, "B", &handle, 0), OAM_SUCCESS);
    EXPECT_TRUE(registry.AnyOpen());
    EXPECT_EQ(registry.DbCloseObject(handle), OAM_SUCCESS);
    EXPECT_FALSE(registry.AnyOpen());
}

// ---- Single database writes

TEST_F(Registry, WriteOfANameThatAnotherHasIsRefusedBeforeTheBoardsAreAsked) {
    Insert("Thing");
    Insert("Other");
    unsigned long handle = 0;
    ASSERT_EQ(registry.DbOpenObject(1, "Thing", &handle, kProvide), OAM_SUCCESS);
    EXPECT_EQ(registry.DbSetKeyword(handle, "NAME", "oTHER"), OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(doors.Calls(), IsEmpty());
    EXPECT_EQ(registry.DbSetKeyword(handle, "Name", "THING"), OAM_SUCCESS) << "its own";
    EXPECT_EQ(registry.DbSetKeyword(handle, "Name", "Free"), OAM_SUCCESS);
    EXPECT_EQ(registry.DbSetKeyword(handle, "Key", "Other"), OAM_SUCCESS) << "any other keyword";
    EXPECT_EQ(Object("Thing")->DbClose(handle, true), OAM_SUCCESS);
}

TEST_F(Registry, WriteIsRefusedByTheBoardTable) {
    Insert("Thing");
    unsigned long handle = 0;
    ASSERT_EQ(registry.DbOpenObject(1, "Thing", &handle, kProvide), OAM_SUCCESS);
    doors.Answer("BoardIDsValidateSet", OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(registry.DbSetKeyword(handle, "Number", "3"), OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(doors.Calls(), ElementsAre("BoardIDsValidateSet(Thing, Number, 3)"));
    EXPECT_EQ(Object("Thing")->Keywords().Count(), 0);
    EXPECT_EQ(Object("Thing")->DbClose(handle, true), OAM_SUCCESS);
}

// ---- Without memory

class RegistryWithoutMemory : public Registry {
  protected:
    // Inserts into a table that is full; what cannot be made whole is not made.
    void ExpectWholeOrNot(const char* name, const char* dataFile, const char* expectedFile) {
        for (int i = 0; i < 16; ++i) Insert("Board " + std::to_string(i), "x.xmo");
        const std::vector<std::string> before = Names(registry);
        const auto expectWhole = [&] { EXPECT_STREQ(Object(name)->DataFileName(), expectedFile); };
        EXPECT_EQ(FailEachAllocation([&] { return registry.Insert(name, dataFile); },
                                     [&](oam_result result) {
                                         if (result == OAM_SUCCESS) {
                                             expectWhole();
                                             ASSERT_EQ(registry.Remove(name), OAM_SUCCESS);
                                         }
                                         EXPECT_EQ(Names(registry), before);
                                     }),
                  OAM_SUCCESS);
        expectWhole();
    }
};

TEST_F(RegistryWithoutMemory, BoardHasTheFileItIsGivenOrIsNotMade) {
    ExpectWholeOrNot("New", "New.xmo", "New.xmo");
}

TEST_F(RegistryWithoutMemory, BoardHasANumberedFileOrIsNotMade) {
    ExpectWholeOrNot("New", nullptr, "Obj0.xmo");
}

TEST_F(RegistryWithoutMemory, ProxyHasTheFileOfItsNameOrIsNotMade) {
    ExpectWholeOrNot("new.emc", nullptr, "new.xmo");
}

TEST_F(RegistryWithoutMemory, SupervisorHasItsFileOrIsNotMade) {
    ExpectWholeOrNot("Supervisor", nullptr, "Super.xmo");
}

}  // namespace
}  // namespace oam::test
