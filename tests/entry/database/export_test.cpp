// Exporting the whole configuration.
#include <filesystem>

#include "support/file_limit.h"
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Export : public ServiceTest {
  protected:
    oam_result ExportTo(const std::string& relative) {
        return _oamConfigExport(home.Path(relative).c_str());
    }
    void WriteThing(const std::string& name, const Entries& entries) {
        home.WriteDataFile(name + ".xmo", DataFile(name, entries));
    }
};

TEST_F(Export, HoldsEveryObjectInOrderToTheByte) {
    WriteThing("beta", {{"Key", "1"}, {"Key?Type", "Integer"}, {"Name", "beta"}});
    WriteThing("Alpha", {{"Empty", ""}, {"Name", "Alpha"}});
    WriteThing("Zed", {{"Name", "Zed"}});
    Start();
    EXPECT_EQ(ExportTo("export"), OAM_SUCCESS);
    EXPECT_EQ(home.Read("export"),
              ExportFile({{"Alpha", {{"Empty", ""}, {"Name", "Alpha"}}},
                          {"beta", {{"Key", "1"}, {"Key?Type", "Integer"}, {"Name", "beta"}}},
                          {"Supervisor", SupervisorEntries()},
                          {"Zed", {{"Name", "Zed"}}}}));
}

TEST_F(Export, OfASmallConfigurationLooksSo) {
    Start();
    const unsigned long handle = DbOpen("Supervisor", kProvider);
    for (const auto& entry : SupervisorEntries()) {
        if (entry.first == "Name") continue;
        EXPECT_EQ(_oamDbRemoveKeyword(handle, entry.first.c_str()), OAM_SUCCESS);
    }
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(ExportTo("export"), OAM_SUCCESS);
    EXPECT_EQ(home.Read("export"),
              "<?XML version=\"1.0\"?>\n"
              "<OA&M Configuration ver. 1.0>\n"
              "   <Supervisor>\n"
              "      <Name>Supervisor</>\n"
              "   </Supervisor>\n"
              "</OA&M Configuration ver. 1.0>\n");
}

TEST_F(Export, KeptDirectoryIsTheNameKeywordWhenItCanBeRead) {
    const std::string longName(128, 'n');
    home.WriteDataFile("One.xmo", DataFile("One", {{"Name", "Other"}}));
    home.WriteDataFile("Two.xmo", DataFile("Two", {{"Name", longName}}));
    home.WriteDataFile("Zero.xmo", DataFile("Zero", {{"Key", "1"}}));
    Start();
    EXPECT_EQ(ExportTo("export"), OAM_SUCCESS);
    EXPECT_EQ(home.Read("export"), ExportFile({{"Other", {{"Name", "Other"}}},
                                               {"Supervisor", SupervisorEntries()},
                                               {"Two", {{"Name", longName}}},
                                               {"Zero", {{"Key", "1"}}}}));
}

TEST_F(Export, PathOfRootAndObjectHas255Characters) {
    const size_t longest = 255 - std::string("\\\\OA&M Configuration ver. 1.0\\").size();
    WriteThing(std::string(100, 'a'), {{"Name", "a"}});
    home.WriteDataFile("Long.xmo", DataFile(std::string(longest, 'b'), {{"Key", "1"}}));
    Start();
    EXPECT_EQ(ExportTo("export"), OAM_SUCCESS);
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    home.WriteDataFile("Long.xmo", DataFile(std::string(longest + 1, 'b'), {{"Key", "1"}}));
    Start();
    EXPECT_EQ(ExportTo("too long"), OAMERR_FILE_WRITE_ERROR);
    EXPECT_FALSE(home.Exists("too long"));
}

TEST_F(Export, ReplacesAnEarlierExport) {
    Start();
    home.Write("export", std::string(100000, 'x'));
    EXPECT_EQ(ExportTo("export"), OAM_SUCCESS);
    EXPECT_EQ(home.Read("export"), ExportFile({{"Supervisor", SupervisorEntries()}}));
}

TEST_F(Export, AsksNoPluginAndWritesNoDataFile) {
    AddPluginFor("x.bpi", {"Prod"});
    Start();
    CreateBoard("Prod");
    recorder.Clear();
    alerts.Clear();
    for (const char* file : {"Obj0.xmo", "x.xmo"}) {
        std::filesystem::create_hard_link(home.Path(std::string("oam/cfg/") + file),
                                          home.Path(std::string("oam/") + file));
    }
    EXPECT_EQ(ExportTo("export"), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines(), IsEmpty());
    EXPECT_THAT(alerts.All(), IsEmpty());
    for (const char* file : {"Obj0.xmo", "x.xmo"}) {
        EXPECT_TRUE(std::filesystem::equivalent(home.Path(std::string("oam/cfg/") + file),
                                                home.Path(std::string("oam/") + file)));
    }
}

TEST_F(Export, LeavesEveryObjectClosed) {
    Start();
    EXPECT_EQ(ExportTo("export"), OAM_SUCCESS);
    EXPECT_EQ(Change("Supervisor", "AutoStopEnabled", "Yes"), OAM_SUCCESS);
}

TEST_F(Export, ReadsBesideOtherReaders) {
    Start();
    const unsigned long handle = Open("Supervisor");
    EXPECT_EQ(ExportTo("export"), OAM_SUCCESS);
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    EXPECT_TRUE(home.Exists("export"));
}

TEST_F(Export, IsRefusedWhileAnObjectIsWritten) {
    WriteThing("Alpha", {{"Name", "Alpha"}});
    Start();
    const unsigned long handle = Open("Supervisor", kWrite);
    EXPECT_EQ(ExportTo("export"), OAMERR_ACCESS_DENIED);
    EXPECT_FALSE(home.Exists("export"));
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    EXPECT_THAT(home.List("."), ElementsAre("lib", "oam", "shm")) << "nothing is left beside it";
    EXPECT_EQ(DbChange("Alpha", "Key", "x"), OAM_SUCCESS) << "nothing is left open";
}

// A receiver of an alert that the plug-in raises in CreateBoard can export too.
TEST_F(Export, LeavesOutAnObjectThatIsBeingCreated) {
    AddPlugin("x.bpi", [this](ModuleScript& script) {
        script.products = {"Prod"};
        script.createBoard = [this](const char*, const char*) {
            return unsigned{_oamConfigExport(home.Path("export").c_str())};
        };
    });
    Start();
    CreateBoard("Prod");
    CreateBoard("Prod");
    const std::string bytes = home.Read("export");
    EXPECT_NE(bytes.find("<Prod 0>"), std::string::npos);
    EXPECT_EQ(bytes.find("<Prod 1>"), std::string::npos);
    EXPECT_EQ(_oamConfigImport(home.Path("export").c_str()), OAM_SUCCESS);
}

TEST_F(Export, SpoiledDataFileFailsIt) {
    WriteThing("Thing", {{"Name", "Thing"}});
    Start();
    home.WriteDataFile("Thing.xmo", "spoiled");
    EXPECT_EQ(ExportTo("export"), OAMERR_FILE_READ_ERROR);
    EXPECT_FALSE(home.Exists("export"));
}

TEST_F(Export, FileThatCannotBeMadeIsAWriteError) {
    Start();
    EXPECT_EQ(ExportTo("no/such/directory/export"), OAMERR_FILE_WRITE_ERROR);
    home.MakeDirectory("taken/occupied");
    EXPECT_EQ(ExportTo("taken"), OAMERR_FILE_WRITE_ERROR);
    EXPECT_THAT(home.List("."), ElementsAre("lib", "oam", "shm", "taken"));
}

TEST_F(Export, FullDiskLeavesNoFile) {
    Start();
    {
        FileSizeLimit limit(100);
        EXPECT_EQ(ExportTo("export"), OAMERR_FILE_WRITE_ERROR);
    }
    EXPECT_THAT(home.List("."), ElementsAre("lib", "oam", "shm"));
    EXPECT_EQ(ExportTo("export"), OAM_SUCCESS);
}

}  // namespace
}  // namespace oam::test
