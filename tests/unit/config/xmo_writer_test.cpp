// The writer of data files and exports: its bytes and its refusals.
#include "config/xmo_writer.h"

#include "doors/room_test.h"
#include "doors/system_door.h"
#include "support/file_limit.h"

namespace oam::test {
namespace {

class XmoWriter : public RoomTest {
  protected:
    std::string path = home.Path("oam/cfg/x.xmo");
    std::string Bytes() const { return home.Read("oam/cfg/x.xmo"); }
    void Open(const char* root = "root") { ASSERT_EQ(writer.Open(path.c_str(), root), 0); }

    CXmlExport writer;
};

TEST_F(XmoWriter, IndentsByThreeBlanksALevel) {
    Open("OA&M Configuration ver. 1.0 - Object");
    EXPECT_EQ(writer.BegDir("Board 1"), 0);
    EXPECT_EQ(writer.SetNextKeyword("Location.PCI.Bus", "3"), 0);
    EXPECT_EQ(writer.SetNextKeyword("Name?Type", "Object"), 0);
    EXPECT_EQ(writer.EndDir("Board 1"), 0);
    EXPECT_EQ(writer.Close(), 0);
    EXPECT_EQ(Bytes(),
              "<?XML version=\"1.0\"?>\n"
              "<OA&M Configuration ver. 1.0 - Object>\n"
              "   <Board 1>\n"
              "      <Location.PCI.Bus>3</>\n"
              "      <Name?Type>Object</>\n"
              "   </Board 1>\n"
              "</OA&M Configuration ver. 1.0 - Object>\n");
}

TEST_F(XmoWriter, WritesNamesAndValuesRaw) {
    Open();
    EXPECT_EQ(writer.SetNextKeyword("a<b>", "100%s & \"<x>\" "), 0);
    EXPECT_EQ(writer.Close(), 0);
    EXPECT_EQ(Bytes(), "<?XML version=\"1.0\"?>\n<root>\n   <a<b>>100%s & \"<x>\" </>\n</root>\n");
}

TEST_F(XmoWriter, WritesANullValueEmpty) {
    Open();
    EXPECT_EQ(writer.SetNextKeyword("Key", nullptr), 0);
    EXPECT_EQ(writer.Close(), 0);
    EXPECT_EQ(Bytes(), "<?XML version=\"1.0\"?>\n<root>\n   <Key></>\n</root>\n");
}

TEST_F(XmoWriter, CloseEndsEveryOpenDirectory) {
    Open();
    EXPECT_EQ(writer.BegDir("a"), 0);
    EXPECT_EQ(writer.BegDir("b"), 0);
    EXPECT_EQ(writer.Close(), 0);
    EXPECT_EQ(Bytes(),
              "<?XML version=\"1.0\"?>\n<root>\n   <a>\n      <b>\n      </b>\n   </a>\n</root>\n");
}

TEST_F(XmoWriter, TruncatesWhatWasThere) {
    home.Write("oam/cfg/x.xmo", std::string(1000, 'x'));
    Open();
    EXPECT_EQ(writer.Close(), 0);
    EXPECT_EQ(Bytes(), "<?XML version=\"1.0\"?>\n<root>\n</root>\n");
}

TEST_F(XmoWriter, CannotOpenWhereNothingCanBeMade) {
    EXPECT_EQ(writer.Open(home.Path("nowhere/x.xmo").c_str(), "root"), -1);
    EXPECT_EQ(writer.BegDir("a"), -1);
    EXPECT_EQ(writer.SetNextKeyword("k", "v"), -1);
    EXPECT_EQ(writer.EndDir(nullptr), -1);
    EXPECT_EQ(writer.Close(), -1);
}

TEST_F(XmoWriter, RefusesADirectoryWhosePathReaches256) {
    Open("r");  // the path is now "\\r" behind its first backslash: three characters
    EXPECT_EQ(writer.BegDir(std::string(252, 'x').c_str()), -1);
    EXPECT_EQ(writer.BegDir(std::string(251, 'x').c_str()), 0);
    EXPECT_EQ(writer.BegDir(""), -1);
    EXPECT_EQ(writer.Close(), 0);
    EXPECT_EQ(Bytes(), "<?XML version=\"1.0\"?>\n<r>\n   <" + std::string(251, 'x') + ">\n   </" +
                           std::string(251, 'x') + ">\n</r>\n");
}

TEST_F(XmoWriter, RefusesARootThatIsTooLong) {
    EXPECT_EQ(writer.Open(path.c_str(), std::string(254, 'r').c_str()), -1);
}

TEST_F(XmoWriter, EndsOnlyTheLastDirectoryAndExactlyByItsName) {
    Open();
    EXPECT_EQ(writer.BegDir("Board"), 0);
    EXPECT_EQ(writer.EndDir("BOARD"), -1);
    EXPECT_EQ(writer.EndDir("root"), -1);
    EXPECT_EQ(writer.EndDir("Board"), 0);
    EXPECT_EQ(writer.EndDir(nullptr), 0) << "the root";
    EXPECT_EQ(writer.EndDir(nullptr), -1) << "nothing is open";
    EXPECT_EQ(writer.Close(), 0);
    EXPECT_EQ(Bytes(), "<?XML version=\"1.0\"?>\n<root>\n   <Board>\n   </Board>\n</root>\n");
}

TEST_F(XmoWriter, FailsWhenItsOutputDoes) {
    Open();
    const std::string much(100000, 'v');
    const FileSizeLimit limit(0);
    EXPECT_EQ(writer.SetNextKeyword("Key", much.c_str()), -1);
    EXPECT_EQ(writer.Close(), -1);
}

TEST_F(XmoWriter, FailsToCloseWhenTheLastBytesCannotBeWritten) {
    Open();
    EXPECT_EQ(writer.SetNextKeyword("Key", "still in the buffer"), 0);
    const FileSizeLimit limit(10);
    EXPECT_EQ(writer.Close(), -1);
}

TEST_F(XmoWriter, SyncedCloseFailsWhenTheSyncDoes) {
    Open();
    const SystemFault fault("fsync", 1, EIO);
    EXPECT_EQ(writer.CloseSynced(), -1);
    EXPECT_TRUE(fault.HasHappened());
}

TEST_F(XmoWriter, MayBeOpenedAgainAfterAClose) {
    Open("first");
    EXPECT_EQ(writer.BegDir("x"), 0);
    EXPECT_EQ(writer.Close(), 0);
    Open("second");
    EXPECT_EQ(writer.CloseSynced(), 0);
    EXPECT_EQ(Bytes(), "<?XML version=\"1.0\"?>\n<second>\n</second>\n");
}

TEST_F(XmoWriter, DestructorClosesAnUnfinishedFile) {
    {
        CXmlExport unfinished;
        ASSERT_EQ(unfinished.Open(path.c_str(), "root"), 0);
    }
    EXPECT_EQ(Bytes(), "<?XML version=\"1.0\"?>\n<root>\n");
}

}  // namespace
}  // namespace oam::test
