// Importing a whole configuration: what replaces what, and what a refusal leaves.
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr const char* kRefused = "oam/cfg/import-refused";

class Import : public ServiceTest {
  protected:
    oam_result ImportFrom(const std::string& bytes) {
        home.Write("import", bytes);
        return _oamConfigImport(home.Path("import").c_str());
    }
    void WriteThing(const std::string& file, const std::string& name) {
        home.WriteDataFile(file, DataFile(name, {{"Name", name}}));
    }
    // The data files alone.
    std::vector<std::string> DataFiles() {
        std::vector<std::string> files = home.List("oam/cfg");
        std::erase_if(files, [](const std::string& file) { return !file.ends_with(".xmo"); });
        return files;
    }
    static Entries Named(const std::string& name) { return {{"Name", name}}; }
};

TEST_F(Import, ReplacesTheWholeConfiguration) {
    WriteThing("Old.xmo", "Old");
    Start();
    EXPECT_EQ(ImportFrom(ExportFile({{"beta", {{"Key", "1"}, {"Name", "beta"}}},
                                     {"Alpha", {{"Name", "Alpha"}, {"Name?Type", "T"}}}})),
              OAM_SUCCESS);
    EXPECT_THAT(Objects(), ElementsAre("Alpha", "beta", "Supervisor"));
    EXPECT_THAT(DataFiles(), ElementsAre("Obj0.xmo", "Obj1.xmo", "Super.xmo"));
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), DataFile("beta", {{"Key", "1"}, {"Name", "beta"}}))
        << "files are numbered as the objects come";
    EXPECT_EQ(home.ReadDataFile("Obj1.xmo"),
              DataFile("Alpha", {{"Name", "Alpha"}, {"Name?Type", "T"}}));
    EXPECT_EQ(home.ReadDataFile("Super.xmo"), DataFile("Supervisor", SupervisorEntries()));
    EXPECT_FALSE(home.Exists(kRefused));
}

TEST_F(Import, OfAnExportRestoresIt) {
    AddPluginFor("x.bpi", {"Prod"}, {{"Location.PCI.Bus", "5"}});
    Start();
    CreateBoard("Prod");
    EXPECT_EQ(Change("Prod 0", "Name", "Mine"), OAM_SUCCESS);
    EXPECT_EQ(Change("Supervisor", "AutoStopEnabled", "Yes"), OAM_SUCCESS);
    const std::string first = home.Path("first");
    EXPECT_EQ(_oamConfigExport(first.c_str()), OAM_SUCCESS);
    EXPECT_EQ(_oamDeleteBoard(nullptr), OAM_SUCCESS);
    CreateBoard("Prod");
    EXPECT_EQ(_oamConfigImport(first.c_str()), OAM_SUCCESS);
    EXPECT_THAT(Objects(), ElementsAre("Mine", "Supervisor", "x.bpi"));
    EXPECT_EQ(KeywordOf("Mine", "Location.PCI.Bus"), Is("5"));
    EXPECT_EQ(KeywordOf("Supervisor", "AutoStopEnabled"), Is("Yes"));
    EXPECT_EQ(_oamConfigExport(home.Path("second").c_str()), OAM_SUCCESS);
    EXPECT_EQ(home.Read("second"), home.Read("first"));
    char name[32] = "";
    EXPECT_EQ(_oamBoardEnum(0, name, sizeof name), OAM_SUCCESS);
    EXPECT_STREQ(name, "Mine");
}

TEST_F(Import, SupervisorIsAddedWhenTheFileHasNone) {
    Start();
    EXPECT_EQ(Change("Supervisor", "AutoStartEnabled", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(ImportFrom(ExportFile({{"Thing", Named("Thing")}})), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf("Supervisor", "AutoStartEnabled"), Is("No")) << "nothing of the old stays";
}

TEST_F(Import, SupervisorOfTheFileIsCompleted) {
    Start();
    EXPECT_EQ(ImportFrom(ExportFile({{"Supervisor",
                                      {{"AutoStartEnabled", "YES"},
                                       {"Name", "Supervisor"},
                                       {"Own", "kept"},
                                       {"Version.Major", "9"}}}})),
              OAM_SUCCESS);
    Entries expected = With(SupervisorEntries(), "AutoStartEnabled", "Yes");
    expected.insert(expected.begin() + 12, {"Own", "kept"});
    EXPECT_EQ(home.ReadDataFile("Super.xmo"), DataFile("Supervisor", expected));
}

TEST_F(Import, KeptTraceLoggingIsOffWhateverTheFileSays) {
    Start();
    EXPECT_EQ(
        ImportFrom(ExportFile({{"Supervisor", {{"Name", "Supervisor"}, {"OammonLog", "Yes"}}}})),
        OAM_SUCCESS);
    EXPECT_EQ(KeywordOf("Supervisor", "OammonLog"), Is("No"));
}

TEST_F(Import, SupervisorIsSpelledInTheOneWay) {
    Start();
    EXPECT_EQ(ImportFrom(ExportFile({{"supervisor", Named("Supervisor")}})), OAM_SUCCESS);
    EXPECT_THAT(Objects(), ElementsAre("Supervisor"));
    EXPECT_THAT(DataFiles(), ElementsAre("Super.xmo"));
}

TEST_F(Import, ObjectFollowsItsNameKeyword) {
    Start();
    alerts.Clear();
    EXPECT_EQ(ImportFrom(ExportFile({{"Directory", Named("Name")}})), OAM_SUCCESS);
    EXPECT_THAT(Objects(), ElementsAre("Name", "Supervisor"));
    EXPECT_THAT(alerts.Heard(OAMEVN_RENAMED),
                ElementsAre(Said{OAMEVN_RENAMED, 0, "Name", "Directory"}));
}

TEST_F(Import, ReadsTheFormOfDataFilesWithAllItsFreedom) {
    Start();
    EXPECT_EQ(ImportFrom("<!x>\r\n<OA&M Configuration ver. 1.0><Thing><Name> Thing </Name>"
                         "<Empty></></></OA&M Configuration ver. 1.0>"),
              OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), DataFile("Thing", {{"Empty", ""}, {"Name", "Thing"}}));
}

TEST_F(Import, NextStartFindsTheImportedConfiguration) {
    WriteThing("Old.xmo", "Old");
    Start();
    EXPECT_EQ(ImportFrom(ExportFile({{"Thing", Named("Thing")}})), OAM_SUCCESS);
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_THAT(Objects(), ElementsAre("Supervisor", "Thing"));
}

TEST_F(Import, IsRefusedWhileAnyObjectIsOpen) {
    AddPluginFor("x.bpi", {"Prod"});
    WriteThing("Old.xmo", "Old");
    Start();
    recorder.Clear();
    alerts.Clear();
    for (unsigned mode : {kRead, kWrite}) {
        const unsigned long handle = Open("Supervisor", mode);
        EXPECT_EQ(ImportFrom(ExportFile({{"Thing", Named("Thing")}})), OAMERR_ACCESS_DENIED);
        EXPECT_EQ(GetKeyword(handle, "Name"), Is("Supervisor"));
        EXPECT_EQ(_oamCloseObject_WOAN(handle), OAM_SUCCESS);
    }
    EXPECT_THAT(Objects(), ElementsAre("Old", "Supervisor", "x.bpi"));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Old.xmo", "Super.xmo", "x.xmo"));
    EXPECT_THAT(recorder.Lines(), IsEmpty()) << "no plug-in has noticed";
    EXPECT_THAT(alerts.All(), IsEmpty());
}

TEST_F(Import, IsRefusedToAReceiverInTheMiddleOfADeletion) {
    AddPluginFor("x.bpi", {"Prod"});
    Start();
    CreateBoard("Prod");
    home.Write("import", ExportFile({{"Thing", Named("Thing")}}));
    alerts.Clear();
    unsigned code = OAM_SUCCESS;
    alerts.AnswerWith([&](const Alert& alert) {
        if (alert.code == OAMEVN_DELETED) code = _oamConfigImport(home.Path("import").c_str());
        return 0u;
    });
    EXPECT_EQ(_oamDeleteBoard("Prod 0"), OAM_SUCCESS);
    EXPECT_EQ(code, OAMERR_ACCESS_DENIED);
    EXPECT_THAT(Objects(), ElementsAre("Supervisor", "x.bpi"));
}

TEST_F(Import, IsRefusedToAReceiverOfTheAlertsOfAnother) {
    AddPluginFor("x.bpi", {"Prod"});
    Start();
    CreateBoard("Prod");
    std::vector<unsigned> codes;
    alerts.AnswerWith([&](const Alert&) {
        codes.push_back(_oamConfigImport(home.Path("import").c_str()));
        return 0u;
    });
    EXPECT_EQ(ImportFrom(ExportFile({{"Thing", Named("Thing")}})), OAM_SUCCESS);
    EXPECT_THAT(codes, AllOf(Not(IsEmpty()), Each(OAMERR_ACCESS_DENIED)));
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_THAT(Objects(), ElementsAre("Supervisor", "Thing", "x.bpi"));
    EXPECT_FALSE(home.Exists(kRefused));
}

TEST_F(Import, MissingFileChangesNothing) {
    AddPluginFor("x.bpi", {"Prod"});
    WriteThing("Old.xmo", "Old");
    Start();
    recorder.Clear();
    EXPECT_EQ(_oamConfigImport(home.Path("nowhere").c_str()), OAMERR_NOT_FOUND);
    EXPECT_THAT(Objects(), ElementsAre("Old", "Supervisor", "x.bpi"));
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Old.xmo", "Super.xmo", "x.xmo"));
    EXPECT_THAT(recorder.Lines(), IsEmpty());
}

TEST_F(Import, StopsEveryBoardAndStartsThePluginsAnew) {
    AddPluginFor("x.bpi", {"Prod"});
    AddComponent("c.emc");
    Start();
    CreateBoard("Prod");
    CreateBoard("Prod");
    recorder.Clear();
    EXPECT_EQ(ImportFrom(ExportFile({{"Thing", Named("Thing")}})), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines({"StopBoard", "Exit", "Init", "DestroyBoard"}),
                ElementsAre("x.bpi StopBoard(Prod 0)", "x.bpi StopBoard(Prod 1)", "x.bpi Exit()",
                            "x.bpi Init(x.bpi)"))
        << "no board is destroyed and no component is touched";
    char name[32] = "";
    EXPECT_EQ(_oamBoardEnum(0, name, sizeof name), OAMERR_NOT_FOUND);
    EXPECT_EQ(CreateBoard("Prod"), "Prod 0") << "the products are known again";
}

TEST_F(Import, RaisesNoDeletions) {
    WriteThing("Old.xmo", "Old");
    Start();
    alerts.Clear();
    EXPECT_EQ(ImportFrom(ExportFile({{"Thing", Named("Thing")}})), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(OAMEVN_DELETED), IsEmpty());
}

// Every refusal after the old configuration went leaves the same.
class RefusedImport : public Import {
  protected:
    void SetUp() override {
        AddPluginFor("x.bpi", {"Prod"});
        WriteThing("Old.xmo", "Old");
        home.Write("oam/cfg/notes.txt", "not ours");
        Start();
        EXPECT_EQ(Change("Supervisor", "AutoStopEnabled", "Yes"), OAM_SUCCESS);
        for (const char* file : {"Old.xmo", "Super.xmo", "x.xmo"}) {
            old_[file] = home.ReadDataFile(file);
        }
        recorder.Clear();
    }

    void ExpectRefused(const std::string& bytes, unsigned code) {
        EXPECT_EQ(ImportFrom(bytes), code);
        EXPECT_THAT(Objects(), ElementsAre("Supervisor", "x.bpi")) << "an empty configuration";
        EXPECT_THAT(DataFiles(), ElementsAre("Super.xmo", "x.xmo"));
        EXPECT_EQ(home.ReadDataFile("Super.xmo"), DataFile("Supervisor", SupervisorEntries()));
        for (const auto& [file, content] : old_) {
            EXPECT_EQ(home.Read(std::string(kRefused) + "/" + file), content);
        }
        EXPECT_EQ(home.Read("oam/cfg/notes.txt"), "not ours");
        EXPECT_EQ(CreateBoard("Prod"), "Prod 0") << "the service goes on";
        EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
        EXPECT_THAT(Objects(), ElementsAre("Prod 0", "Supervisor", "x.bpi"));
    }

  private:
    std::map<std::string, std::string> old_;
};

TEST_F(RefusedImport, FileWithoutKeywords) {
    ExpectRefused(ExportFile({}), OAMERR_FILE_READ_ERROR);
}

TEST_F(RefusedImport, EmptyFile) { ExpectRefused("", OAMERR_FILE_READ_ERROR); }

TEST_F(RefusedImport, DataFileOfOneObject) {
    ExpectRefused(DataFile("Thing", Named("Thing")), OAMERR_FILE_READ_ERROR);
}

TEST_F(RefusedImport, FileCutOffAfterItsFirstObject) {
    const std::string whole = ExportFile({{"One", Named("One")}, {"Two", Named("Two")}});
    ExpectRefused(whole.substr(0, whole.find("<Two>")), OAMERR_FILE_READ_ERROR);
}

TEST_F(RefusedImport, FileCutOffBeforeItsLastBracket) {
    std::string whole = ExportFile({{"One", Named("One")}});
    whole.resize(whole.size() - 2);
    ExpectRefused(whole, OAMERR_FILE_READ_ERROR);
}

TEST_F(RefusedImport, NulByte) {
    std::string whole = ExportFile({{"One", Named("One")}, {"Two", Named("Two")}});
    whole[whole.find("<Two>") - 1] = '\0';
    ExpectRefused(whole, OAMERR_FILE_READ_ERROR);
}

TEST_F(RefusedImport, ObjectThatComesTwice) {
    ExpectRefused(ExportFile({{"One", Named("One")}, {"Two", Named("Two")}, {"ONE", Named("ONE")}}),
                  OAMERR_ALREADY_EXISTS);
}

TEST_F(RefusedImport, NameThatAnotherObjectHas) {
    ExpectRefused(ExportFile({{"One", Named("One")}, {"Two", Named("One")}}),
                  OAMERR_ALREADY_EXISTS);
}

TEST_F(RefusedImport, ObjectWithoutAName) {
    ExpectRefused(ExportFile({{"One", {{"Key", "1"}}}, {"Two", Named("Two")}}), OAMERR_NOT_FOUND);
}

TEST_F(RefusedImport, LastObjectWithoutAName) {
    ExpectRefused(ExportFile({{"One", Named("One")}, {"Two", {{"Key", "1"}}}}), OAMERR_NOT_FOUND);
}

TEST_F(RefusedImport, BoardsWithTheSameNumber) {
    const Entries board = {{"Number", "1"}, {"Product", "Prod"}};
    Entries one = Named("One");
    Entries two = Named("Two");
    one.insert(one.end(), board.begin(), board.end());
    two.insert(two.end(), board.begin(), board.end());
    ExpectRefused(ExportFile({{"One", one}, {"Two", two}}), OAMERR_ALREADY_EXISTS);
}

TEST_F(RefusedImport, PluginThatDoesNotStartAgain) {
    int calls = 0;
    recorder.Script("x.bpi", [&](ModuleScript& script) {
        script.init = [&](const char*) { return ++calls == 1 ? 0x77u : 0u; };
    });
    ExpectRefused(ExportFile({{"Thing", Named("Thing")}}), 0x77);
    EXPECT_GE(calls, 2) << "it is tried again with the empty configuration";
    recorder.Script("x.bpi", [](ModuleScript& script) { script.init = nullptr; });
}

TEST_F(RefusedImport, PluginsAreStartedAnew) {
    EXPECT_EQ(ImportFrom(""), OAMERR_FILE_READ_ERROR);
    EXPECT_THAT(recorder.Lines({"Exit", "Init"}), ElementsAre("x.bpi Exit()", "x.bpi Init(x.bpi)"));
}

TEST_F(RefusedImport, LaterOneReplacesWhatAnEarlierOneSetAside) {
    EXPECT_EQ(ImportFrom(""), OAMERR_FILE_READ_ERROR);
    EXPECT_EQ(ImportFrom(ExportFile({{"Thing", Named("Thing")}})), OAM_SUCCESS);
    EXPECT_EQ(ImportFrom(""), OAMERR_FILE_READ_ERROR);
    EXPECT_THAT(home.List(kRefused), Contains("Obj0.xmo"));
    EXPECT_EQ(home.Read(std::string(kRefused) + "/Obj0.xmo"), DataFile("Thing", Named("Thing")));
}

TEST_F(RefusedImport, LaterSuccessfulOneWorks) {
    EXPECT_EQ(ImportFrom(""), OAMERR_FILE_READ_ERROR);
    EXPECT_EQ(ImportFrom(ExportFile({{"Thing", Named("Thing")}})), OAM_SUCCESS);
    EXPECT_THAT(Objects(), AllOf(Contains("Thing"), Not(Contains("Old"))));
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_THAT(Objects(), AllOf(Contains("Thing"), Not(Contains("Old"))));
}

TEST_F(RefusedImport, OldFilesAreReadableDataFiles) {
    EXPECT_EQ(ImportFrom(""), OAMERR_FILE_READ_ERROR);
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    for (const std::string& file : home.List(kRefused)) {
        home.WriteDataFile(file, home.Read(std::string(kRefused) + "/" + file));
    }
    Start();
    EXPECT_THAT(Objects(), ElementsAre("Old", "Supervisor", "x.bpi"));
    EXPECT_EQ(KeywordOf("Supervisor", "AutoStopEnabled"), Is("Yes"));
}

}  // namespace
}  // namespace oam::test
