#include "operations/operation_store.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "alerts.h"
#include "daemon_parts.h"
#include "unit/sim/waiting.h"

namespace oam::server {
namespace {

using test::Installation;
using test::Layout;
using testing::IsEmpty;

class OperationsOnDisk : public testing::Test {
  protected:
    std::vector<OperationRecord> Load() {
        Database database(path_);
        return OperationStore::Load(database);
    }
    bool Write(OperationBook& book, std::size_t kept = 100) {
        BookConnection connection(path_, [](const std::string&) {});
        return OperationStore(book, kept).Write(connection);
    }

    Installation place_{Layout::kBare};
    const std::string path_ = place_.Path("oamd.db");
};

std::vector<std::string> idsOf(const std::vector<OperationRecord>& records) {
    std::vector<std::string> ids;
    for (const OperationRecord& record : records) ids.push_back(record.id);
    return ids;
}

TEST_F(OperationsOnDisk, ComeBackAfterARestartAsTheyWere) {
    OperationRecord done;
    OperationRecord refused;
    {
        DaemonParts daemon(place_.Root());
        done = daemon.RunOperation("Board 1");
        refused = daemon.operations.Begin(OperationKind::kTest, "Board \xff", "uid 5");
        daemon.operations.Refuse(refused.id, 0x40000004, "");
        refused = *daemon.operations.Find(refused.id);
    }
    DaemonParts daemon(place_.Root());
    for (const OperationRecord& before : {done, refused}) {
        SCOPED_TRACE(before.id);
        const auto after = daemon.operations.Find(before.id);
        ASSERT_TRUE(after);
        EXPECT_EQ(after->kind, before.kind);
        EXPECT_EQ(after->board, before.board);
        EXPECT_EQ(after->state, before.state);
        EXPECT_EQ(after->user, before.user);
        EXPECT_EQ(after->text, before.text);
        EXPECT_EQ(after->sequence, before.sequence);
        EXPECT_EQ(after->code, before.code);
        using Microseconds = std::chrono::microseconds;
        EXPECT_EQ(std::chrono::floor<Microseconds>(after->requested),
                  std::chrono::floor<Microseconds>(before.requested));
        EXPECT_EQ(std::chrono::floor<Microseconds>(*after->ended),
                  std::chrono::floor<Microseconds>(*before.ended));
    }
}

TEST_F(OperationsOnDisk, ThatRanAreUnknownForEverAfter) {
    std::string id;
    {
        DaemonParts daemon(place_.Root());
        id = daemon.operations.Begin(OperationKind::kStop, "Board 1", "root").id;
    }
    EXPECT_EQ(Load().at(0).state, OperationState::kUnknown);
    for (int start = 0; start < 3; ++start) {
        DaemonParts daemon(place_.Root());
        const auto record = daemon.operations.Find(id);
        ASSERT_TRUE(record);
        EXPECT_EQ(record->state, OperationState::kUnknown);
        EXPECT_EQ(record->board, "Board 1");
        EXPECT_EQ(record->user, "root");
        EXPECT_FALSE(record->ended);
        const StoredAlert late = OutcomeOf(OAMEVN_STOPBOARD_DONE, "Board 1", "good");
        EXPECT_EQ(daemon.operations.OnAlert(late), "") << "it belongs to nobody now";
    }
}

TEST_F(OperationsOnDisk, AreWrittenWhileTheDaemonRuns) {
    DaemonParts daemon(place_.Root());
    const std::string id = daemon.RunOperation("Board 1").id;
    const auto isThere = [&] {
        const auto records = Load();
        return records.size() == 1 && records[0].id == id &&
               records[0].state == OperationState::kDone;
    };
    EXPECT_TRUE(sim::becomesTrue(isThere));
}

TEST_F(OperationsOnDisk, AreBoundedAndInTheOrderOfTheirEnds) {
    OperationBook book(7, 3);
    const std::string slow = book.Begin(OperationKind::kStart, "Slow", "root").id;
    std::vector<std::string> ids;
    for (int i = 0; i < 5; ++i) {
        ids.push_back(book.Begin(OperationKind::kStart, "Board 1", "root").id);
        book.Refuse(ids.back(), 1, "no");
        Write(book, 3);
    }
    book.Refuse(slow, 1, "no");
    const std::string running = book.Begin(OperationKind::kStart, "Board 1", "root").id;
    Write(book, 3);
    EXPECT_EQ(idsOf(Load()), (std::vector<std::string>{ids[3], ids[4], slow, running}));
}

TEST_F(OperationsOnDisk, ThatWereForgottenInMemoryAreGoneFromDiskToo) {
    OperationBook book(7, 2);
    for (int i = 0; i < 50; ++i) {
        book.Refuse(book.Begin(OperationKind::kStart, "Board 1", "root").id, 1, "no");
        if (i % 3 == 0) Write(book, 2);
    }
    Write(book, 2);
    EXPECT_EQ(idsOf(Load()), (std::vector<std::string>{"7-49", "7-50"}));
}

TEST_F(OperationsOnDisk, WhatCouldNotBeWrittenIsWrittenLater) {
    OperationBook book(7, 10);
    const std::string id = book.Begin(OperationKind::kStart, "Board 1", "root").id;
    {
        Database database(path_);
        database.Run(
            "CREATE TRIGGER refuse BEFORE INSERT ON operations"
            " BEGIN SELECT raise(ABORT, 'no'); END");
        EXPECT_THROW(Write(book), StoreError);
        EXPECT_THROW(Write(book), StoreError) << "it is changed still";
        database.Run("DROP TRIGGER refuse");
    }
    Write(book);
    EXPECT_EQ(idsOf(Load()), std::vector<std::string>{id});
    EXPECT_THAT(book.TakeChanged(), IsEmpty());
}

TEST_F(OperationsOnDisk, OfLaterStartsOrWithNonsenseForAnIdentityAreNotLoaded) {
    OperationRecord record;
    record.state = OperationState::kDone;
    std::vector<OperationRecord> records;
    for (const char* id : {"6-1", "6-1", "7-1", "8-1", "", "nonsense", "6-2"}) {
        record.id = id;
        records.push_back(record);
    }
    OperationBook book(7, 10);
    book.Load(records);
    EXPECT_EQ(idsOf(book.List(false, "")), (std::vector<std::string>{"6-2", "6-1"}));
    EXPECT_EQ(book.Begin(OperationKind::kStart, "Board 1", "root").id, "7-1");
}

TEST_F(OperationsOnDisk, ThatAreLoadedAreBoundedAndNotWrittenAgain) {
    std::vector<OperationRecord> records(5);
    for (std::size_t i = 0; i < records.size(); ++i) {
        records[i].id = OperationId{1, i + 1}.Text();
        records[i].state = OperationState::kDone;
    }
    OperationBook book(7, 3);
    book.Load(records);
    EXPECT_EQ(idsOf(book.List(false, "")), (std::vector<std::string>{"1-5", "1-4", "1-3"}));
    EXPECT_EQ(book.Find("1-1")->state, OperationState::kUnknown);
    EXPECT_THAT(book.TakeChanged(), IsEmpty());
}

TEST_F(OperationsOnDisk, ChangesAreTakenOnce) {
    OperationBook book(7, 10);
    const std::string first = book.Begin(OperationKind::kStart, "Board 1", "root").id;
    const std::string second = book.Begin(OperationKind::kStop, "Board 1", "root").id;
    EXPECT_EQ(idsOf(book.TakeChanged()), (std::vector<std::string>{first, second}));
    EXPECT_THAT(book.TakeChanged(), IsEmpty());
    book.Refuse(second, 1, "no");
    const auto changed = book.TakeChanged();
    EXPECT_EQ(idsOf(changed), std::vector<std::string>{second});
    book.PutBack(changed);
    EXPECT_EQ(idsOf(book.TakeChanged()), std::vector<std::string>{second});
    book.Refuse(first, 1, "no");
    book.PutBack(changed);
    EXPECT_EQ(idsOf(book.TakeChanged()), (std::vector<std::string>{second, first}))
        << "what could not be written came before what changed since";
    book.ChangeAll();
    EXPECT_EQ(book.TakeChanged().size(), 2u);
}

}  // namespace
}  // namespace oam::server
