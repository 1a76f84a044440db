// How the shadow's segment comes to be, is attached and given up.
#include <sys/stat.h>

#include <cstring>
#include <filesystem>
#include <functional>

#include "entry/boards/elsewhere.h"
#include "korcore/mutex.h"
#include "oam/shadow.h"
#include "segment.h"
#include "support/service_test.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ShadowLifecycle : public ServiceTest {
  protected:
    void TearDown() override {
        EXPECT_EQ(oamShadowExit(), OAM_SUCCESS);
        ServiceTest::TearDown();
    }
    static Answer At(int index) {
        char name[129] = "";
        const unsigned code = oamShadowBoardEnum(0, index, name, sizeof name);
        return {code, code == OAM_SUCCESS ? name : ""};
    }
    void AddBoard() {
        AddPluginFor("rec.bpi", {"Card"});
        Entries entries = StandardEntries("Board", "Card");
        entries.emplace_back("Number", "3");
        home.WriteDataFile("Obj0.xmo", DataFile("Board", entries));
    }
    unsigned ModeOf(const std::string& file) const {
        struct stat status {};
        EXPECT_EQ(stat(home.Path(file).c_str(), &status), 0) << file;
        return status.st_mode & 07777;
    }

    const Segment segment{home.Path(kSegmentFile)};
};

TEST_F(ShadowLifecycle, IsNothingBeforeItIsInitialised) {
    EXPECT_EQ(oamShadowGetPtr(), nullptr);
    char text[8] = "same";
    char other[8] = "same";
    unsigned number = 77;
    bool flag = true;
    EXPECT_EQ(oamShadowBoardEnum(0, 0, text, sizeof text), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(oamShadowBoardEnum(0, -1, text, sizeof text), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(oamShadowBoardLookupByNumber(0, 0, text, sizeof text), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(oamShadowBoardLookupByDriverIDs(0, "", "", text, sizeof text),
              OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(oamShadowBoardGetNumber(0, "Board", &number), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(oamShadowBoardGetDriverIDs(0, "Board", text, sizeof text, other, sizeof other),
              OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(oamShadowBoardGetIsUsingVxPlugin(0, &flag), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(oamShadowBoardIsUsingALaw(0, "Board", &flag), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_STREQ(text, "same");
    EXPECT_STREQ(other, "same");
    EXPECT_EQ(number, 77u);
    EXPECT_TRUE(flag);
    EXPECT_FALSE(home.Exists(kSegmentFile));
}

TEST_F(ShadowLifecycle, MayBeGivenUpWithoutHavingBeenInitialised) {
    EXPECT_EQ(oamShadowExit(), OAM_SUCCESS);
    EXPECT_EQ(oamShadowExit(), OAM_SUCCESS);
    EXPECT_EQ(oamShadowGetPtr(), nullptr);
}

TEST_F(ShadowLifecycle, CreatesAnEmptySegmentOfItsFixedSize) {
    EXPECT_EQ(oamShadowInit(), OAM_SUCCESS);
    EXPECT_NE(oamShadowGetPtr(), nullptr);
    EXPECT_EQ(segment.Bytes().size(), kSegmentSize);
    EXPECT_EQ(segment.Count(), 0);
    EXPECT_EQ(segment.VxPlugin(), 0u);
    EXPECT_TRUE(home.Exists(kLockFile));
    EXPECT_EQ(At(0), Fails(OAMERR_NOT_FOUND));
    bool flag = true;
    EXPECT_EQ(oamShadowBoardGetIsUsingVxPlugin(0, &flag), OAM_SUCCESS);
    EXPECT_FALSE(flag);
}

TEST_F(ShadowLifecycle, OpensItsFilesToOwnerAndGroupWhateverTheMask) {
    const mode_t before = umask(0077);
    EXPECT_EQ(oamShadowInit(), OAM_SUCCESS);
    umask(before);
    EXPECT_EQ(ModeOf(kSegmentFile), 0660u);
    EXPECT_EQ(ModeOf(kLockFile), 0660u);
}

TEST_F(ShadowLifecycle, KeepsItsFilesFromOthersWhateverTheMask) {
    const mode_t before = umask(0);
    EXPECT_EQ(oamShadowInit(), OAM_SUCCESS);
    umask(before);
    EXPECT_EQ(ModeOf(kSegmentFile), 0660u);
    EXPECT_EQ(ModeOf(kLockFile), 0660u);
}

TEST_F(ShadowLifecycle, AttachesASegmentThatIsThereAsItIs) {
    const std::string bytes = SegmentBytes({{"Board", 5, "drv", "id", true}}, true);
    segment.Make(bytes);
    EXPECT_EQ(oamShadowInit(), OAM_SUCCESS);
    EXPECT_EQ(At(0), Is("Board"));
    EXPECT_EQ(At(1), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(segment.Bytes(), bytes);
}

TEST_F(ShadowLifecycle, LeavesTheSegmentWhenItIsGivenUp) {
    const std::string bytes = SegmentBytes({{"Board", 5, "drv", "id", true}});
    segment.Make(bytes);
    EXPECT_EQ(oamShadowInit(), OAM_SUCCESS);
    EXPECT_EQ(oamShadowExit(), OAM_SUCCESS);
    EXPECT_EQ(oamShadowGetPtr(), nullptr);
    EXPECT_EQ(At(0), Fails(OAMERR_NOT_ENOUGH_MEMORY));
    EXPECT_EQ(segment.Bytes(), bytes);
    EXPECT_EQ(oamShadowInit(), OAM_SUCCESS);
    EXPECT_EQ(At(0), Is("Board"));
}

TEST_F(ShadowLifecycle, KeptFirstViewIsReplacedNotReleasedByTheSecond) {
    segment.Make(SegmentBytes({{"Board", 5, "", "", false}}));
    EXPECT_EQ(oamShadowInit(), OAM_SUCCESS);
    const CBoardIDsShadow* first = oamShadowGetPtr();
    EXPECT_EQ(oamShadowInit(), OAM_SUCCESS);
    EXPECT_NE(oamShadowGetPtr(), nullptr);
    EXPECT_NE(oamShadowGetPtr(), first);
    EXPECT_EQ(At(0), Is("Board"));
    EXPECT_EQ(oamShadowExit(), OAM_SUCCESS);
    EXPECT_EQ(oamShadowGetPtr(), nullptr);
}

TEST_F(ShadowLifecycle, FailsWithoutADirectoryForItsSegment) {
    setenv("KOR_SHM_DIR", home.Path("nowhere").c_str(), 1);
    EXPECT_EQ(oamShadowInit(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(At(0), Fails(OAMERR_NOT_ENOUGH_MEMORY));
}

TEST_F(ShadowLifecycle, StopsTheServicesStartWhenItCannotBeMade) {
    AddBoard();
    setenv("KOR_SHM_DIR", home.Path("nowhere").c_str(), 1);
    EXPECT_EQ(_oamInit(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_FALSE(g_bOamIsRunning);
    EXPECT_THAT(recorder.Lines({"Init", "Exit"}),
                ElementsAre("rec.bpi Init(rec.bpi)", "rec.bpi Exit()"));
}

TEST_F(ShadowLifecycle, LastsAsLongAsTheService) {
    AddBoard();
    EXPECT_EQ(oamShadowGetPtr(), nullptr);
    Start();
    EXPECT_NE(oamShadowGetPtr(), nullptr);
    EXPECT_EQ(At(0), Is("Board"));
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_EQ(oamShadowGetPtr(), nullptr);
    EXPECT_EQ(At(0), Fails(OAMERR_NOT_ENOUGH_MEMORY));
}

TEST_F(ShadowLifecycle, KeepsTheBoardsAfterTheService) {
    AddBoard();
    Start();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_THAT(segment.Names(), ElementsAre("Board"));
    EXPECT_EQ(oamShadowInit(), OAM_SUCCESS);
    EXPECT_EQ(At(0), Is("Board"));
}

TEST_F(ShadowLifecycle, GrowsASegmentThatIsTooShort) {
    segment.Make("short");
    EXPECT_EQ(oamShadowInit(), OAM_SUCCESS);
    EXPECT_EQ(segment.Bytes().size(), kSegmentSize);
}

TEST_F(ShadowLifecycle, DoesNotHinderAServiceThatLosesItsView) {
    AddBoard();
    Start();
    EXPECT_EQ(oamShadowExit(), OAM_SUCCESS);
    EXPECT_EQ(CreateBoard("Card"), "Card 0");
    EXPECT_EQ(Change("Board", "Name", "Renamed"), OAM_SUCCESS);
    EXPECT_EQ(_oamDeleteBoard("Card 0"), OAM_SUCCESS);
    EXPECT_THAT(segment.Names(), ElementsAre("Board"));
    EXPECT_EQ(oamShadowInit(), OAM_SUCCESS);
    EXPECT_EQ(Change("Renamed", "Name", "Again"), OAM_SUCCESS);
    EXPECT_THAT(segment.Names(), ElementsAre("Again"));
}

// Who holds the segment's lock may use the shadow all the same, whoever else waits for it.
TEST_F(ShadowLifecycle, AThreadThatWaitsHoldsUpNobodyWhoHoldsTheLock) NO_THREAD_SAFETY_ANALYSIS {
    AddBoard();
    Start();
    CKorMutex lock(0, kLockName);
    ASSERT_TRUE(lock.Lock(0xFFFFFFFF));
    Elsewhere<Answer> reader([] { return At(0); });
    EXPECT_TRUE(reader.IsHeldBack());
    EXPECT_EQ(At(0), Is("Board"));
    EXPECT_NE(oamShadowGetPtr(), nullptr);
    lock.Unlock();
    EXPECT_TRUE(reader.IsDone());
    EXPECT_EQ(reader.Get(), Is("Board"));
}

TEST_F(ShadowLifecycle, GivenUpDuringAReadItIsThereUntilTheReadersEnd) NO_THREAD_SAFETY_ANALYSIS {
    AddBoard();
    Start();
    CKorMutex lock(0, kLockName);
    ASSERT_TRUE(lock.Lock(0xFFFFFFFF));
    Elsewhere<Answer> reader([] { return At(0); });
    EXPECT_TRUE(reader.IsHeldBack());
    EXPECT_EQ(oamShadowExit(), OAM_SUCCESS);
    EXPECT_EQ(At(0), Fails(OAMERR_NOT_ENOUGH_MEMORY));
    lock.Unlock();
    EXPECT_TRUE(reader.IsDone());
    EXPECT_EQ(reader.Get(), Is("Board"));
    EXPECT_EQ(oamShadowInit(), OAM_SUCCESS);
}

}  // namespace

}  // namespace oam::test
