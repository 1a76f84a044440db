#include "store/database.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <thread>

#include "support/installation.h"

namespace oam::server {
namespace {

using test::Installation;
using test::Layout;
using testing::HasSubstr;

template <class Action>
std::string failureOf(const Action& action) {
    try {
        action();
    } catch (const StoreError& error) {
        return error.what();
    }
    return "no failure";
}

std::string textOf(Database& database, const char* sql) {
    Statement statement(database, sql);
    return statement.Step() ? statement.Bytes(0) : "no row";
}

std::int64_t numberOf(Database& database, const char* sql) {
    Statement statement(database, sql);
    return statement.Step() ? statement.Number(0) : -1;
}

class BookFile : public testing::Test {
  protected:
    Installation place_{Layout::kBare};
    const std::string path_ = place_.Path("oamd.db");
};

class OpenBook : public BookFile {
  protected:
    OpenBook() { database_.Run("CREATE TABLE things (name BLOB PRIMARY KEY, size INTEGER)"); }
    std::int64_t Things() { return numberOf(database_, "SELECT count(*) FROM things"); }

    Database database_{path_};
};

TEST_F(BookFile, IsMadeWhenThereIsNone) {
    std::string setAside = "?";
    { Database database(path_, &setAside); }
    EXPECT_TRUE(place_.Exists("oamd.db"));
    EXPECT_EQ(setAside, "?") << "nothing was set aside";
}

TEST_F(BookFile, KeepsWhatWasWritten) {
    {
        Database database(path_);
        database.Run("CREATE TABLE things (name BLOB)");
        Statement(database, "INSERT INTO things VALUES (?)").Bind(1, "kept").Run();
    }
    Database database(path_);
    EXPECT_EQ(textOf(database, "SELECT name FROM things"), "kept");
}

TEST_F(BookFile, WritesAheadAndSyncsEveryCommit) {
    Database database(path_);
    EXPECT_EQ(textOf(database, "PRAGMA journal_mode"), "wal");
    EXPECT_EQ(numberOf(database, "PRAGMA synchronous"), 2);
}

TEST_F(BookFile, WhatCannotBeOpenedIsAnErrorWithItsNameAndReason) {
    const std::string path = place_.Path("none/oamd.db");
    EXPECT_THAT(failureOf([&] { Database database(path); }),
                testing::AllOf(HasSubstr('"' + path + '"'), HasSubstr("No such file")));
    place_.MakeDirectory("oamd.db");
    EXPECT_THAT(failureOf([&] { Database database(path_); }), HasSubstr("unable to open"));
}

TEST_F(BookFile, ManyThreadsOpenItAtOnce) {
    constexpr int kThreads = 8;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([&] {
            for (int turn = 0; turn < 5; ++turn)
                EXPECT_EQ(failureOf([&] { Database database(path_); }), "no failure");
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(place_.List("."), (std::vector<std::string>{"oamd.db", "shm"}));
}

TEST_F(OpenBook, BytesComeBackAsTheyWere) {
    const std::string bytes("a\0\xff'\n", 5);
    Statement insert(database_, "INSERT INTO things VALUES (?, ?)");
    insert.Bind(1, bytes).Bind(2, std::int64_t{-7}).Run();
    insert.Bind(1, "").BindNull(2).Run();

    Statement rows(database_, "SELECT name, size, typeof(name) FROM things ORDER BY name");
    ASSERT_TRUE(rows.Step());
    EXPECT_EQ(rows.Bytes(0), "");
    EXPECT_FALSE(rows.IsNull(0)) << "an empty text is not NULL";
    EXPECT_TRUE(rows.IsNull(1));
    ASSERT_TRUE(rows.Step());
    EXPECT_EQ(rows.Bytes(0), bytes);
    EXPECT_EQ(rows.Number(1), -7);
    EXPECT_EQ(rows.Bytes(2), "blob");
    EXPECT_FALSE(rows.Step());
    EXPECT_TRUE(rows.Step()) << "at its end it is ready for the next use";
}

TEST_F(OpenBook, AStatementIsReadyAgainAfterAnError) {
    Statement insert(database_, "INSERT INTO things VALUES (?, 1)");
    insert.Bind(1, "one").Run();
    EXPECT_THAT(failureOf([&] { insert.Run(); }), HasSubstr("UNIQUE"));
    insert.Bind(1, "two").Run();
    EXPECT_EQ(Things(), 2);
}

TEST_F(OpenBook, WhatIsNoSqlIsAnError) {
    EXPECT_THAT(failureOf([&] { database_.Run("INSERT NONSENSE"); }), HasSubstr("syntax error"));
    EXPECT_THAT(failureOf([&] { Statement(database_, "SELECT ?").Bind(2, "x"); }),
                HasSubstr(path_));
}

TEST_F(OpenBook, CountsWhatAStatementChanged) {
    database_.Run("INSERT INTO things VALUES ('a', 1), ('b', 2), ('c', 2)");
    EXPECT_EQ(database_.Changes(), 3);
    database_.Run("DELETE FROM things WHERE size = 2");
    EXPECT_EQ(database_.Changes(), 2);
    database_.Run("DELETE FROM things WHERE size = 2");
    EXPECT_EQ(database_.Changes(), 0);
}

TEST_F(OpenBook, ATransactionIsRolledBackUnlessCommitted) {
    {
        Database::Transaction transaction(database_);
        database_.Run("INSERT INTO things VALUES ('lost', 1)");
    }
    EXPECT_EQ(Things(), 0);
    {
        Database::Transaction transaction(database_);
        database_.Run("INSERT INTO things VALUES ('kept', 1)");
        transaction.Commit();
    }
    EXPECT_EQ(Things(), 1);
}

TEST_F(OpenBook, AReaderSeesTheBookAsItWasWhenItBegan) {
    Database reader(path_);
    {
        const Database::Transaction transaction(reader, Database::Purpose::kRead);
        EXPECT_EQ(numberOf(reader, "SELECT count(*) FROM things"), 0);
        database_.Run("INSERT INTO things VALUES ('new', 1)");
        EXPECT_EQ(numberOf(reader, "SELECT count(*) FROM things"), 0);
    }
    EXPECT_EQ(numberOf(reader, "SELECT count(*) FROM things"), 1);
}

TEST_F(OpenBook, AWriterWaitsForAnother) {
    std::optional<Database::Transaction> first(std::in_place, database_);
    std::thread second([&] {
        Database other(path_);
        Database::Transaction transaction(other);
        other.Run("INSERT INTO things VALUES ('second', 1)");
        transaction.Commit();
    });
    database_.Run("INSERT INTO things VALUES ('first', 1)");
    first->Commit();
    first.reset();
    second.join();
    EXPECT_EQ(Things(), 2);
}

TEST_F(OpenBook, AWriterDoesNotWaitForEver) {
    const Database::Transaction first(database_);
    Database other(path_);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_THAT(failureOf([&] { Database::Transaction second(other); }), HasSubstr("locked"));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(900));
}

TEST_F(OpenBook, AFileThatWasDeletedIsAnErrorAndNoHole) {
    database_.Run("INSERT INTO things VALUES ('before', 1)");
    place_.Remove("oamd.db");
    EXPECT_THAT(failureOf([&] { database_.Run("INSERT INTO things VALUES ('lost', 1)"); }),
                HasSubstr("moved or deleted"));
    EXPECT_THAT(failureOf([&] { Database::Transaction transaction(database_); }),
                HasSubstr("moved or deleted"));
}

}  // namespace
}  // namespace oam::server
