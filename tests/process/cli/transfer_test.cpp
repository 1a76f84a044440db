// Export and import of the whole configuration.
#include "support/data_file.h"
#include "tool_test.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;

class ToolTransfer : public ToolTest {
  protected:
    // An import that must be refused before anything is touched.
    void ExpectRefused(const std::string& text, const std::string& why) const {
        const auto before = DataFiles();
        home.Write("bad", text);
        const Finished run = Run({"import", "bad"});
        EXPECT_THAT(run, Complains(1, why)) << text;
        EXPECT_THAT(run.err, HasSubstr("nothing was changed")) << text;
        EXPECT_EQ(DataFiles(), before) << text;
    }

    static ObjectEntries Board(const std::string& name, const std::string& number) {
        Entries entries = StandardEntries(name, "SIM-E1");
        entries.emplace_back("Number", number);
        return {name, entries};
    }
};

}  // namespace

TEST_F(ToolTransfer, AnImportBringsBackWhatWasExported) {
    AddSim();
    Out({"board", "add", "--all"});
    Out({"set", "Sim E1 left", "Number=7"});
    EXPECT_EQ(Out({"export", "saved"}), "exported 6 objects to \"saved\"\n");
    const std::string boards = Out({"board", "list"});
    Out({"board", "delete", "--all"});
    EXPECT_EQ(Out({"import", "saved"}), "imported 6 objects from \"saved\"\n");
    EXPECT_EQ(Out({"board", "list"}), boards);
    EXPECT_EQ(Json({"export", "again"})["objects"], 6);
    EXPECT_EQ(home.Read("again"), home.Read("saved"));
}

TEST_F(ToolTransfer, BoardsThatDoNotRunAreNoComplaintOfAnImport) {
    AddSim();
    Out({"board", "create", "SIM-E1"});
    Out({"export", "saved"});
    const Finished run = Run({"import", "saved"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
}

TEST_F(ToolTransfer, AnImportReplacesEverything) {
    AddSimBoard();
    home.Write("new", ExportFile({Board("A", "0"), Board("B", "1")}));
    EXPECT_EQ(Json({"import", "new"})["objects"], 2);
    EXPECT_EQ(Out({"objects"}),
              "NAME        KIND        DATA FILE\n"
              "A           board       Obj0.xmo\n"
              "B           board       Obj1.xmo\n"
              "sim.bpi     plug-in     sim.xmo\n"
              "Supervisor  supervisor  Super.xmo\n");
}

TEST_F(ToolTransfer, AMalformedFileIsRefusedBeforeAnythingIsTouched) {
    AddSimBoard();
    const std::string good = ExportFile({Board("A", "0"), Board("B", "1")});
    ExpectRefused("", "no keyword in the file has a value");
    ExpectRefused(good.substr(0, good.size() / 2), "bad:");
    ExpectRefused(DataFile("A", Board("A", "0").entries), "bad:2:1: the root is");
    ExpectRefused(good + "<x>", "the root is \"x\"");
    ExpectRefused(ExportFile({{"A", {}}}), "bad:3:4: the object \"A\" has no keyword");
    ExpectRefused(ExportFile({{"A", {{"Name", "<"}}}}), "bad:");
}

TEST_F(ToolTransfer, AFileThatTheServiceWouldDropHalfOfIsRefused) {
    AddSimBoard();
    ExpectRefused(ExportFile({Board("A", "0"), Board("a", "1")}), "a second object named \"a\"");
    ExpectRefused(ExportFile({Board("A", "0"), Board("A", "0")}), "a second object named \"A\"");
    ExpectRefused(ExportFile({Board("A", "3"), Board("B", "3")}),
                  "board number 3 belongs to \"A\"");
    ExpectRefused(ExportFile({{"A", {{"Number", "1"}}}}), "has no keyword \"Name\"");
    ExpectRefused(ExportFile({{"A", {{"Name", "B"}}}}), "is \"B\" instead of \"A\"");
    ExpectRefused(ExportFile({Board(std::string(128, 'n'), "0")}), "longer than 127 bytes");
    ExpectRefused(ExportFile({{"x.bpi", {{"Name", "x.bpi"}}}, {"x.emc", {{"Name", "x.emc"}}}}),
                  "would share the data file \"x.xmo\"");
    ExpectRefused(ExportFile({{"A", {{"Name", "A"}, {"Driver.Name", "two\nlines"}}}}),
                  "control character");
}

TEST_F(ToolTransfer, BoardsThatNobodyServesMayShareANumber) {
    home.Write("new", ExportFile({Board("A", "3"), Board("B", "3")}));
    EXPECT_EQ(Out({"import", "new"}), "imported 2 objects from \"new\"\n");
}

TEST_F(ToolTransfer, AFileThatIsNotThereIsNamed) {
    EXPECT_THAT(Run({"import", "bogus"}), Complains(1, "cannot read \"bogus\": No such file"));
    EXPECT_THAT(Run({"export", "no/such/directory"}),
                Complains(1, "cannot export to \"no/such/directory\": OAMERR_FILE_WRITE_ERROR"));
}

TEST_F(ToolTransfer, AnExportThatCannotBeImportedIsTold) {
    home.WriteDataFile("Obj0.xmo", DataFile("A", {{"Driver.Name", "two\nlines"}, {"Name", "A"}}));
    const Finished run = Run({"export", "saved"});
    EXPECT_THAT(run, Complains(1, "cannot be imported as it is"));
    EXPECT_THAT(run.err, HasSubstr("saved:4:7: the value of \"Driver.Name\" cannot be kept"));
    EXPECT_TRUE(home.Exists("saved"));
}

}  // namespace oam::test
