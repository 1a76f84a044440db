// The old data files during an import: set aside, dropped, kept or restored, whichever step fails.
#include <cerrno>

#include "aside_room.h"
#include "doors/system_door.h"
#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(ImportAside, DataFilesGetASecondNameAndStay) {
    EXPECT_EQ(SetAside(), OAM_SUCCESS);
    ExpectOldIn(kAside);
    EXPECT_THAT(home.List("oam/cfg"),
                ElementsAre("Obj0.xmo", "Super.XMO", "import-aside", "notes.txt"));
    WriteNew();
    ExpectOldIn(kAside);
}

TEST_F(ImportAside, FileSystemWithoutLinksGetsCopies) {
    const SystemFault fault("link", 1, EPERM);
    EXPECT_EQ(SetAside(), OAM_SUCCESS);
    EXPECT_TRUE(fault.HasHappened());
    ExpectOldIn(kAside);
}

TEST_F(ImportAside, WhatIsLeftOfAnEarlierAttemptDoesNotMatter) {
    home.MakeDirectory("oam/cfg/import-aside.new");
    home.Write("oam/cfg/import-aside.new/stale.xmo", "stale");
    EXPECT_EQ(SetAside(), OAM_SUCCESS);
    ExpectOldIn(kAside);
}

TEST_F(ImportAside, EachFailingStepChangesNothing) {
    for (const char* step : {"mkdir", "fsync", "rename", "open"}) {
        for (int nth = 1;; ++nth) {
            SCOPED_TRACE(::testing::Message() << step << " " << nth);
            ASSERT_LT(nth, 20);
            WriteOld();
            bool happened;
            oam_result result;
            {
                const SystemFault fault(step, nth, EIO);
                result = SetAside();
                happened = fault.HasHappened();
            }
            if (!happened) {
                EXPECT_EQ(result, OAM_SUCCESS);
                break;
            }
            EXPECT_EQ(result, OAMERR_FILE_WRITE_ERROR);
            ExpectOld();
        }
    }
}

TEST_F(ImportAside, CopyThatFailsChangesNothing) {
    // Without a link the copy opens the source, then the target, and syncs it.
    home.MakeDirectory("oam/cfg/Bad.xmo");
    EXPECT_EQ(SetAside(), OAMERR_FILE_WRITE_ERROR) << "a directory can be neither linked nor read";
    home.Remove("oam/cfg/Bad.xmo");
    ExpectOld();
}

TEST_F(ImportAside, NeedsNoMemory) {
    const AllocationFuse fuse(1);
    EXPECT_EQ(SetAside(), OAM_SUCCESS);
    EXPECT_FALSE(fuse.HasBlown());
    ExpectOldIn(kAside);
}

TEST_F(ImportAside, NewConfigurationStandsAfterTheDrop) {
    EXPECT_EQ(SetAside(), OAM_SUCCESS);
    WriteNew();
    EXPECT_TRUE(dropDataFilesAside(directory.c_str()));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Obj0.xmo", "Obj1.xmo", "notes.txt"));
    EXPECT_TRUE(RollBack()) << "nothing to undo";
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), "new 0");
}

TEST_F(ImportAside, DropThatCannotBeRecordedIsAFailure) {
    for (const auto& [step, error] : {std::pair("rename", EIO), {"fsync", EIO}}) {
        WriteOld();
        EXPECT_EQ(SetAside(), OAM_SUCCESS);
        const SystemFault fault(step, 1, error);
        EXPECT_FALSE(dropDataFilesAside(directory.c_str())) << step;
    }
}

TEST_F(ImportAside, RefusedImportKeepsTheOldFilesForTheOperator) {
    EXPECT_EQ(SetAside(), OAM_SUCCESS);
    keepDataFilesAside(directory.c_str());
    ExpectOldIn(kRefused);
    EXPECT_FALSE(home.Exists(kAside));
    EXPECT_TRUE(RollBack());
    ExpectOldIn(kRefused);
}

TEST_F(ImportAside, LaterRefusalReplacesTheEarlier) {
    home.MakeDirectory(kRefused);
    home.Write(std::string(kRefused) + "/stale.xmo", "stale");
    EXPECT_EQ(SetAside(), OAM_SUCCESS);
    keepDataFilesAside(directory.c_str());
    ExpectOldIn(kRefused);
}

TEST_F(ImportAside, StartUndoesAnImportThatDidNotEnd) {
    EXPECT_EQ(SetAside(), OAM_SUCCESS);
    WriteNew();
    EXPECT_TRUE(RollBack());
    ExpectOld();
    EXPECT_TRUE(RollBack()) << "and again";
    ExpectOld();
}

TEST_F(ImportAside, StartWithoutAnImportChangesNothing) {
    EXPECT_TRUE(RollBack());
    ExpectOld();
}

TEST_F(ImportAside, StartTidiesUpAfterADeathInTheMiddle) {
    home.MakeDirectory("oam/cfg/import-aside.new");
    home.Write("oam/cfg/import-aside.new/Obj0.xmo", "half");
    home.MakeDirectory("oam/cfg/import-aside.old");
    home.Write("oam/cfg/import-aside.old/Obj0.xmo", "older");
    EXPECT_TRUE(RollBack());
    ExpectOld();
}

TEST_F(ImportAside, StartThatFailsInTheMiddleIsRepeatedByTheNext) {
    for (const char* step : {"remove", "fsync", "rename", "open"}) {
        for (int nth = 1;; ++nth) {
            SCOPED_TRACE(::testing::Message() << step << " " << nth);
            ASSERT_LT(nth, 30);
            WriteOld();
            ASSERT_EQ(SetAside(), OAM_SUCCESS);
            WriteNew();
            bool happened;
            bool restored;
            {
                const SystemFault fault(step, nth, EIO);
                restored = RollBack();
                happened = fault.HasHappened();
            }
            EXPECT_TRUE(restored || home.Exists(kAside) || home.Exists("oam/cfg/import-aside.old"))
                << "the old files are still there";
            EXPECT_TRUE(RollBack());
            ExpectOld();
            if (!happened) break;
        }
    }
}

TEST_F(ImportAside, StartRestoresCopiesWhereThereAreNoLinks) {
    EXPECT_EQ(SetAside(), OAM_SUCCESS);
    WriteNew();
    const SystemFault fault("link", 1, EPERM);
    EXPECT_TRUE(RollBack());
    EXPECT_TRUE(fault.HasHappened());
    ExpectOld();
}

TEST_F(ImportAside, EmptyConfigurationIsSetAsideAndRestoredToo) {
    home.Remove("oam/cfg/Obj0.xmo");
    home.Remove("oam/cfg/Super.XMO");
    EXPECT_EQ(SetAside(), OAM_SUCCESS);
    EXPECT_THAT(home.List(kAside), IsEmpty());
    WriteNew();
    EXPECT_TRUE(RollBack());
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("notes.txt"));
}

TEST_F(ImportAside, MissingDirectoryCannotBeSetAside) {
    EXPECT_EQ(setDataFilesAside(home.Path("nowhere").c_str()), OAMERR_FILE_WRITE_ERROR);
    EXPECT_TRUE(rollBackImport(home.Path("nowhere").c_str())) << "there was no import";
}

}  // namespace
}  // namespace oam::test
