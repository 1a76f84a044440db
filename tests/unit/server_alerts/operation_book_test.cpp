#include "operations_test.h"
#include "store/moment.h"
#include "store/bell.h"

namespace oam::server {
namespace {

TEST_F(Operations, AreCountedBehindTheNumberOfTheStart) {
    EXPECT_EQ(Begin("Board 1"), "7-1");
    EXPECT_EQ(Begin("Board 1"), "7-2");
    EXPECT_EQ(Begin("Board 2"), "7-3");
}

TEST_F(Operations, RunFromTheirBegin) {
    const auto before = MomentNow();
    const OperationRecord begun = book_.Begin(OperationKind::kTest, "Board 1", "certificate x");
    for (const OperationRecord& record : {begun, *book_.Find(begun.id)}) {
        EXPECT_EQ(record.id, begun.id);
        EXPECT_EQ(record.kind, OperationKind::kTest);
        EXPECT_EQ(record.board, "Board 1");
        EXPECT_EQ(record.user, "certificate x");
        EXPECT_EQ(record.state, OperationState::kRunning);
        EXPECT_GE(record.requested, before);
        EXPECT_FALSE(record.ended);
    }
}

TEST_F(Operations, EndWithTheOutcomeOfTheirKindFromTheirBoard) {
    const std::string start = Begin("Board 1");
    const std::string stop = Begin("Board 1", OperationKind::kStop);
    const std::string test = Begin("Board 1", OperationKind::kTest);
    const std::string other = Begin("Board 2");
    EXPECT_EQ(Tell(OutcomeOf(OAMEVN_TESTBOARD_DONE, "Board 1", "good")), test);
    EXPECT_EQ(Tell(OutcomeOf(OAMEVN_STOPBOARD_DONE, "BOARD 1", "good")), stop);
    EXPECT_EQ(Tell(OutcomeOf(OAMEVN_STARTBOARD_DONE, "Board 1", "good")), start);
    EXPECT_EQ(StateOf(other), OperationState::kRunning);
}

TEST_F(Operations, AreDoneOrFailedAsTheAlertsSeveritySays) {
    const std::string good = Begin("Board 1");
    const std::string bad = Begin("Board 2");
    const std::string worse = Begin("Board 3");
    Tell(OutcomeOf(OAMEVN_STARTBOARD_DONE, "Board 1", "Board is started.\n", OAM_INFORMATION));
    Tell(OutcomeOf(OAMEVN_STARTBOARD_DONE, "Board 2", "Failed to start board.\n", OAM_ERROR));
    Tell(OutcomeOf(OAMEVN_STARTBOARD_DONE, "Board 3", "Board not found.", 99));
    EXPECT_EQ(StateOf(good), OperationState::kDone);
    const OperationRecord failed = *book_.Find(bad);
    EXPECT_EQ(failed.state, OperationState::kFailed);
    EXPECT_EQ(failed.text, "Failed to start board.\n");
    EXPECT_EQ(failed.sequence, 102u);
    EXPECT_GE(*failed.ended, failed.requested);
    EXPECT_EQ(StateOf(worse), OperationState::kFailed);
}

TEST_F(Operations, AreNotEndedByAlertsThatAreNobodysOutcome) {
    const std::string id = Begin("Board 1");
    EXPECT_EQ(Tell(OutcomeOf(OAMEVN_STARTBOARD_DONE, "Board 2", "good")), "");
    EXPECT_EQ(Tell(OutcomeOf(OAMEVN_STOPBOARD_DONE, "Board 1", "good")), "");
    EXPECT_EQ(Tell(OutcomeOf(OAMEVN_STOPBOARD_REQ, "Board 1", "Stop board in 150ms.")), "");
    EXPECT_EQ(Tell(OutcomeOf(OAMEVN_ALERT, "Board 1", "Board is started.\n")), "");
    EXPECT_EQ(StateOf(id), OperationState::kRunning);
    TellStarted("Board 1");
    EXPECT_EQ(TellStarted("Board 1"), "") << "an outcome is told once";
}

TEST_F(Operations, TheOldestOfSeveralGetsTheOutcome) {
    const std::string first = Begin("Board 1");
    const std::string second = Begin("Board 1");
    EXPECT_EQ(TellStarted("Board 1"), first);
    EXPECT_EQ(TellStarted("Board 1"), second);
}

TEST_F(Operations, ThatTheServiceDidNotTakeAreRefused) {
    const std::string id = Begin("Board 1");
    book_.Refuse(id, OAMERR_NOT_FOUND, "no such board");
    const OperationRecord record = *book_.Find(id);
    EXPECT_EQ(record.state, OperationState::kRefused);
    EXPECT_EQ(record.code, unsigned{OAMERR_NOT_FOUND});
    EXPECT_EQ(record.text, "no such board");
    EXPECT_TRUE(record.ended);
    EXPECT_EQ(TellStarted("Board 1"), "");
}

TEST_F(Operations, AnOutcomeThatCameBeforeTheRefusalStays) {
    const std::string id = Begin("Board 1");
    TellStarted("Board 1");
    book_.Refuse(id, OAMERR_NOT_FOUND, "too late");
    EXPECT_EQ(StateOf(id), OperationState::kDone);
    book_.Refuse("7-99", OAMERR_NOT_FOUND, "never given");
    book_.Refuse("nonsense", OAMERR_NOT_FOUND, "");
}

// ---- The refusal because the same runs already

TEST_F(Operations, OneThatIsToldThatItRunsAlreadyGoesOnWithARemark) {
    const std::string id = Begin("Board 1");
    EXPECT_EQ(TellBeingStarted("Board 1"), "");
    EXPECT_EQ(StateOf(id), OperationState::kRunning);
    EXPECT_EQ(book_.Find(id)->text, "Board is currently being started.");
    EXPECT_EQ(TellStarted("Board 1"), id);
    EXPECT_EQ(book_.Find(id)->text, "Board is started.\n");
}

TEST_F(Operations, TheNewestOfSeveralIsRefusedBecauseTheSameRuns) {
    const std::string first = Begin("Board 1");
    const std::string second = Begin("board 1");
    const std::string third = Begin("Board 1");
    EXPECT_EQ(TellBeingStarted("Board 1"), third);
    EXPECT_EQ(TellBeingStarted("Board 1"), second);
    EXPECT_EQ(TellBeingStarted("Board 1"), "") << "one is left: a remark on it";
    EXPECT_EQ(StateOf(third), OperationState::kFailed);
    EXPECT_EQ(TellStarted("Board 1"), first);
    EXPECT_EQ(StateOf(first), OperationState::kDone);
}

TEST_F(Operations, EveryKindHasItsOwnWordsForThat) {
    struct {
        OperationKind kind;
        std::uint32_t code;
        const char* text;
    } const rows[] = {
        {OperationKind::kStart, OAMEVN_STARTBOARD_DONE, "Board is currently being started."},
        {OperationKind::kStop, OAMEVN_STOPBOARD_DONE, "Board is currently being stopped."},
        {OperationKind::kTest, OAMEVN_TESTBOARD_DONE, "Board is currently being tested."},
    };
    for (const auto& row : rows) {
        const std::string id = Begin("Board 1", row.kind);
        for (const auto& other : rows) {
            if (other.kind == row.kind) continue;
            // These words are no remark on another kind of operation.
            const std::string board = "Board of " + std::string(other.text);
            const std::string ofOther = Begin(board, row.kind);
            EXPECT_EQ(Tell(OutcomeOf(row.code, board, other.text, OAM_ERROR)), ofOther);
        }
        EXPECT_EQ(Tell(OutcomeOf(row.code, "Board 1", row.text, OAM_ERROR)), "");
        EXPECT_EQ(Tell(OutcomeOf(row.code, "Board 1", "good")), id);
    }
}

TEST_F(Operations, ARefusalBecauseSomethingElseRunsIsTheOutcome) {
    const std::string start = Begin("Board 1");
    const std::string stop = Begin("Board 1", OperationKind::kStop);
    EXPECT_EQ(Tell(OutcomeOf(OAMEVN_STOPBOARD_DONE, "Board 1",
                             "Board is currently being started. Wait for the "
                             "OAMEVN_STARTBOARD_DONE before stopping it",
                             OAM_ERROR)),
              stop);
    EXPECT_EQ(StateOf(stop), OperationState::kFailed);
    EXPECT_EQ(StateOf(start), OperationState::kRunning);
}

TEST_F(Operations, HaveNoSequenceNumberUntilItIsGiven) {
    const std::string id = Begin("Board 1");
    EXPECT_EQ(book_.OnAlert(OutcomeOf(OAMEVN_STARTBOARD_DONE, "Board 1", "good")), id);
    EXPECT_EQ(StateOf(id), OperationState::kDone);
    EXPECT_EQ(book_.Find(id)->sequence, 0u);
    book_.Number(id, 55);
    EXPECT_EQ(book_.Find(id)->sequence, 55u);
    book_.Number(id, 66);
    EXPECT_EQ(book_.Find(id)->sequence, 55u) << "it is given once";
}

TEST_F(Operations, ANumberForNobodyIsIgnored) {
    const std::string id = Begin("Board 1");
    book_.Number(id, 5);
    book_.Number("", 5);
    book_.Number("7-99", 5);
    EXPECT_EQ(StateOf(id), OperationState::kRunning);
    EXPECT_EQ(book_.Find(id)->sequence, 0u);
}

TEST_F(Operations, RingTheBellForEveryChange) {
    Bell bell;
    OperationBook book(1, 3, &bell);
    const std::string id = book.Begin(OperationKind::kStart, "Board 1", "root").id;
    EXPECT_TRUE(bell.AwaitRing());
    book.Number(book.OnAlert(OutcomeOf(OAMEVN_STARTBOARD_DONE, "Board 1", "good")), 1);
    EXPECT_TRUE(bell.AwaitRing());
    book.Refuse(book.Begin(OperationKind::kStart, "Board 1", "root").id, 1, "");
    EXPECT_TRUE(bell.AwaitRing());
}

}  // namespace
}  // namespace oam::server
