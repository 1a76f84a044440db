// A closed object keeps its keywords only for as long as its data file is the one that was read.
#include <fcntl.h>
#include <sys/stat.h>

#include <chrono>
#include <thread>

#include "config/kept_keywords.h"
#include "config_room.h"

namespace oam::test {
namespace {

class KeptKeywordsTest : public ConfigRoom {
  protected:
    std::string File() const { return home.Path("oam/cfg/Obj0.xmo"); }
    void Write(const std::string& value) {
        home.WriteDataFile("Obj0.xmo", DataFile("Thing", {{"Key", value}}));
    }
    struct stat Status() const {
        struct stat status {};
        EXPECT_EQ(stat(File().c_str(), &status), 0);
        return status;
    }
    // Until a file written now is old enough to be known again.
    static void LetItAge() { std::this_thread::sleep_for(std::chrono::milliseconds(25)); }
    void SetModified(const timespec& time) {
        const timespec times[2] = {time, time};
        ASSERT_EQ(utimensat(AT_FDCWD, File().c_str(), times, 0), 0);
    }

    std::string ReadOnce(unsigned mode = OAM_OPEN_READ) {
        unsigned long handle;
        if (object.DbOpen(OAM_INTERNAL_CLIENT, &handle, mode) != OAM_SUCCESS) return "(refused)";
        char value[64] = "(none)";
        (void)object.DbGetKeyword("Key", value, sizeof value);
        EXPECT_EQ(object.DbClose(handle, true), OAM_SUCCESS);
        return value;
    }
    bool IsKept() { return object.Kept()->object != nullptr; }

    KOR_CMObject object{"Thing", "Obj0.xmo"};
};

TEST_F(KeptKeywordsTest, AreKeptOfAFileThatIsOldEnough) {
    Write("1");
    LetItAge();
    EXPECT_EQ(ReadOnce(), "1");
    EXPECT_TRUE(IsKept());
    EXPECT_GT(keptKeywords().Bytes(), 0u);
    EXPECT_EQ(ReadOnce(), "1");
    EXPECT_TRUE(IsKept());
}

TEST_F(KeptKeywordsTest, AreOpenedWithAsFoundWhileTheyAreTrusted) {
    Write("1");
    LetItAge();
    EXPECT_EQ(ReadOnce(), "1");
    Write("another");
    {
        const KeptKeywords::Trust trust;
        EXPECT_EQ(ReadOnce(), "1");
    }
    EXPECT_EQ(ReadOnce(), "another");
    const KeptKeywords::Trust trust;
    object.DropKept();
    EXPECT_EQ(ReadOnce(), "another") << "nothing is kept, so the file is read";
}

TEST_F(KeptKeywordsTest, AreNotKeptOfAFileThatWasWrittenJustNow) {
    // Unless the machine is so slow that it is old when it is read.
    for (int attempt = 0; attempt < 100; ++attempt) {
        Write("1");
        const auto written = std::chrono::steady_clock::now();
        EXPECT_EQ(ReadOnce(), "1");
        if (std::chrono::steady_clock::now() - written > std::chrono::milliseconds(15)) continue;
        EXPECT_FALSE(IsKept());
        return;
    }
}

TEST_F(KeptKeywordsTest, EditByHandIsSeen) {
    Write("1");
    LetItAge();
    ASSERT_EQ(ReadOnce(), "1");
    Write("2");
    EXPECT_EQ(ReadOnce(), "2");
    Write("3");
    EXPECT_EQ(ReadOnce(), "3") << "within the same moment";
    LetItAge();
    EXPECT_EQ(ReadOnce(), "3");
    Write("44");
    EXPECT_EQ(ReadOnce(), "44");
}

TEST_F(KeptKeywordsTest, EditThatRestoresSizeAndTimeIsSeen) {
    Write("1");
    LetItAge();
    const struct stat before = Status();
    ASSERT_EQ(ReadOnce(), "1");
    Write("2");
    SetModified(before.st_mtim);
    ASSERT_EQ(Status().st_size, before.st_size);
    ASSERT_EQ(Status().st_mtim.tv_nsec, before.st_mtim.tv_nsec);
    EXPECT_EQ(ReadOnce(), "2");
}

TEST_F(KeptKeywordsTest, FileInItsPlaceOfTheSameSizeAndTimeIsSeen) {
    Write("1");
    LetItAge();
    const struct stat before = Status();
    ASSERT_EQ(ReadOnce(), "1");
    home.Write("other", DataFile("Thing", {{"Key", "2"}}));
    const timespec times[2] = {before.st_mtim, before.st_mtim};
    ASSERT_EQ(utimensat(AT_FDCWD, home.Path("other").c_str(), times, 0), 0);
    ASSERT_EQ(rename(home.Path("other").c_str(), File().c_str()), 0);
    EXPECT_EQ(ReadOnce(), "2");
}

// Two files that take each other's place, as often as a clock's tick is passed.
TEST_F(KeptKeywordsTest, EveryOneOfManyReplacementsIsSeen) {
    for (int i = 0; i < 300; ++i) {
        const std::string value = std::to_string(100 + i);
        home.Write("other", DataFile("Thing", {{"Key", value}}));
        ASSERT_EQ(rename(home.Path("other").c_str(), File().c_str()), 0);
        ASSERT_EQ(ReadOnce(), value);
        if (i % 50 == 0) LetItAge();
        ASSERT_EQ(ReadOnce(), value);
    }
}

TEST_F(KeptKeywordsTest, RemovedAndSpoiledFilesAreSeen) {
    Write("1");
    LetItAge();
    ASSERT_EQ(ReadOnce(), "1");
    home.Remove("oam/cfg/Obj0.xmo");
    EXPECT_EQ(ReadOnce(), "(none)");
    EXPECT_FALSE(IsKept());
    home.WriteDataFile("Obj0.xmo", "spoiled");
    EXPECT_EQ(ReadOnce(), "(refused)");
    Write("2");
    LetItAge();
    EXPECT_EQ(ReadOnce(), "2");
}

TEST_F(KeptKeywordsTest, ChangesThatWereDiscardedAreNotKept) {
    Write("1");
    LetItAge();
    ASSERT_EQ(ReadOnce(), "1");
    unsigned long handle;
    ASSERT_EQ(object.DbOpen(OAM_INTERNAL_CLIENT, &handle, kReadWrite), OAM_SUCCESS);
    EXPECT_FALSE(IsKept()) << "it is open";
    ASSERT_EQ(object.DbSetKeyword("Key", "changed"), OAM_SUCCESS);
    ASSERT_EQ(object.DbClose(handle, true), OAM_SUCCESS);
    EXPECT_FALSE(IsKept());
    EXPECT_EQ(ReadOnce(), "1");
}

TEST_F(KeptKeywordsTest, ChangesThatWereSavedAreRead) {
    Write("1");
    LetItAge();
    ASSERT_EQ(ReadOnce(), "1");
    unsigned long handle;
    ASSERT_EQ(object.DbOpen(OAM_INTERNAL_CLIENT, &handle, kReadWrite), OAM_SUCCESS);
    ASSERT_EQ(object.DbSetKeyword("Key", "  changed "), OAM_SUCCESS);
    ASSERT_EQ(object.DbClose(handle, false), OAM_SUCCESS);
    EXPECT_EQ(ReadOnce(), "changed") << "as the file's reader takes it";
}

TEST_F(KeptKeywordsTest, AreBoundedTogether) {
    const std::string value(2000, 'v');
    constexpr int kObjects = 12000;
    std::vector<std::unique_ptr<KOR_CMObject>> objects;
    home.WriteDataFile("Shared.xmo", DataFile("Thing", {{"A", value}, {"B", value}, {"C", value}}));
    LetItAge();
    for (int i = 0; i < kObjects; ++i) {
        objects.push_back(std::make_unique<KOR_CMObject>("Thing", "Shared.xmo"));
        unsigned long handle;
        ASSERT_EQ(objects.back()->DbOpen(OAM_INTERNAL_CLIENT, &handle, OAM_OPEN_READ), OAM_SUCCESS);
        ASSERT_EQ(objects.back()->DbClose(handle, false), OAM_SUCCESS);
        ASSERT_LE(keptKeywords().Bytes(), kMostKeptBytes);
    }
    EXPECT_GT(keptKeywords().Bytes(), kMostKeptBytes * 9 / 10);
    EXPECT_EQ(objects.front()->Kept()->object, nullptr) << "the one that was closed first";
    EXPECT_NE(objects.back()->Kept()->object, nullptr);
    objects.clear();
    EXPECT_EQ(keptKeywords().Bytes(), 0u);
}

}  // namespace
}  // namespace oam::test
