#include "history/history.h"

#include <atomic>
#include <filesystem>
#include <thread>

#include "failure.h"
#include "history/configuration_export.h"
#include "history_fixture.h"
#include "transfer_file.h"

namespace oam::server::test {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Histories : public HistoryTest {
  protected:
    // Board 1 and Board 2 are in the book as they lay there at the first start.
    void Begin() {
        files.CommitBoard("Obj0.xmo", "Board 1", {{"Number", "1"}});
        files.CommitBoard("Obj1.xmo", "Board 2", {{"Number", "2"}});
        ASSERT_THAT(history->RestoreSpoiled(), IsEmpty());
    }
};

TEST_F(Histories, BeginWithWhatLiesThere) {
    Begin();
    EXPECT_THAT(Entries(), ElementsAre("1 (found at start) start: Board 2",
                                       "1 (found at start) start: Board 1"));
    EXPECT_EQ(history->Generations().newest, 1u);
    EXPECT_THAT(Objects(1), ElementsAre("Board 1", "Board 2"));
}

TEST_F(Histories, BeginWithWhatLiesThereWhoeverComesFirst) {
    files.CommitBoard("Obj0.xmo", "Board 1");
    EXPECT_EQ(Record("ann", "change"), 1u);
    EXPECT_THAT(Entries(), ElementsAre("1 (found at start) start: Board 1"));
}

TEST_F(Histories, RecordACommit) {
    Begin();
    files.CommitBoard("Obj0.xmo", "Board 1", {{"Number", "7"}});
    EXPECT_EQ(history->Record("ann", "change", "3-17"), 2u);
    const auto entries = history->List({.limit = 1});
    EXPECT_EQ(entries[0].occasion.user, "ann");
    EXPECT_EQ(entries[0].occasion.action, "change");
    EXPECT_EQ(entries[0].occasion.operation, "3-17");
    EXPECT_THAT(entries[0].changes, ElementsAre(Changed("Number", "1", "7")));
}

TEST_F(Histories, RecordNothingWhenNothingChanged) {
    Begin();
    EXPECT_EQ(Record(), 0u);
    files.CommitBoard("Obj0.xmo", "Board 1", {{"Number", "1"}});
    EXPECT_EQ(Record(), 0u);
    EXPECT_EQ(history->RecordUnannounced(), 0u);
    EXPECT_EQ(history->Generations().newest, 1u);
}

TEST_F(Histories, RecordSeveralObjectsAsOneGeneration) {
    Begin();
    files.CommitBoard("Obj0.xmo", "Board 1", {{"Number", "7"}});
    files.Delete("Obj1.xmo");
    files.CommitBoard("Obj2.xmo", "Board 3");
    EXPECT_EQ(Record("ann", "import"), 2u);
    EXPECT_THAT(Entries({.limit = 3}), ElementsAre("2 ann import: Board 3", "2 ann import: Board 2",
                                                   "2 ann import: Board 1"));
    EXPECT_THAT(Objects(2), ElementsAre("Board 1", "Board 3"));
}

TEST_F(Histories, GiveTheServiceWhatNobodyAnnounced) {
    Begin();
    files.CommitBoard("Obj0.xmo", "Board 1", {{"Number", "7"}});
    files.Delete("Obj1.xmo");
    files.CommitBoard("Obj2.xmo", "Board 3");
    EXPECT_EQ(history->RecordUnannounced(), 2u);
    EXPECT_THAT(Entries({.limit = 3}),
                ElementsAre("2 service create: Board 3", "2 service delete: Board 2",
                            "2 service change: Board 1"));
}

TEST_F(Histories, KnowWhoseChangeItIsWhoeverLooksFirst) {
    Begin();
    History::Announcement first(*history, {"ann", "change", "1"}, "board 1");
    History::Announcement second(*history, {"bob", "change", "2"}, "Board 2");
    files.CommitBoard("Obj0.xmo", "Board 1", {{"Number", "7"}});
    files.CommitBoard("Obj1.xmo", "Board 2", {{"Number", "8"}});
    EXPECT_EQ(second.Record(), 3u);
    EXPECT_EQ(first.Record(), 2u);
    EXPECT_THAT(Entries({.limit = 2}),
                ElementsAre("3 bob change: Board 2", "2 ann change: Board 1"));
}

TEST_F(Histories, GiveNobodyTheChangeOfAnotherObject) {
    Begin();
    files.CommitBoard("Obj0.xmo", "Board 1", {{"Number", "7"}});
    {
        History::Announcement bob(*history, {"bob", "change", ""}, "Board 2");
        EXPECT_EQ(bob.Record(), 0u);
    }
    EXPECT_THAT(Entries({.limit = 1}), ElementsAre("2 service change: Board 1"));
    // An announcement that has ended announces nothing.
    files.CommitBoard("Obj1.xmo", "Board 2", {{"Number", "8"}});
    EXPECT_EQ(history->RecordUnannounced(), 3u);
}

TEST_F(Histories, FollowARenamedObject) {
    Begin();
    History::Announcement ann(*history, {"ann", "change", ""}, "Board 1");
    files.CommitBoard("Obj0.xmo", "Left", {{"Number", "1"}});
    EXPECT_EQ(ann.Record(), 2u);
    const auto entries = history->List({.object = "Board 1", .limit = 1});
    EXPECT_EQ(entries.at(0).object, "Left");
    EXPECT_THAT(entries[0].changes, ElementsAre(Changed("Name", "Board 1", "Left")));
    EXPECT_THAT(Objects(2), ElementsAre("Board 2", "Left"));
    EXPECT_THAT(TextsOf(history->Compare(1, 2)), ElementsAre("deleted Board 1", "created Left"));
}

TEST_F(Histories, SeeHandEditsWhenTheyLookClosely) {
    Begin();
    files.AwaitSettled();
    EXPECT_EQ(history->RecordUnannounced(), 0u);
    home.WriteDataFile("Obj0.xmo", BoardFile("Board 1", {{"Number", "7"}}));
    EXPECT_EQ(history->RecordUnannounced(), 0u);
    EXPECT_EQ(history->RecordUnannounced(true), 2u);
}

TEST_F(Histories, RecordHandEditsAtAStart) {
    Begin();
    home.WriteDataFile("Obj0.xmo", BoardFile("Board 1", {{"Number", "7"}}));
    files.CommitBoard("Obj5.xmo", "Board 5");
    Reopen();
    EXPECT_THAT(history->RestoreSpoiled(), IsEmpty());
    EXPECT_THAT(Entries({.limit = 2}), ElementsAre("2 (found at start) start: Board 5",
                                                   "2 (found at start) start: Board 1"));
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), BoardFile("Board 1", {{"Number", "7"}}));
}

TEST_F(Histories, GoOnOverStarts) {
    Begin();
    Reopen();
    EXPECT_THAT(history->RestoreSpoiled(), IsEmpty());
    EXPECT_EQ(history->Generations().newest, 1u);
    files.CommitBoard("Obj0.xmo", "Board 1", {{"Number", "7"}});
    EXPECT_EQ(Record(), 2u);
    EXPECT_THAT(Objects(1), ElementsAre("Board 1", "Board 2"));
}

TEST_F(Histories, KeepFilesOfAnyBytes) {
    std::string value;
    for (int c = 1; c < 256; ++c)
        if (c != '<' && c != '>') value += static_cast<char>(c);
    const std::string bytes =
        "<!any>\r\n<OA&M Configuration ver. 1.0 - Object>\t<\xff\xfe><Name>\xff\xfe</Name>"
        "<K>x" +
        value + "x</></\xff\xfe></OA&M Configuration ver. 1.0 - Object>";
    files.Commit("Obj0.xmo", bytes);
    EXPECT_EQ(Record(), 1u);
    const auto state = history->State(1);
    ASSERT_EQ(state.size(), 1u);
    EXPECT_EQ(state[0].object, "\xff\xfe");
    EXPECT_EQ(state[0].bytes, bytes);
    EXPECT_THAT(history->List({})[0].changes,
                ElementsAre(Changed("K", std::nullopt, 'x' + value + 'x'),
                            Changed("Name", std::nullopt, "\xff\xfe")));
}

TEST_F(Histories, RecordNoSpoiledFile) {
    Begin();
    files.Commit("Obj0.xmo", "");
    files.Commit("Obj9.xmo", "rubbish");
    EXPECT_EQ(Record(), 0u);
    EXPECT_THAT(history->Unreadable(),
                ElementsAre("Obj0.xmo:1:1: no keyword in the file has a value",
                            HasSubstr("Obj9.xmo:1:1: ")));
    EXPECT_THAT(Objects(0), IsEmpty());
    EXPECT_EQ(history->Generations().newest, 1u);
    files.CommitBoard("Obj0.xmo", "Board 1", {{"Number", "7"}});
    EXPECT_EQ(Record(), 2u);
    EXPECT_THAT(history->Unreadable(), ElementsAre(HasSubstr("Obj9.xmo")));
}

TEST_F(Histories, RecordNothingInTheMiddleOfAnImport) {
    Begin();
    History::Announcement ann(*history, {"ann", "import", ""});
    home.MakeDirectory("oam/cfg/import-aside");
    files.Delete("Obj0.xmo");
    files.Delete("Obj1.xmo");
    EXPECT_EQ(history->RecordUnannounced(), 0u);
    files.CommitBoard("Obj0.xmo", "Board 2", {{"Number", "2"}});
    EXPECT_EQ(history->RecordUnannounced(), 0u);
    fs::remove(files.Path("import-aside"));
    EXPECT_EQ(ann.Record(), 2u);
    // Board 2 is what it was, in another file.
    EXPECT_THAT(Entries({.beforeGeneration = 3, .limit = 10}),
                ElementsAre("2 ann import: Board 1", "1 (found at start) start: Board 2",
                            "1 (found at start) start: Board 1"));
    EXPECT_THAT(TextsOf(history->Compare(1, 0)), ElementsAre("deleted Board 1"));
}

TEST_F(Histories, CompareAGenerationWithNow) {
    Begin();
    files.CommitBoard("Obj0.xmo", "Board 1", {{"Number", "7"}});
    files.CommitBoard("Obj2.xmo", "Board 3");
    Record();
    EXPECT_THAT(TextsOf(history->Compare(1, 0)), ElementsAre("changed Board 1", "created Board 3"));
    EXPECT_THAT(TextsOf(history->Compare(2, 1)), ElementsAre("changed Board 1", "deleted Board 3"));
    EXPECT_THAT(TextsOf(history->Compare(1, 2, "board 3")), ElementsAre("created Board 3"));
    EXPECT_THAT(history->Compare(2, 0), IsEmpty());
}

TEST_F(Histories, TakeOneObjectBack) {
    Begin();
    files.CommitBoard("Obj0.xmo", "Board 1", {{"Number", "7"}, {"Number?Type", "Integer"}});
    Record();
    const auto rollback = history->RollBack("BOARD 1", 1);
    ASSERT_EQ(rollback.assignments.size(), 1u);
    EXPECT_EQ(rollback.assignments[0].keyword, "Number");
    EXPECT_EQ(rollback.assignments[0].value, "1");
    EXPECT_THAT(rollback.others, ElementsAre(Changed("Number?Type", "Integer", std::nullopt)));
    EXPECT_THAT(history->RollBack("Board 2", 1).assignments, IsEmpty());
}

TEST_F(Histories, CannotTakeBackAnObjectThatIsNotThere) {
    Begin();
    files.CommitBoard("Obj2.xmo", "Board 3");
    files.Delete("Obj0.xmo");
    Record();
    EXPECT_THROW(history->RollBack("Board 3", 1), Failure);
    EXPECT_THROW(history->RollBack("Board 1", 1), Failure);
    EXPECT_THROW(history->RollBack("Board 9", 1), Failure);
}

TEST_F(Histories, RefuseGenerationsThatTheyDoNotKnow) {
    Begin();
    EXPECT_THROW(history->State(2), Failure);
    EXPECT_THROW(history->Compare(2, 1), Failure);
    EXPECT_THROW(history->Compare(1, 2), Failure);
    EXPECT_THROW(history->RollBack("Board 1", 2), Failure);
    for (const char* number : {"5", "6", "7"}) {
        files.CommitBoard("Obj0.xmo", "Board 1", {{"Number", number}});
        Record();
    }
    history->Forget(2);
    EXPECT_THROW(history->State(2), Failure);
    EXPECT_THAT(Objects(3), ElementsAre("Board 1", "Board 2"));
    EXPECT_THROW(history->State(0), Failure);
}

TEST_F(Histories, WriteAnyStateAsAnImportFile) {
    Begin();
    files.CommitBoard("Obj0.xmo", "Board 1", {{"Number", "7"}});
    files.Delete("Obj1.xmo");
    Record();
    home.Write("state", ExportText(history->State(1)));
    const auto judged = JudgeTransferFile(home.Path("state"), [](auto&&) { return true; });
    EXPECT_THAT(judged.findings, IsEmpty());
    EXPECT_EQ(judged.objects, 2u);
}

TEST_F(Histories, CanBeAskedAndWrittenOnManyThreads) {
    Begin();
    constexpr int kThreads = 4;
    constexpr int kCommits = 15;
    std::atomic<int> recorded{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([&, i] {
            const std::string name = "T" + std::to_string(i);
            for (int n = 0; n < kCommits; ++n) {
                History::Announcement one(*history, {name, "change", ""}, name);
                files.CommitBoard(name + ".xmo", name, {{"Number", std::to_string(n)}});
                recorded += one.Record() != 0;
                (void)history->List({.limit = 3});
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(recorded, kThreads * kCommits);
    for (const HistoryEntry& entry : history->List({.limit = 1000})) {
        if (entry.generation == 1) continue;
        EXPECT_EQ(entry.occasion.user, entry.object);
    }
}

}  // namespace oam::server::test
