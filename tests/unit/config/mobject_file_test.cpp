// An object's data file: loading, saving and the limits of its path.
#include "by_hand.h"
#include "config_room.h"
#include "config/xmo_writer.h"
#include "support/allocation_fuse.h"
#include "support/file_limit.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

class ObjectFile : public ConfigRoom {
  protected:
    oam_result Load(const std::string& bytes) {
        home.WriteDataFile("Obj0.xmo", bytes);
        object.~KOR_CMObject();
        new (&object) KOR_CMObject("Thing", "Obj0.xmo");
        return object.Load();
    }

    KOR_CMObject object{"Thing", "Obj0.xmo"};
};

TEST_F(ObjectFile, LoadsEveryEntryAndStaysClosed) {
    EXPECT_EQ(Load(DataFile("Thing", {{"Key", "1"}, {"Key?Max", "9"}, {"Empty", ""}})),
              OAM_SUCCESS);
    EXPECT_THAT(EntriesOf(object), ElementsAre(Pair("Empty", ""), Pair("Key", "1"),
                                               Pair("Key?Max", "9")));
    EXPECT_EQ(object.OpenCount(), 0);
    EXPECT_FALSE(object.IsReadWrite());
}

TEST_F(ObjectFile, LaterEntryOfANameWins) {
    EXPECT_EQ(Load(DataFile("Thing", {{"Key", "1"}, {"KEY", "2"}})), OAM_SUCCESS);
    EXPECT_THAT(EntriesOf(object), ElementsAre(Pair("Key", "2")));
}

TEST_F(ObjectFile, MissingFileIsNotFound) { EXPECT_EQ(object.Load(), OAMERR_NOT_FOUND); }

TEST_F(ObjectFile, EntriesBeforeAFailureStay) {
    const std::string whole = DataFile("Thing", {{"A", "1"}, {"B", "2"}});
    EXPECT_EQ(Load(whole.substr(0, whole.find("<B>"))), OAMERR_FILE_READ_ERROR);
    EXPECT_THAT(EntriesOf(object), ElementsAre(Pair("A", "1")));
}

TEST_F(ObjectFile, WrittenByHandIsReadWholeOrAnswersACodeWithoutMemory) {
    home.WriteDataFile("Obj0.xmo", AsByHand(DataFile("Thing", {{"A", "1"}, {"B?Max", "2"}})));
    const auto check = [&](oam_result result) {
        if (result == OAM_SUCCESS) {
            EXPECT_THAT(EntriesOf(object), ElementsAre(Pair("A", "1"), Pair("B?Max", "2")));
        } else {
            EXPECT_TRUE(result == OAMERR_NOT_ENOUGH_MEMORY || result == OAMERR_FILE_READ_ERROR)
                << result;
        }
        object.~KOR_CMObject();
        new (&object) KOR_CMObject("Thing", "Obj0.xmo");
    };
    const oam_result loaded = FailEachAllocation([&] { return object.Load(); }, check);
    EXPECT_EQ(loaded, OAM_SUCCESS);
    check(loaded);
}

TEST_F(ObjectFile, DirectoryOfAnotherNameMakesItUnreadable) {
    EXPECT_EQ(Load(DataFile("thing", {{"Key", "1"}})), OAMERR_FILE_READ_ERROR) << "exactly";
    EXPECT_THAT(EntriesOf(object), IsEmpty());
    EXPECT_EQ(Load(DataFile("Thing 2", {{"Key", "1"}})), OAMERR_FILE_READ_ERROR);
}

TEST_F(ObjectFile, DeeperDirectoryMakesItUnreadable) {
    std::string bytes = DataFile("Thing", {{"Key", "1"}, {"Deep", "x"}});
    const size_t at = bytes.find("<Deep>x</>");
    bytes.replace(at, strlen("<Deep>x</>"), "<Deep><Er>x</></Deep>");
    EXPECT_EQ(Load(bytes), OAMERR_FILE_READ_ERROR);
    EXPECT_THAT(EntriesOf(object), ElementsAre(Pair("Key", "1")));
}

TEST_F(ObjectFile, ObjectWithoutKeywordsCannotBeLoadedBack) {
    EXPECT_EQ(object.Save(), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), DataFile("Thing", {}));
    EXPECT_EQ(object.Load(), OAMERR_FILE_READ_ERROR);
}

TEST_F(ObjectFile, KeptDirectoryIsTheNameKeywordWhenItFits) {
    unsigned long handle = 0;
    ASSERT_EQ(object.DbOpen(1, &handle, kProvide), OAM_SUCCESS);
    EXPECT_EQ(object.DbSetKeyword("Name", std::string(127, 'n').c_str()), OAM_SUCCESS);
    EXPECT_EQ(object.Save(), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"),
              DataFile(std::string(127, 'n'), {{"Name", std::string(127, 'n')}}));
    EXPECT_EQ(object.DbSetKeyword("Name", std::string(128, 'n').c_str()), OAM_SUCCESS);
    EXPECT_EQ(object.Save(), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"),
              DataFile("Thing", {{"Name", std::string(128, 'n')}}));
    EXPECT_EQ(object.DbClose(handle, true), OAM_SUCCESS);
}

TEST_F(ObjectFile, PathOf127CharactersFitsAndOf128DoesNot) {
    const size_t directory = home.Path("oam/cfg/").size();
    const std::string longest(127 - directory, 'x');
    KOR_CMObject fits("Thing", longest.c_str());
    EXPECT_EQ(fits.Save(), OAM_SUCCESS);
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre(longest));
    EXPECT_EQ(fits.RemoveFile(), OAM_SUCCESS);
    KOR_CMObject longer("Thing", (longest + "x").c_str());
    EXPECT_EQ(longer.Save(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(longer.Load(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(longer.RemoveFile(), OAMERR_NOT_ENOUGH_MEMORY);
    unsigned long handle = 0;
    EXPECT_EQ(longer.DbOpen(1, &handle, OAM_OPEN_READ), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(longer.OpenCount(), 0);
}

TEST_F(ObjectFile, InstallationPathThatDoesNotFitIsToldByEveryOperation) {
    home.MoveRootToLength(120);
    EXPECT_EQ(object.Load(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(object.Save(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(object.RemoveFile(), OAMERR_NOT_ENOUGH_MEMORY);
}

TEST_F(ObjectFile, RemovingAMissingFileIsNotFound) {
    EXPECT_EQ(object.RemoveFile(), OAMERR_NOT_FOUND);
    EXPECT_EQ(object.Save(), OAM_SUCCESS);
    EXPECT_EQ(object.RemoveFile(), OAM_SUCCESS);
    EXPECT_THAT(home.List("oam/cfg"), IsEmpty());
}

TEST_F(ObjectFile, FailedSaveStillCloses) {
    unsigned long handle = 0;
    ASSERT_EQ(object.DbOpen(1, &handle, kProvide), OAM_SUCCESS);
    EXPECT_EQ(object.DbSetKeyword("Key", "1"), OAM_SUCCESS);
    {
        const FileSizeLimit limit(5);
        EXPECT_EQ(object.DbClose(handle, false), OAMERR_FILE_WRITE_ERROR);
    }
    EXPECT_EQ(object.OpenCount(), 0);
    EXPECT_EQ(openObjects().Count(), 0);
    EXPECT_THAT(home.List("oam/cfg"), IsEmpty());
}

TEST_F(ObjectFile, WithoutADirectoryIsAWriteError) {
    home.Remove("oam/cfg");
    EXPECT_EQ(object.Save(), OAMERR_FILE_WRITE_ERROR);
}

TEST_F(ObjectFile, NameThatIsTooLongForTheFormatIsAWriteError) {
    const std::string name(230, 'n');
    KOR_CMObject named(name.c_str(), "Obj0.xmo");
    EXPECT_EQ(named.Save(), OAMERR_FILE_WRITE_ERROR);
    EXPECT_THAT(home.List("oam/cfg"), IsEmpty());
}

TEST_F(ObjectFile, SavesIntoAnOpenExport) {
    unsigned long handle = 0;
    ASSERT_EQ(object.DbOpen(1, &handle, kProvide), OAM_SUCCESS);
    EXPECT_EQ(object.DbSetKeyword("Key", "1"), OAM_SUCCESS);
    CXmlExport exporter;
    ASSERT_EQ(exporter.Open(home.Path("export").c_str(), kExportRoot), 0);
    EXPECT_EQ(object.Save(exporter), OAM_SUCCESS);
    EXPECT_EQ(exporter.Close(), 0);
    EXPECT_EQ(object.Save(exporter), OAMERR_FILE_WRITE_ERROR) << "it is closed";
    EXPECT_EQ(home.Read("export"), ExportFile({{"Thing", {{"Key", "1"}}}}));
    EXPECT_EQ(object.DbClose(handle, true), OAM_SUCCESS);
}

}  // namespace
}  // namespace oam::test
