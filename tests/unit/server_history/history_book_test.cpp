#include "history/history_book.h"

#include <gtest/gtest.h>

#include "book_test.h"
#include "data_files.h"
#include "history/configuration_state.h"
#include "matchers.h"

namespace oam::server::test {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

class Book : public BookTest {};

TEST_F(Book, IsEmptyAtFirst) {
    EXPECT_EQ(book.Generations().oldest, 0u);
    EXPECT_EQ(book.Generations().newest, 0u);
    EXPECT_THAT(book.Known(), IsEmpty());
    EXPECT_EQ(book.LastBytes("A"), "");
}

TEST_F(Book, CountsGenerationsByCommits) {
    EXPECT_EQ(Write({Created("A"), Created("B")}), 1u);
    EXPECT_EQ(Write({Changed("A", "1")}), 2u);
    EXPECT_EQ(Write({}), 0u);
    EXPECT_EQ(Write({Deleted("B")}), 3u);
    EXPECT_EQ(book.Generations().newest, 3u);
}

TEST_F(Book, GivesEachOfSeveralCommitsItsGeneration) {
    std::vector<Commit> commits(3);
    commits[0].changes = {Created("A")};
    commits[2].changes = {Created("B")};
    book.Write(&commits, {});
    EXPECT_EQ(commits[0].generation, 1u);
    EXPECT_EQ(commits[1].generation, 0u);
    EXPECT_EQ(commits[2].generation, 2u);
}

TEST_F(Book, KnowsTheObjectsThatThereAre) {
    Write({Created("A"), Created("B")});
    Write({Changed("b", "1")});
    Write({Deleted("A")});
    const auto known = book.Known();
    ASSERT_EQ(known.size(), 1u);
    EXPECT_EQ(known.at("b").name, "b");
    EXPECT_EQ(known.at("b").file, "b.xmo");
    EXPECT_EQ(known.at("b").generation, 2u);
    EXPECT_EQ(book.LastBytes("B"), BoardFile("b", {{"Number", "1"}}));
    EXPECT_EQ(book.LastBytes("A"), "");
}

TEST_F(Book, FollowsANewName) {
    Write({Created("A")});
    ObjectChange renamed = Changed("B", "1");
    renamed.previous = "A";
    Write({renamed});
    const auto known = book.Known();
    ASSERT_EQ(known.size(), 1u);
    EXPECT_EQ(known.at("b").name, "B");
    EXPECT_FALSE(ReadVersion(database, "A", 2));
    EXPECT_TRUE(ReadVersion(database, "A", 1));
}

TEST_F(Book, FollowsANewFileWithoutAGeneration) {
    Write({Created("A")});
    std::vector<Commit> none;
    book.Write(&none, {{"a", "Obj9.xmo"}});
    EXPECT_EQ(book.Known().at("a").file, "Obj9.xmo");
    EXPECT_EQ(book.Generations().newest, 1u);
}

TEST_F(Book, KeepsAnyBytes) {
    std::string bytes;
    for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
    ObjectChange strange = Created("A");
    strange.object = "\xff\x01'\"--";
    strange.file = "\xfe.xmo";
    strange.bytes = bytes;
    strange.changes = {{bytes, bytes, ""}};
    Write({strange}, {bytes, "change", bytes});
    const auto known = book.Known();
    ASSERT_EQ(known.size(), 1u);
    EXPECT_EQ(known.begin()->second.name, strange.object);
    EXPECT_EQ(known.begin()->second.file, strange.file);
    EXPECT_EQ(book.LastBytes(strange.object), bytes);
    const auto entries = List({});
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].occasion.user, bytes);
    EXPECT_EQ(entries[0].occasion.operation, bytes);
    EXPECT_THAT(entries[0].changes, ElementsAre(test::Changed(bytes, bytes, "")));
}

TEST_F(Book, RecordsWhatWasPutBackWithoutANewVersion) {
    Write({Created("A")});
    std::vector<Commit> commits(1);
    commits[0] = {{"service", "restore", ""}, {}, {"A"}, 0};
    book.Write(&commits, {});
    EXPECT_EQ(commits[0].generation, 2u);
    EXPECT_EQ(book.Known().at("a").generation, 1u);
    const auto entries = List({});
    EXPECT_EQ(entries[0].occasion.action, "restore");
    EXPECT_EQ(entries[0].object, "A");
    EXPECT_THAT(entries[0].changes, IsEmpty());
}

TEST_F(Book, WritesAllOrNothing) {
    std::vector<Commit> commits(2);
    commits[0].changes = {Created("A")};
    commits[1].changes = {Created("B")};
    database.Run(
        "CREATE TEMP TRIGGER refuse BEFORE INSERT ON history_objects"
        " WHEN new.object_key = CAST('b' AS BLOB)"
        " BEGIN SELECT RAISE(ABORT, 'the disk is full'); END");
    EXPECT_THROW(book.Write(&commits, {}), StoreError);
    EXPECT_THAT(book.Known(), IsEmpty());
    EXPECT_EQ(book.Generations().newest, 0u);
    database.Run("DROP TRIGGER refuse");
    book.Write(&commits, {});
    EXPECT_EQ(commits[1].generation, 2u);
}

TEST_F(Book, KeepsFacts) {
    EXPECT_EQ(book.Fact("start-up log"), "");
    book.Note("start-up log", "1 2 3");
    book.Note("start-up log", "4 5 6");
    EXPECT_EQ(book.Fact("start-up log"), "4 5 6");
    EXPECT_EQ(book.Fact("other"), "");
}

TEST_F(Book, TellsWhenAVersionWasRecorded) {
    const auto before = std::chrono::system_clock::now() - std::chrono::milliseconds(1);
    Write({Created("A")});
    EXPECT_GE(book.LastTime(book.Known().at("a")), before);
    EXPECT_LE(book.LastTime(book.Known().at("a")), std::chrono::system_clock::now());
}

TEST_F(Book, ForgetsAllButTheNewestGenerations) {
    Write({Created("A"), Created("B"), Created("C")});  // 1
    Write({Changed("A", "2")});
    Write({Deleted("B")});
    Write({Changed("A", "4")});
    Write({Created("B")});
    std::map<Generation, std::vector<std::string>> before;
    for (Generation g = 3; g <= 5; ++g) before[g] = State(g);
    book.Forget(3);
    EXPECT_EQ(book.Generations().oldest, 3u);
    EXPECT_EQ(book.Generations().newest, 5u);
    for (Generation g = 3; g <= 5; ++g) EXPECT_EQ(State(g), before[g]) << g;
    EXPECT_EQ(List({}).back().generation, 3u);
    EXPECT_THAT(Rows("SELECT count(*) FROM history_values WHERE entry NOT IN"
                     " (SELECT entry FROM history_entries)"),
                0);
    // C of generation 1, A of 2 and 4, B of 5; what B and A were before is gone.
    EXPECT_EQ(Rows("SELECT count(*) FROM history_versions"), 5);
    EXPECT_EQ(book.LastBytes("C"), BoardFile("C"));
    EXPECT_EQ(Write({Changed("C", "6")}), 6u);
}

TEST_F(Book, ForgetsNothingThatItIsToKeep) {
    Write({Created("A")});
    Write({Changed("A", "2")});
    book.Forget(2);
    book.Forget(100);
    book.Forget(0);
    EXPECT_EQ(book.Generations().oldest, 0u);
    EXPECT_EQ(Rows("SELECT count(*) FROM history_versions"), 2);
}

}  // namespace oam::server::test
