#include "history/configuration_watch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "data_files.h"
#include "failure.h"

namespace oam::server::test {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
using Condition = FoundFile::Condition;

class Watch : public ::testing::Test {
  protected:
    ConfigurationWatch::News Look() {
        auto news = watch.Look();
        EXPECT_TRUE(news);
        return news ? *news : ConfigurationWatch::News();
    }
    std::vector<std::string> Found() {
        std::vector<std::string> names;
        for (const FoundFile& file : Look().found) names.push_back(file.name);
        return names;
    }
    // Everything that is there is known, and a change would show.
    void Settle() {
        files.AwaitSettled();
        (void)watch.Look();
    }
    std::size_t Reads() const { return watch.Done().reads; }

    oam::test::Installation home;
    DataFiles files{home};
    ConfigurationWatch watch{files.Directory()};
};

}  // namespace

TEST_F(Watch, FindsEverythingAtItsFirstLook) {
    files.CommitBoard("Obj0.xmo", "Board 1");
    files.CommitBoard("Obj1.XMO", "Board 2");
    home.WriteDataFile("Obj2.bak", "rubbish");
    home.WriteDataFile("Obj3.xmo.saving", "rubbish");
    const auto news = Look();
    ASSERT_EQ(news.found.size(), 2u);
    EXPECT_EQ(news.found[0].name, "Obj0.xmo");
    EXPECT_EQ(news.found[0].condition, Condition::kObject);
    EXPECT_EQ(news.found[0].bytes, BoardFile("Board 1"));
    ASSERT_TRUE(news.found[0].object);
    EXPECT_EQ(news.found[0].object->name, "Board 1");
    EXPECT_EQ(news.found[1].name, "Obj1.XMO");
    EXPECT_THAT(news.gone, IsEmpty());
}

TEST_F(Watch, FindsNothingInAnUnchangedDirectory) {
    files.CommitBoard("Obj0.xmo", "Board 1");
    Settle();
    EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(Watch, FindsWhatWasCommitted) {
    files.CommitBoard("Obj0.xmo", "Board 1");
    files.CommitBoard("Obj1.xmo", "Board 2");
    Settle();
    files.CommitBoard("Obj1.xmo", "Board 2", {{"Number", "7"}});
    files.CommitBoard("Obj2.xmo", "Board 3");
    EXPECT_THAT(Found(), ElementsAre("Obj1.xmo", "Obj2.xmo"));
}

TEST_F(Watch, FindsWhatIsGone) {
    files.CommitBoard("Obj0.xmo", "Board 1");
    Settle();
    files.Delete("Obj0.xmo");
    EXPECT_THAT(Look().gone, ElementsAre("Obj0.xmo"));
    EXPECT_THAT(Look().gone, IsEmpty());
}

TEST_F(Watch, MissesNoCommitHoweverFastTheyCome) {
    // Of the same length, and within one tick of the file system's clock.
    for (int i = 0; i < 300; ++i) {
        const std::string bytes = BoardFile("Board 1", {{"Number", std::to_string(1000 + i)}});
        files.Commit("Obj0.xmo", bytes);
        const auto news = Look();
        ASSERT_EQ(news.found.size(), 1u) << i;
        ASSERT_EQ(news.found[0].bytes, bytes) << i;
    }
}

TEST_F(Watch, FindsAChangeInPlaceWhenItLooksCloser) {
    files.CommitBoard("Obj0.xmo", "Board 1");
    Settle();
    home.WriteDataFile("Obj0.xmo", BoardFile("Board 1", {{"Number", "7"}}));
    EXPECT_THAT(Found(), IsEmpty());
    watch.LookCloser();
    EXPECT_THAT(Found(), ElementsAre("Obj0.xmo"));
}

TEST_F(Watch, LooksBehindLinksEachTime) {
    // The service writes into what a link leads to; the directory does not change.
    home.Write("elsewhere", BoardFile("Board 1"));
    fs::create_symlink(home.Path("elsewhere"), files.Path("Obj0.xmo"));
    Settle();
    EXPECT_THAT(Found(), IsEmpty());
    home.Write("elsewhere", BoardFile("Board 1", {{"Number", "7"}}));
    EXPECT_THAT(Found(), ElementsAre("Obj0.xmo"));
}

TEST_F(Watch, TellsWhyAFileHoldsNoObject) {
    files.Commit("Obj0.xmo", "");
    files.Commit("Obj1.xmo", BoardFile("Board 1").substr(0, 90));
    files.Commit("Obj2.xmo", BoardFile("Board 1") + '\0');
    home.MakeDirectory("oam/cfg/Obj3.xmo");
    ASSERT_EQ(mkfifo(files.Path("Obj4.xmo").c_str(), 0666), 0);
    fs::create_symlink("nowhere", files.Path("Obj5.xmo"));
    fs::create_symlink("Obj6.xmo", files.Path("Obj6.xmo"));
    const auto news = Look();
    std::vector<std::string> reasons;
    for (const FoundFile& file : news.found) {
        EXPECT_EQ(file.condition, Condition::kSpoiled) << file.name;
        EXPECT_FALSE(file.object);
        reasons.push_back(file.why);
    }
    EXPECT_THAT(
        reasons,
        ElementsAre("Obj0.xmo:1:1: no keyword in the file has a value", HasSubstr("Obj1.xmo:"),
                    HasSubstr("Obj2.xmo:"), "\"Obj3.xmo\": it is not a regular file",
                    "\"Obj4.xmo\": it is not a regular file",
                    "\"Obj5.xmo\": No such file or directory", HasSubstr("\"Obj6.xmo\": ")));
}

TEST_F(Watch, TellsAFileThatCannotBeReadNowFromOneThatIsSpoiled) {
    if (geteuid() == 0) {
        // Root reads everything; a file beyond the limit is out of reach for everyone.
        files.CommitBoard("Obj0.xmo", "Board 1");
        fs::resize_file(files.Path("Obj0.xmo"), (std::uintmax_t{64} << 20) + 1);
    } else {
        files.CommitBoard("Obj0.xmo", "Board 1");
        ASSERT_EQ(chmod(files.Path("Obj0.xmo").c_str(), 0), 0);
    }
    files.AwaitSettled();
    // It may be in reach at any time, so it is news each time.
    for (int i = 0; i < 2; ++i) {
        const auto news = Look();
        ASSERT_EQ(news.found.size(), 1u);
        EXPECT_EQ(news.found[0].condition, Condition::kOutOfReach);
    }
}

TEST_F(Watch, SeesNothingWhileAnImportIsUnderWay) {
    files.CommitBoard("Obj0.xmo", "Board 1");
    Settle();
    home.MakeDirectory("oam/cfg/import-aside");
    fs::rename(files.Path("Obj0.xmo"), files.Path("import-aside/Obj0.xmo"));
    files.CommitBoard("Obj1.xmo", "Board 2");
    EXPECT_FALSE(watch.Look());
    EXPECT_FALSE(watch.Look());
    fs::remove_all(files.Path("import-aside"));
    const auto news = Look();
    ASSERT_EQ(news.found.size(), 1u);
    EXPECT_EQ(news.found[0].name, "Obj1.xmo");
    EXPECT_THAT(news.gone, ElementsAre("Obj0.xmo"));
}

TEST_F(Watch, SeesWhatWasBeforeAfterAnImportThatWasUndone) {
    files.CommitBoard("Obj0.xmo", "Board 1");
    Settle();
    home.MakeDirectory("oam/cfg/import-aside");
    fs::rename(files.Path("Obj0.xmo"), files.Path("import-aside/Obj0.xmo"));
    files.CommitBoard("Obj1.xmo", "Board 2");
    EXPECT_FALSE(watch.Look());
    files.Delete("Obj1.xmo");
    fs::rename(files.Path("import-aside/Obj0.xmo"), files.Path("Obj0.xmo"));
    fs::remove(files.Path("import-aside"));
    const auto news = Look();
    ASSERT_EQ(news.found.size(), 1u);
    EXPECT_EQ(news.found[0].name, "Obj0.xmo");
    // Seen in between, and gone.
    EXPECT_THAT(news.gone, ElementsAre("Obj1.xmo"));
}

TEST_F(Watch, TakesTheRestOfAnImportForNothing) {
    home.MakeDirectory("oam/cfg/import-aside.old");
    home.MakeDirectory("oam/cfg/import-aside.new");
    home.MakeDirectory("oam/cfg/import-refused");
    files.CommitBoard("import-refused/Obj0.xmo", "Board 1");
    EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(Watch, BeginsAnewWhenItIsTold) {
    files.CommitBoard("Obj0.xmo", "Board 1");
    Settle();
    watch.StartOver();
    EXPECT_THAT(Found(), ElementsAre("Obj0.xmo"));
}

TEST_F(Watch, CannotLookWhereThereIsNoDirectory) {
    home.Remove("oam/cfg");
    EXPECT_THROW(watch.Look(), Failure);
    home.MakeDirectory("oam/cfg");
    files.CommitBoard("Obj0.xmo", "Board 1");
    EXPECT_THAT(Found(), ElementsAre("Obj0.xmo"));
}

TEST_F(Watch, ReadsTheChangedFileOnly) {
    for (int i = 0; i < 20; ++i)
        files.CommitBoard("Obj" + std::to_string(i) + ".xmo", "Board " + std::to_string(i));
    Settle();
    Settle();
    const std::size_t before = Reads();
    files.CommitBoard("Obj7.xmo", "Board 7", {{"Number", "7"}});
    EXPECT_THAT(Found(), ElementsAre("Obj7.xmo"));
    EXPECT_EQ(Reads(), before + 1);
}

}  // namespace oam::server::test
