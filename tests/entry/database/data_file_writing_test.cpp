// The bytes of data files, and what the plain form cannot hold.
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;

using DataFileWriting = ServiceTest;

TEST_F(DataFileWriting, ObjectIsWrittenToTheByte) {
    home.WriteDataFile("Obj0.xmo", DataFile("Board 1", {{"Name", "Board 1"}}));
    Start();
    const unsigned long handle = DbOpen("Board 1", kProvider);
    EXPECT_EQ(_oamDbSetKeyword(handle, "Location.PCI.Bus", "3"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbSetQualifier(handle, "Name", "Type", "Object"), OAM_SUCCESS);
    EXPECT_EQ(_oamDbSetQualifier(handle, "Name", "Description", "name of managed object"),
              OAM_SUCCESS);
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"),
              "<?XML version=\"1.0\"?>\n"
              "<OA&M Configuration ver. 1.0 - Object>\n"
              "   <Board 1>\n"
              "      <Location.PCI.Bus>3</>\n"
              "      <Name>Board 1</>\n"
              "      <Name?Description>name of managed object</>\n"
              "      <Name?Type>Object</>\n"
              "   </Board 1>\n"
              "</OA&M Configuration ver. 1.0 - Object>\n");
}

TEST_F(DataFileWriting, SupervisorOfAFirstStartIsWrittenToTheByte) {
    Start();
    EXPECT_EQ(home.ReadDataFile("Super.xmo"),
              "<?XML version=\"1.0\"?>\n"
              "<OA&M Configuration ver. 1.0 - Object>\n"
              "   <Supervisor>\n"
              "      <AutoStartEnabled>No</>\n"
              "      <AutoStartEnabled?Description>enables automatic start of boards</>\n"
              "      <AutoStartEnabled?Type>String</>\n"
              "      <AutoStopEnabled>No</>\n"
              "      <AutoStopEnabled?Description>enables automatic stop of boards</>\n"
              "      <AutoStopEnabled?Type>String</>\n"
              "      <Name>Supervisor</>\n"
              "      <Name?Description>name of managed object</>\n"
              "      <Name?Type>Object</>\n"
              "      <OammonLog>No</>\n"
              "      <OammonLog?Description>enables logging of board trace</>\n"
              "      <OammonLog?Type>String</>\n"
              "      <SynchronizeEnabled>No</>\n"
              "      <SynchronizeEnabled?Description>enables synchronize start/stop operation</>\n"
              "      <SynchronizeEnabled?Type>String</>\n"
              "      <Version.Major>1</>\n"
              "      <Version.Major?Description>version major number</>\n"
              "      <Version.Major?Type>Integer</>\n"
              "      <Version.Minor>0</>\n"
              "      <Version.Minor?Description>version minor number</>\n"
              "      <Version.Minor?Type>Integer</>\n"
              "   </Supervisor>\n"
              "</OA&M Configuration ver. 1.0 - Object>\n");
}

TEST_F(DataFileWriting, ReadFileIsWrittenInTheOneForm) {
    home.WriteDataFile("Obj0.xmo",
                       "<!x><OA&M Configuration ver. 1.0 - Object>\r\n<Thing><Z>1</Z>\r\n<a> 2 </>"
                       "<Name>Thing</Name><Empty></></></OA&M Configuration ver. 1.0 - Object>");
    Start();
    EXPECT_EQ(_oamDbCloseObject(DbOpen("Thing", kWrite)), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"),
              DataFile("Thing", {{"a", "2"}, {"Empty", ""}, {"Name", "Thing"}, {"Z", "1"}}));
}

TEST_F(DataFileWriting, KeptValuesAreWrittenRawAndABracketSpoilsTheFile) {
    home.WriteDataFile("Obj0.xmo", DataFile("Thing", {{"Name", "Thing"}}));
    Start();
    EXPECT_EQ(DbChange("Thing", "Key", "a<b"), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"),
              DataFile("Thing", {{"Key", "a<b"}, {"Name", "Thing"}}));
    unsigned long handle = 0;
    EXPECT_EQ(_oamDbOpenObject("Thing", &handle, kRead), OAMERR_FILE_READ_ERROR);
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Obj0.bak", "Super.xmo"));
}

TEST_F(DataFileWriting, KeptOtherMarksOfTheFormAreNotEscapedEither) {
    home.WriteDataFile("Obj0.xmo", DataFile("Thing", {{"Name", "Thing"}}));
    Start();
    EXPECT_EQ(DbChange("Thing", "Key", "a > b & \"c\"\n\xFF"), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"),
              DataFile("Thing", {{"Key", "a > b & \"c\"\n\xFF"}, {"Name", "Thing"}}));
    EXPECT_EQ(StoredKeywordOf("Thing", "Key"), Is("a > b & \"c\"\n\xFF"));
}

TEST_F(DataFileWriting, KeptWhiteSpaceAtTheEndsOfAValueIsWrittenAndLostOnReading) {
    home.WriteDataFile("Obj0.xmo", DataFile("Thing", {{"Name", "Thing"}}));
    Start();
    const unsigned long handle = DbOpen("Thing", kProvider);
    EXPECT_EQ(_oamDbSetKeyword(handle, "Key", "  x  "), OAM_SUCCESS);
    EXPECT_EQ(DbGetKeyword(handle, "Key"), Is("  x  "));
    EXPECT_EQ(_oamDbCloseObject(handle), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"),
              DataFile("Thing", {{"Key", "  x  "}, {"Name", "Thing"}}));
    EXPECT_EQ(StoredKeywordOf("Thing", "Key"), Is("x"));
}

TEST_F(DataFileWriting, EmptyValuesComeBackEmpty) {
    home.WriteDataFile("Obj0.xmo", DataFile("Thing", {{"Name", "Thing"}}));
    Start();
    EXPECT_EQ(DbChange("Thing", "Key", ""), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), DataFile("Thing", {{"Key", ""}, {"Name", "Thing"}}));
    EXPECT_EQ(StoredKeywordOf("Thing", "Key"), Is(""));
}

TEST_F(DataFileWriting, LongestReadableValueComesBack) {
    home.WriteDataFile("Obj0.xmo", DataFile("Thing", {{"Name", "Thing"}}));
    Start();
    EXPECT_EQ(DbChange("Thing", "Key", std::string(2047, 'v')), OAM_SUCCESS);
    EXPECT_EQ(StoredKeywordOf("Thing", "Key"), Is(std::string(2047, 'v')));
}

TEST_F(DataFileWriting, FormatMarksInNamesAndValuesAreTextsLikeAllOthers) {
    home.WriteDataFile("Obj0.xmo", DataFile("100%s", {{"Name", "100%s"}}));
    Start();
    EXPECT_EQ(DbChange("100%s", "Key%n", "%d%s%n"), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"),
              DataFile("100%s", {{"Key%n", "%d%s%n"}, {"Name", "100%s"}}));
}

}  // namespace
}  // namespace oam::test
