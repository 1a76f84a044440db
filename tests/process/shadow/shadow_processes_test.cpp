// The shadow between processes: readers beside the service, and processes killed in the middle.
#include <chrono>
#include <thread>

#include "oam/shadow.h"
#include "reader_process.h"
#include "segment.h"
#include "support/service_test.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ShadowProcesses : public ServiceTest {
  protected:
    void SetUp() override {
        AddPluginFor("rec.bpi", {"Card"});
        WriteBoard();
    }
    void WriteBoard() {
        Entries entries = StandardEntries("Board", "Card");
        entries.emplace_back("Number", "3");
        entries.emplace_back("Driver.Name", "x");
        entries.emplace_back("Driver.BoardId", "x");
        home.WriteDataFile("Obj0.xmo", DataFile("Board", entries));
    }
    // Both driver texts in one change.
    static void Pair(const std::string& text) {
        const unsigned long handle = Open("Board", kWrite);
        EXPECT_EQ(_oamSetKeyword(handle, "Driver.Name", text.c_str()), OAM_SUCCESS);
        EXPECT_EQ(_oamSetKeyword(handle, "Driver.BoardId", text.c_str()), OAM_SUCCESS);
        EXPECT_EQ(_oamCloseObject_WOAN(handle), OAM_SUCCESS);
    }

    const Segment segment{home.Path(kSegmentFile)};
};

TEST_F(ShadowProcesses, AnotherProcessReadsNothingBeforeItIsAttached) {
    Start();
    ReaderProcess reader;
    EXPECT_THAT(reader.Ask({"attached"}), ElementsAre("0"));
    EXPECT_EQ(reader.NumberOf("Board"), Fails(OAMERR_NOT_ENOUGH_MEMORY));
    EXPECT_EQ(reader.Code({"init"}), unsigned{OAM_SUCCESS});
    EXPECT_THAT(reader.Ask({"attached"}), ElementsAre("1"));
    EXPECT_EQ(reader.NumberOf("Board"), Is("3"));
    EXPECT_EQ(reader.Code({"exit"}), unsigned{OAM_SUCCESS});
    EXPECT_THAT(reader.Ask({"attached"}), ElementsAre("0"));
    EXPECT_EQ(reader.NumberOf("Board"), Fails(OAMERR_NOT_ENOUGH_MEMORY));
    EXPECT_EQ(reader.Process().Finish(), 0);
}

TEST_F(ShadowProcesses, AnotherProcessReadsWhatTheServiceKnows) {
    Start();
    ReaderProcess reader(ReaderProcess::kAttached);
    EXPECT_THAT(reader.Boards(), ElementsAre("Board"));
    EXPECT_EQ(reader.NumberOf("bOARD"), Is("3"));
    EXPECT_EQ(reader.ByNumber(3), Is("Board"));
    EXPECT_EQ(reader.DriverIDsOf("Board"), Is("x|x"));
    EXPECT_EQ(reader.Value({"driver", "X", "X", "200"}), Is("Board"));
    EXPECT_EQ(reader.ALawOf("Board"), Is("0"));
    EXPECT_EQ(reader.VxPlugin(), Is("0"));
    EXPECT_EQ(reader.Value({"enum", "0", "5"}), Fails(OAMERR_NOT_ENOUGH_MEMORY));
    EXPECT_EQ(reader.Value({"enum", "0", "6"}), Is("Board"));
}

TEST_F(ShadowProcesses, AnotherProcessSeesEveryChange) {
    Start();
    ReaderProcess reader(ReaderProcess::kAttached);
    EXPECT_EQ(CreateBoard("Card"), "Card 0");
    EXPECT_THAT(reader.Boards(), ElementsAre("Board", "Card 0"));
    EXPECT_EQ(Change("Board", "Name", "Zulu"), OAM_SUCCESS);
    EXPECT_THAT(reader.Boards(), ElementsAre("Card 0", "Zulu"));
    EXPECT_EQ(reader.NumberOf("Zulu"), Is("3"));
    EXPECT_EQ(reader.NumberOf("Board"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(DbChange("Zulu", "XLaw", "ALAW"), OAM_SUCCESS);
    EXPECT_EQ(reader.ALawOf("Zulu"), Is("1"));
    EXPECT_EQ(_oamDeleteBoard(nullptr), OAM_SUCCESS);
    EXPECT_THAT(reader.Boards(), IsEmpty());
}

TEST_F(ShadowProcesses, AnotherProcessLearnsOfTheVxPlugin) {
    AddPlugin("vxplugin.bpi");
    Start();
    ReaderProcess reader(ReaderProcess::kAttached);
    EXPECT_EQ(reader.VxPlugin(), Is("1"));
}

TEST_F(ShadowProcesses, AReaderMayBeThereFirst) {
    ReaderProcess reader(ReaderProcess::kAttached);
    EXPECT_THAT(reader.Boards(), IsEmpty());
    EXPECT_EQ(segment.Count(), 0);
    Start();
    EXPECT_THAT(reader.Boards(), ElementsAre("Board"));
}

TEST_F(ShadowProcesses, AReaderOutlivesTheServicesStarts) {
    Start();
    ReaderProcess reader(ReaderProcess::kAttached);
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_THAT(reader.Boards(), ElementsAre("Board"));
    ReaderProcess late(ReaderProcess::kAttached);
    EXPECT_THAT(late.Boards(), ElementsAre("Board"));
    home.Remove("oam/cfg/Obj0.xmo");
    Start();
    EXPECT_THAT(reader.Boards(), IsEmpty());
    EXPECT_THAT(late.Boards(), IsEmpty());
}

TEST_F(ShadowProcesses, AnotherProcessKeepsTheShelfAndSlotThatItKnew) {
    Start();
    const std::string before = segment.Bytes();
    EXPECT_EQ(_oamBoardSetShelfSlot("Board", 7, 8), OAM_SUCCESS);
    EXPECT_EQ(segment.Bytes(), before);
}

TEST_F(ShadowProcesses, ReadersNeverSeeHalfAChange) {
    Start();
    ReaderProcess first(ReaderProcess::kAttached);
    ReaderProcess second(ReaderProcess::kAttached);
    for (ReaderProcess* reader : {&first, &second}) reader->Process().Say("pairs\tBoard\t20000");
    for (int i = 0; i < 300; ++i) {
        Pair(std::string(static_cast<size_t>(1 + i % 60), static_cast<char>('a' + i % 26)));
    }
    EXPECT_EQ(first.Process().Hear(), "0\t0");
    EXPECT_EQ(second.Process().Hear(), "0\t0");
}

TEST_F(ShadowProcesses, AKilledReaderHindersNobody) {
    Start();
    ReaderProcess witness(ReaderProcess::kAttached);
    for (int i = 0; i < 25; ++i) {
        ReaderProcess reader(ReaderProcess::kAttached);
        reader.Process().Say("spin");
        ASSERT_EQ(reader.Process().Hear(), "spinning");
        std::this_thread::sleep_for(std::chrono::microseconds(300 * i));
        reader.Process().Kill();
        const std::string text = "text " + std::to_string(i);
        Pair(text);
        ASSERT_EQ(witness.DriverIDsOf("Board"), Is(text + "|" + text));
    }
}

TEST_F(ShadowProcesses, AKilledWriterLeavesTheOldOrTheNewContent) {
    ReaderProcess witness(ReaderProcess::kAttached);
    for (int i = 0; i < 25; ++i) {
        WriteBoard();  // what was being saved when the one before was killed may be anything
        ChildProcess writer(SHADOW_WRITER, {});
        ASSERT_EQ(writer.Hear(), "running");
        std::this_thread::sleep_for(std::chrono::microseconds(700 * i));
        writer.Kill();
        ASSERT_THAT(witness.Boards(), ElementsAre("Board"));
        ASSERT_EQ(witness.NumberOf("Board"), Is("3"));
        const Answer ids = witness.DriverIDsOf("Board");
        ASSERT_EQ(ids.code, unsigned{OAM_SUCCESS});
        const size_t bar = ids.text.find('|');
        ASSERT_EQ(ids.text.substr(0, bar), ids.text.substr(bar + 1));
        ReaderProcess late(ReaderProcess::kAttached);
        ASSERT_EQ(late.DriverIDsOf("Board"), ids);
    }
}

TEST_F(ShadowProcesses, AServiceGoesOnAfterAKilledOne) {
    {
        ChildProcess writer(SHADOW_WRITER, {});
        ASSERT_EQ(writer.Hear(), "running");
        writer.Kill();
    }
    WriteBoard();
    Start();
    ReaderProcess reader(ReaderProcess::kAttached);
    EXPECT_EQ(reader.DriverIDsOf("Board"), Is("x|x"));
    Pair("after");
    EXPECT_EQ(reader.DriverIDsOf("Board"), Is("after|after"));
}

TEST_F(ShadowProcesses, ManyThreadsMayReadWhileTheServiceWrites) {
    Start();
    std::vector<std::thread> readers;
    for (int i = 0; i < 4; ++i) {
        readers.emplace_back([] {
            for (int round = 0; round < 2000; ++round) {
                char driver[129] = "";
                char id[65] = "";
                EXPECT_EQ(
                    oamShadowBoardGetDriverIDs(0, "Board", driver, sizeof driver, id, sizeof id),
                    OAM_SUCCESS);
                EXPECT_STREQ(driver, id);
            }
        });
    }
    for (int i = 0; i < 100; ++i) Pair(std::string(static_cast<size_t>(1 + i % 60), 'p'));
    for (std::thread& reader : readers) reader.join();
}

}  // namespace

}  // namespace oam::test
