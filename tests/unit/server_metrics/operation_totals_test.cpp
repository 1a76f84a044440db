// Operations that have ended, by kind and outcome, and how long they took.
#include <gtest/gtest.h>

#include "oam/codes.h"
#include "oam/message.h"
#include "operations/operation_book.h"
#include "store/moment.h"

namespace oam::server {
namespace {

std::uint64_t ended(const OperationBook& book, OperationKind kind, OperationState state) {
    return book.Totals().ended[static_cast<std::size_t>(kind)][static_cast<std::size_t>(state)];
}

StoredAlert outcome(std::uint32_t code, std::uint32_t severity) {
    StoredAlert alert;
    alert.code = code;
    alert.severity = severity;
    alert.source = "Board 1";
    return alert;
}

TEST(OperationTotals, CountEachOutcomeOnce) {
    OperationBook book(1, 2);
    (void)book.Begin(OperationKind::kStart, "Board 1", "root");
    EXPECT_EQ(book.Totals().running, 1u);
    (void)book.OnAlert(outcome(OAMEVN_STARTBOARD_DONE, OAM_INFORMATION));
    (void)book.Begin(OperationKind::kStart, "Board 1", "root");
    (void)book.OnAlert(outcome(OAMEVN_STARTBOARD_DONE, OAM_ERROR));
    const auto refused = book.Begin(OperationKind::kStop, "Board 1", "root");
    book.Refuse(refused.id, OAMERR_NOT_FOUND, "no");
    book.Refuse(refused.id, OAMERR_NOT_FOUND, "no");
    (void)book.Begin(OperationKind::kTest, "Board 1", "root");
    book.GiveUpRunning("the service has stopped");

    EXPECT_EQ(ended(book, OperationKind::kStart, OperationState::kDone), 1u);
    EXPECT_EQ(ended(book, OperationKind::kStart, OperationState::kFailed), 1u);
    EXPECT_EQ(ended(book, OperationKind::kStop, OperationState::kRefused), 1u);
    EXPECT_EQ(ended(book, OperationKind::kTest, OperationState::kUnknown), 1u);
    EXPECT_EQ(book.Totals().running, 0u);

    const auto totals = book.Totals();
    std::uint64_t timed = 0;
    for (const std::uint64_t count : totals.durations[0].counts) timed += count;
    EXPECT_EQ(timed, 2u);
    for (const std::uint64_t count : totals.durations[1].counts) EXPECT_EQ(count, 0u);
}

TEST(Operations, HaveTimesThatTheBookCanKeep) {
    OperationBook book(1, 2);
    const auto begun = book.Begin(OperationKind::kStart, "Board 1", "root");
    (void)book.OnAlert(outcome(OAMEVN_STARTBOARD_DONE, OAM_INFORMATION));
    const auto record = book.Find(begun.id).value();
    EXPECT_EQ(momentOf(microsecondsOf(record.requested)), record.requested);
    EXPECT_EQ(momentOf(microsecondsOf(record.ended.value())), record.ended);
}

TEST(OperationTotals, LeaveOutWhatWasBeforeThisStart) {
    OperationBook book(2, 10);
    OperationRecord record;
    record.id = "1-1";
    record.board = "Board 1";
    book.Load({record});
    EXPECT_EQ(ended(book, OperationKind::kStart, OperationState::kUnknown), 0u);
    EXPECT_EQ(book.Totals().running, 0u);
}

}  // namespace
}  // namespace oam::server
