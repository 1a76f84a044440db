// What modules ask of the service from inside their entries, where it would pull the ground from
// under their own call: refused with a code, and the service goes on.
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::Each;
using ::testing::ElementsAre;

constexpr const char* kPlugin = "x.bpi";

class CalledInside : public ServiceTest {
  protected:
    void SetUp() override { AddPluginFor(kPlugin, {"Board"}); }
    void Script(const Recorder::Change& change) { recorder.Script(kPlugin, change); }
    void Note(oam_result code) { codes.push_back(code); }
    void StopAndStart() {
        Note(_oamExit());
        Note(_oamShutdown());
        Note(_oamRestart());
    }

    std::vector<oam_result> codes;
};

// ---- Starts and stops

TEST_F(CalledInside, StartsAndStopsAreRefusedInAStart) {
    Script([&](ModuleScript& script) {
        script.init = [&](const char*) {
            StopAndStart();
            Note(_oamInit());
            return 0u;
        };
    });
    Start();
    EXPECT_EQ(codes.size(), 4u);
    EXPECT_THAT(codes, Each(OAMERR_ACCESS_DENIED));
    EXPECT_EQ(recorder.Count("Init"), 1u);
    EXPECT_EQ(KeywordOf("Supervisor", "BoardPlugins.Count"), Is("1"));
}

TEST_F(CalledInside, StartsAndStopsAreRefusedInAStop) {
    Start();
    Script([&](ModuleScript& script) {
        script.exit = [&] {
            StopAndStart();
            Note(_oamInit());
            return 0u;
        };
    });
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_EQ(codes.size(), 4u);
    EXPECT_THAT(codes, Each(OAMERR_ACCESS_DENIED));
    EXPECT_EQ(recorder.Count("Exit"), 1u);
}

TEST_F(CalledInside, StopsAreRefusedUnderTheManagerLock) {
    Start();
    Script([&](ModuleScript& script) {
        script.openObject = [&](unsigned long, unsigned) {
            StopAndStart();
            return 0u;
        };
    });
    EXPECT_EQ(_oamCloseObject(Open(kPlugin)), OAM_SUCCESS);
    EXPECT_EQ(codes.size(), 3u);
    EXPECT_THAT(codes, Each(OAMERR_ACCESS_DENIED));
    EXPECT_TRUE(g_bOamIsRunning);
}

TEST_F(CalledInside, InitSucceedsWhereTheServiceRuns) {
    Start();
    Script([&](ModuleScript& script) {
        script.openObject = [&](unsigned long, unsigned) { return unsigned{_oamInit()}; };
    });
    EXPECT_EQ(_oamCloseObject(Open(kPlugin)), OAM_SUCCESS);
}

TEST_F(CalledInside, StopWithNoLockHeldIsCarriedOut) {
    Start();
    const std::string board = CreateBoard("Board");
    Script([&](ModuleScript& script) {
        script.sendBuffer = [&](const char*, const void*, unsigned) {
            return unsigned{_oamExit()};
        };
    });
    EXPECT_EQ(_oamSendBuffer(board.c_str(), "", 0), OAM_SUCCESS);
    EXPECT_FALSE(g_bOamIsRunning);
    EXPECT_EQ(recorder.Count("Exit"), 1u);
}

// Its name is no longer there when the plug-in comes back.
TEST_F(CalledInside, StopInADetectionEndsIt) {
    Start();
    Script(
        [&](ModuleScript& script) { script.detectBoards = [&] { return unsigned{_oamExit()}; }; });
    EXPECT_EQ(_oamDetectBoards(), OAMERR_NOT_FOUND);
    EXPECT_FALSE(g_bOamIsRunning);
}

// Each of the two would answer the other's alerts for ever.
TEST_F(CalledInside, RestartForEachAlertHasAnEnd) {
    AddComponent("c.emc");
    Start();
    for (const char* file : {kPlugin, "c.emc"}) {
        recorder.Script(file, [](ModuleScript& script) {
            script.alertReceive = [](const oam_msg_tag*) { return unsigned{_oamRestart()}; };
        });
    }
    (void)Raise(OAMEVN_TRACE, 0, "Test", "restart");
    EXPECT_TRUE(g_bOamIsRunning);
}

// ---- Handles

// Closes the handle that an entry was given in every way, and lets the entry go on.
class LentHandles : public CalledInside {
  protected:
    unsigned CloseIt(unsigned long handle) {
        Note(_oamCloseObject(handle));
        Note(_oamCloseObject_WOAN(handle));
        Note(_oamDbCloseObject(handle));
        (void)_oamClientExit(kClient);
        return OAM_SUCCESS;
    }
    void ExpectRefused() {
        EXPECT_EQ(codes.size(), 3u);
        EXPECT_THAT(codes, Each(OAMERR_ACCESS_DENIED));
        codes.clear();
    }
};

TEST_F(LentHandles, AreNotClosedByTheEntryThatWasGivenThem) {
    Start();
    const std::string board = CreateBoard("Board");
    Script([&](ModuleScript& script) {
        script.openObject = [&](unsigned long handle, unsigned) { return CloseIt(handle); };
        script.closeObject = [&](unsigned long handle) { return CloseIt(handle); };
        script.setKeyword = [&](unsigned long handle, const char* keyword, const char* value) {
            return CloseIt(handle), unsigned{_oamDbSetKeyword(handle, keyword, value)};
        };
        script.getKeyword = [&](unsigned long handle, const char* keyword, char* buffer,
                                unsigned size) {
            return CloseIt(handle), unsigned{_oamDbGetKeyword(handle, keyword, buffer, size)};
        };
        script.getQualifier = [&](unsigned long handle, const char*, const char*, char*,
                                  unsigned) -> unsigned {
            return CloseIt(handle), OAMERR_NOT_FOUND;
        };
    });
    const unsigned long handle = Open(board, kWrite);
    ExpectRefused();
    EXPECT_EQ(_oamSetKeyword(handle, "AutoStop", "Yes"), OAM_SUCCESS);
    ExpectRefused();
    EXPECT_EQ(GetKeyword(handle, "AutoStop"), Is("Yes"));
    ExpectRefused();
    EXPECT_EQ(GetQualifier(handle, "AutoStop", "Max"), Is("32767"));
    ExpectRefused();
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    ExpectRefused();
    EXPECT_EQ(StoredKeywordOf(board, "AutoStop"), Is("Yes"));
}

TEST_F(LentHandles, LeaveTheOthersOfTheObjectAlone) {
    Start();
    const unsigned long first = Open(kPlugin);
    Script([&](ModuleScript& script) {
        script.openObject = [&](unsigned long, unsigned) {
            return unsigned{_oamCloseObject(first)};
        };
    });
    const unsigned long second = Open(kPlugin);
    Script([](ModuleScript& script) { script.openObject = nullptr; });
    EXPECT_EQ(_oamCloseObject(second), OAM_SUCCESS);
    const unsigned long writing = Open(kPlugin, kWrite);
    EXPECT_EQ(_oamCloseObject(writing), OAM_SUCCESS) << "both are closed";
}

// ---- Imports

class ImportedInside : public CalledInside {
  protected:
    // An export of a running service with one board.
    void SetUp() override {
        CalledInside::SetUp();
        Start();
        board_ = CreateBoard("Board");
        ASSERT_EQ(_oamConfigExport(file_.c_str()), OAM_SUCCESS);
        recorder.Clear();
    }
    oam_result Import() { return _oamConfigImport(file_.c_str()); }

    std::string board_;

  private:
    std::string file_ = home.Path("export");
};

TEST_F(ImportedInside, AnImportTheNextIsRefused) {
    Script([&](ModuleScript& script) {
        script.exit = [&] { return Note(Import()), 0u; };
        script.init = [&](const char*) { return Note(Import()), 0u; };
    });
    EXPECT_EQ(Import(), OAM_SUCCESS);
    EXPECT_THAT(codes, ElementsAre(OAMERR_ACCESS_DENIED, OAMERR_ACCESS_DENIED));
    EXPECT_THAT(Objects(), ElementsAre(board_, "Supervisor", kPlugin));
}

TEST_F(ImportedInside, ACreationItIsRefused) {
    Script([&](ModuleScript& script) {
        script.createBoard = [&](const char*, const char*) { return unsigned{Import()}; };
    });
    char name[128];
    EXPECT_EQ(_oamCreateBoard("Board", name, sizeof name), OAMERR_ACCESS_DENIED);
    EXPECT_THAT(Objects(), ElementsAre(board_, "Supervisor", kPlugin));
}

TEST_F(ImportedInside, AnEntryWithoutALockItIsCarriedOut) {
    Script([&](ModuleScript& script) {
        script.sendBuffer = [&](const char*, const void*, unsigned) { return unsigned{Import()}; };
    });
    EXPECT_EQ(_oamSendBuffer(board_.c_str(), "", 0), OAM_SUCCESS);
    EXPECT_EQ(recorder.Count("Exit"), 1u);
    EXPECT_EQ(KeywordOf(board_, "Name"), Is(board_));
}

TEST_F(ImportedInside, AnAlertItHasAnEnd) {
    Script([&](ModuleScript& script) {
        script.alertReceive = [&](const oam_msg_tag*) { return Note(Import()), 0u; };
    });
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "Test", "import"), OAM_SUCCESS);
    EXPECT_EQ(codes.back(), OAM_SUCCESS) << "the first one";
    codes.pop_back();
    EXPECT_THAT(codes, Each(OAMERR_ACCESS_DENIED)) << "those of the import's own alerts";
}

}  // namespace
}  // namespace oam::test
