// A book that cannot be read or written.
#include <sqlite3.h>

#include <filesystem>

#include "failure.h"
#include "history_fixture.h"

namespace oam::server::test {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class BrokenBook : public HistoryTest {
  protected:
    BrokenBook() {
        files.CommitBoard("Obj0.xmo", "Board 1", {{"Number", "1"}});
        (void)history->RestoreSpoiled();
    }
    void Change(const std::string& number) {
        files.CommitBoard("Obj0.xmo", "Board 1", {{"Number", number}});
    }
    // Somebody else writes for longer than the book waits.
    class Occupied {
      public:
        explicit Occupied(const std::string& path) {
            EXPECT_EQ(sqlite3_open(path.c_str(), &handle_), SQLITE_OK);
            EXPECT_EQ(sqlite3_exec(handle_, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr),
                      SQLITE_OK);
        }
        ~Occupied() { sqlite3_close(handle_); }

      private:
        sqlite3* handle_ = nullptr;
    };
};

TEST_F(BrokenBook, IsTheCallersToHandle) {
    Change("7");
    const Occupied occupied(BookPath());
    EXPECT_THROW(Record(), StoreError);
    EXPECT_THROW(history->RecordUnannounced(), StoreError);
}

TEST_F(BrokenBook, MissesNothingThatHappenedMeanwhile) {
    Change("7");
    {
        const Occupied occupied(BookPath());
        EXPECT_THROW(Record(), StoreError);
        files.CommitBoard("Obj1.xmo", "Board 2");
        EXPECT_THROW(Record(), StoreError);
    }
    EXPECT_EQ(Record("bob", "change"), 2u);
    EXPECT_THAT(Entries({.limit = 2}),
                ElementsAre("2 bob change: Board 2", "2 bob change: Board 1"));
}

TEST_F(BrokenBook, IsBegunAnewWhenItIsSpoiled) {
    history.reset();
    home.Write("oam/oamd.db", std::string(8192, 'x'));
    for (const char* beside : {"oam/oamd.db-wal", "oam/oamd.db-shm"}) home.Remove(beside);
    Reopen();
    Change("7");
    EXPECT_EQ(Record(), 1u);
    EXPECT_THAT(Entries(), ElementsAre("1 (found at start) start: Board 1"));
    EXPECT_THAT(complaints, ElementsAre(HasSubstr("oamd.db.spoiled-1")));
    EXPECT_EQ(home.Read("oam/oamd.db.spoiled-1"), std::string(8192, 'x'));
}

TEST_F(BrokenBook, IsBegunAnewWhenSomebodyTakesItAway) {
    files.CommitBoard("Obj1.xmo", "Board 2");
    EXPECT_EQ(Record(), 2u);
    files.AwaitSettled();
    EXPECT_EQ(Record(), 0u);
    for (const char* file : {"oam/oamd.db", "oam/oamd.db-wal", "oam/oamd.db-shm"})
        home.Remove(file);
    Change("7");
    EXPECT_THROW(Record(), StoreError);
    // What did not change since is unknown to the new book too.
    EXPECT_EQ(Record(), 1u);
    EXPECT_THAT(Entries(), ElementsAre("1 (found at start) start: Board 2",
                                       "1 (found at start) start: Board 1"));
    Change("8");
    EXPECT_EQ(Record(), 2u);
}

TEST_F(BrokenBook, StopsNoRestoring) {
    // It can be read, so files come back; that it cannot be written is said.
    files.Commit("Obj0.xmo", "");
    Reopen();
    (void)history->Generations();
    const Occupied occupied(BookPath());
    EXPECT_THAT(history->RestoreSpoiled(),
                ElementsAre(HasSubstr("\"Board 1\" is put back as of generation 1"),
                            HasSubstr("the history cannot be written: ")));
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), BoardFile("Board 1", {{"Number", "1"}}));
}

TEST_F(BrokenBook, TouchesNoFileWhenItCannotBeRead) {
    history.reset();
    fs::remove_all(BookPath());
    home.MakeDirectory("oam/oamd.db");
    files.Commit("Obj0.xmo", "");
    Reopen();
    EXPECT_THROW(history->RestoreSpoiled(), StoreError);
    EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Obj0.xmo"));
}

TEST_F(BrokenBook, RecordsLaterWhatWasPutBack) {
    files.Commit("Obj0.xmo", "");
    Reopen();
    (void)history->Generations();
    {
        const Occupied occupied(BookPath());
        (void)history->RestoreSpoiled();
    }
    EXPECT_EQ(Record(), 0u);
    EXPECT_THAT(Entries({.limit = 1}), ElementsAre("2 service restore: Board 1"));
}

TEST_F(BrokenBook, LooksAgainWhenTheDirectoryIsBack) {
    fs::rename(files.Directory(), home.Path("oam/away"));
    EXPECT_THROW(Record(), Failure);
    EXPECT_THROW(history->RestoreSpoiled(), Failure);
    fs::rename(home.Path("oam/away"), files.Directory());
    Change("7");
    EXPECT_EQ(Record(), 2u);
}

}  // namespace oam::server::test
