// Export and import of the whole configuration: the order of an import, and how each failure ends.
#include <filesystem>

#include "config_room.h"
#include "doors/system_door.h"
#include "support/allocation_fuse.h"
#include "support/file_limit.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

class Transfer : public ConfigRoom {
  protected:
    Transfer() {
        Start();
        EXPECT_EQ(CreateObject("Board 1", "Prod"), OAM_SUCCESS);
        doors.TakeCalls();
    }
    oam_result Export() { return _oamConfigExport(file.c_str()); }
    oam_result Import() { return _oamConfigImport(file.c_str()); }
    void WriteImport(const std::vector<ObjectEntries>& objects) {
        home.Write("export", ExportFile(objects));
    }
    static ObjectEntries Object(const std::string& name) {
        return {name, {{"Key", "v"}, {"Name", name}}};
    }
    static std::vector<std::string> Objects() {
        std::vector<std::string> names;
        char name[128];
        for (int i = 0; _oamDbEnumObjects(i, name, sizeof name) == OAM_SUCCESS; ++i) {
            names.emplace_back(name);
        }
        return names;
    }
    // The import ended in an empty configuration, with the old files kept for the operator.
    void ExpectRefused(oam_result result, oam_result expected) {
        EXPECT_EQ(result, expected);
        EXPECT_THAT(Objects(), ElementsAre("Supervisor"));
        EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Super.xmo", "import-refused"));
        EXPECT_THAT(home.List("oam/cfg/import-refused"), ElementsAre("Obj0.xmo", "Super.xmo"));
        EXPECT_EQ(doors.Calls().back(), "BoardCommInit()");
        EXPECT_EQ(openObjects().Count(), 0);
    }

    std::string file = home.Path("export");
};

// ---- Export

TEST_F(Transfer, ExportHoldsEveryObjectInNameOrder) {
    EXPECT_EQ(Export(), OAM_SUCCESS);
    EXPECT_EQ(home.Read("export"),
              ExportFile({{"Board 1", StandardEntries("Board 1", "Prod")},
                          {"Supervisor", SupervisorEntries()}}));
    EXPECT_FALSE(objMgr().AnyOpen());
}

TEST_F(Transfer, ExportIsRefusedWhileAnObjectIsOpenReadWrite) {
    home.Write("export", "old");
    unsigned long handle = 0;
    ASSERT_EQ(_oamDbOpenObject("Supervisor", &handle, kReadWrite), OAM_SUCCESS);
    EXPECT_EQ(Export(), OAMERR_ACCESS_DENIED);
    EXPECT_EQ(home.Read("export"), "old");
    EXPECT_FALSE(home.Exists("export.saving"));
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
    ASSERT_EQ(_oamDbOpenObject("Supervisor", &handle, 0), OAM_SUCCESS);
    EXPECT_EQ(Export(), OAM_SUCCESS) << "readers do not disturb it";
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
}

TEST_F(Transfer, ExportThatFailsLeavesTheOldFileOrNone) {
    for (const char* before : {"", "old"}) {
        home.Remove("export");
        if (*before != '\0') home.Write("export", before);
        {
            const FileSizeLimit limit(100);
            EXPECT_EQ(Export(), OAMERR_FILE_WRITE_ERROR);
        }
        EXPECT_EQ(home.Exists("export"), *before != '\0');
        EXPECT_FALSE(home.Exists("export.saving"));
    }
    EXPECT_EQ(home.Read("export"), "old");
}

TEST_F(Transfer, ExportIntoALinkLeavesTheLink) {
    home.Write("target", "old");
    std::filesystem::create_symlink(home.Path("target"), file);
    {
        const FileSizeLimit limit(100);
        EXPECT_EQ(Export(), OAMERR_FILE_WRITE_ERROR);
    }
    EXPECT_TRUE(std::filesystem::is_symlink(file)) << "it is not ours to remove";
    EXPECT_EQ(Export(), OAM_SUCCESS);
    EXPECT_EQ(home.Read("target").size(), home.Read("export").size());
}

TEST_F(Transfer, ExportOfASpoiledObjectFails) {
    home.WriteDataFile("Obj0.xmo", "spoiled");
    EXPECT_EQ(Export(), OAMERR_FILE_READ_ERROR);
    EXPECT_FALSE(home.Exists("export"));
    EXPECT_EQ(_oamConfigExport(home.Path("nowhere/export").c_str()), OAMERR_FILE_WRITE_ERROR);
    EXPECT_EQ(_oamConfigExport(nullptr), OAMERR_FILE_WRITE_ERROR);
}

TEST_F(Transfer, ExportWithoutMemoryLeavesNoHandleAndNoHalfFile) {
    home.Write("export", "old");
    const std::string whole = ExportFile({{"Board 1", StandardEntries("Board 1", "Prod")},
                                          {"Supervisor", SupervisorEntries()}});
    for (int nth = 1;; ++nth) {
        SCOPED_TRACE(nth);
        ASSERT_LT(nth, 1000);
        bool blown;
        oam_result result;
        {
            const AllocationFuse fuse(nth);
            result = Export();
            blown = fuse.HasBlown();
        }
        EXPECT_EQ(openObjects().Count(), 0);
        EXPECT_FALSE(home.Exists("export.saving"));
        if (!blown) {
            EXPECT_EQ(result, OAM_SUCCESS);
            EXPECT_EQ(home.Read("export"), whole);
            return;
        }
        // A single value may be lost for want of memory; half a file never.
        if (result != OAM_SUCCESS) {
            EXPECT_THAT(home.Read("export"), ::testing::AnyOf("old", whole));
        }
        home.Write("export", "old");
    }
}

// ---- Import

TEST_F(Transfer, ImportStopsEverythingReplacesTheFilesAndStartsAgain) {
    WriteImport({Object("Alpha"), Object("x.bpi")});
    std::vector<std::string> filesWhenBoardsEnded;
    std::vector<std::string> filesWhenBoardsStarted;
    doors.On("BoardCommExit", [&] {
        filesWhenBoardsEnded = home.List("oam/cfg");
        return OAM_SUCCESS;
    });
    doors.On("BoardCommInit", [&] {
        filesWhenBoardsStarted = home.List("oam/cfg");
        return OAM_SUCCESS;
    });
    EXPECT_EQ(Import(), OAM_SUCCESS);
    EXPECT_THAT(doors.CallsOf({"_oamStopBoard", "BoardCommExit", "BoardCommInit"}),
                ElementsAre("_oamStopBoard(null, 2)", "BoardCommExit()", "BoardCommInit()"));
    EXPECT_THAT(filesWhenBoardsEnded, ElementsAre("Obj0.xmo", "Super.xmo", "import-aside"));
    EXPECT_THAT(filesWhenBoardsStarted,
                ElementsAre("Obj0.xmo", "Super.xmo", "import-aside", "x.xmo"));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Obj0.xmo", "Super.xmo", "x.xmo"));
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), DataFile("Alpha", {{"Key", "v"}, {"Name", "Alpha"}}));
    EXPECT_THAT(Objects(), ElementsAre("Alpha", "Supervisor", "x.bpi"));
}

TEST_F(Transfer, ImportRemovesWithoutAskingAndTellsNoDeletion) {
    WriteImport({Object("Alpha")});
    EXPECT_EQ(Import(), OAM_SUCCESS);
    EXPECT_THAT(doors.CallsOf({"BoardDelete", "AlertNotify", "BoardCreate"}), IsEmpty());
}

TEST_F(Transfer, ImportOfAnExportBringsTheSameBack) {
    EXPECT_EQ(Export(), OAM_SUCCESS);
    const std::string board = home.ReadDataFile("Obj0.xmo");
    const std::string supervisor = home.ReadDataFile("Super.xmo");
    EXPECT_EQ(Import(), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), board);
    EXPECT_EQ(home.ReadDataFile("Super.xmo"), supervisor);
}

TEST_F(Transfer, ImportIsRefusedWhileAnyObjectIsOpen) {
    WriteImport({Object("Alpha")});
    unsigned long handle = 0;
    ASSERT_EQ(_oamDbOpenObject("Supervisor", &handle, 0), OAM_SUCCESS);
    EXPECT_EQ(Import(), OAMERR_ACCESS_DENIED);
    EXPECT_THAT(doors.Calls(), IsEmpty());
    EXPECT_THAT(Objects(), ElementsAre("Board 1", "Supervisor"));
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
}

TEST_F(Transfer, ImportOfNoFileChangesNothing) {
    EXPECT_EQ(Import(), OAMERR_NOT_FOUND);
    EXPECT_EQ(_oamConfigImport(nullptr), OAMERR_NOT_FOUND);
    EXPECT_THAT(doors.Calls(), IsEmpty());
    EXPECT_THAT(Objects(), ElementsAre("Board 1", "Supervisor"));
}

TEST_F(Transfer, ImportThatCannotSetTheOldFilesAsideChangesNothing) {
    WriteImport({Object("Alpha")});
    {
        const SystemFault fault("mkdir", 1, ENOSPC);
        EXPECT_EQ(Import(), OAMERR_FILE_WRITE_ERROR);
    }
    EXPECT_THAT(doors.CallsOf({"_oamStopBoard", "BoardCommExit", "BoardCommInit"}), IsEmpty());
    EXPECT_THAT(Objects(), ElementsAre("Board 1", "Supervisor"));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Obj0.xmo", "Super.xmo"));
}

TEST_F(Transfer, ImportOfASpoiledFileIsRefusedWhereverItSpoils) {
    const std::string whole = ExportFile({Object("Alpha"), Object("Beta")});
    for (size_t length : {size_t{0}, whole.find("<Alpha>"), whole.find("v</>") + 1,
                          whole.find("</Alpha>"), whole.rfind("</")}) {
        SCOPED_TRACE(length);
        home.Write("export", whole.substr(0, length));
        home.Remove("oam/cfg/import-refused");
        ConfigExit();
        Start();
        (void)CreateObject("Board 1", nullptr);
        ExpectRefused(Import(), OAMERR_FILE_READ_ERROR);
    }
}

TEST_F(Transfer, ImportOfAnObjectFileIsRefused) {
    home.Write("export", home.ReadDataFile("Obj0.xmo"));
    ExpectRefused(Import(), OAMERR_FILE_READ_ERROR);
}

TEST_F(Transfer, ImportOfOneObjectInTwoPlacesIsRefused) {
    WriteImport({Object("Alpha"), Object("Beta"), Object("Alpha")});
    ExpectRefused(Import(), OAMERR_ALREADY_EXISTS);
}

TEST_F(Transfer, ImportOfAnObjectWithoutANameIsRefused) {
    WriteImport({{"Alpha", {{"Key", "v"}}}, Object("Beta")});
    ExpectRefused(Import(), OAMERR_NOT_FOUND);
}

TEST_F(Transfer, ImportThatCannotBeSavedIsRefused) {
    WriteImport({{"Alpha", {{"Key", std::string(2000, 'v')}, {"Name", "Alpha"}}}});
    oam_result result;
    {
        const FileSizeLimit limit(1900);
        result = Import();
    }
    ExpectRefused(result, OAMERR_FILE_WRITE_ERROR);
}

TEST_F(Transfer, ImportWhoseBoardsCannotStartIsRefused) {
    WriteImport({Object("Alpha")});
    int starts = 0;
    doors.On("BoardCommInit", [&] { return ++starts == 1 ? oam_result(9) : OAM_SUCCESS; });
    ExpectRefused(Import(), oam_result(9));
    EXPECT_EQ(starts, 2);
}

TEST_F(Transfer, ImportRenamesByItsNameKeyword) {
    WriteImport({{"Alpha", {{"Name", "Other"}}}});
    EXPECT_EQ(Import(), OAM_SUCCESS);
    EXPECT_THAT(Objects(), ElementsAre("Other", "Supervisor"));
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), DataFile("Other", {{"Name", "Other"}}));
}

TEST_F(Transfer, ImportTakesTheSupervisorsSettings) {
    WriteImport({{"Supervisor", {{"AutoStartEnabled", "yes"}, {"Name", "Supervisor"}}}});
    EXPECT_EQ(Import(), OAM_SUCCESS);
    EXPECT_TRUE(g_bAutoStartEnabled);
    EXPECT_EQ(home.ReadDataFile("Super.xmo"),
              DataFile("Supervisor", With(SupervisorEntries(), "AutoStartEnabled", "Yes")));
}

}  // namespace
}  // namespace oam::test
