#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "alerts.h"
#include "operations/operation_book.h"

namespace oam::server {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Waits : public testing::Test {
  protected:
    std::string Begin() { return book_.Begin(OperationKind::kStart, "Board 1", "root").id; }
    void End() {
        book_.Number(book_.OnAlert(OutcomeOf(OAMEVN_STARTBOARD_DONE, "Board 1", "good")), 77);
    }
    OperationBook::Done Note() {
        return [this](const OperationRecord& record) { called_.push_back(record); };
    }

    OperationBook book_{7, 3};
    std::vector<OperationRecord> called_;
};

TEST_F(Waits, EndWithTheOutcomeAndItsNumber) {
    const std::string id = Begin();
    EXPECT_GT(book_.Wait(id, Note()), 0u);
    EXPECT_THAT(called_, IsEmpty());
    End();
    ASSERT_EQ(called_.size(), 1u);
    EXPECT_EQ(called_[0].id, id);
    EXPECT_EQ(called_[0].state, OperationState::kDone);
    EXPECT_EQ(called_[0].text, "good");
    EXPECT_EQ(called_[0].sequence, 77u);
    EXPECT_TRUE(called_[0].ended);
}

TEST_F(Waits, EndAtOnceWhenTheOperationHasEnded) {
    const std::string id = Begin();
    End();
    EXPECT_EQ(book_.Wait(id, Note()), 0u);
    ASSERT_EQ(called_.size(), 1u);
    EXPECT_EQ(called_[0].sequence, 77u);
}

TEST_F(Waits, BetweenTheOutcomeAndItsNumberGoOnUntilTheNumber) {
    const std::string id = Begin();
    book_.OnAlert(OutcomeOf(OAMEVN_STARTBOARD_DONE, "Board 1", "good"));
    EXPECT_GT(book_.Wait(id, Note()), 0u);
    EXPECT_THAT(called_, IsEmpty());
    book_.Number(id, 5);
    ASSERT_EQ(called_.size(), 1u);
    EXPECT_EQ(called_[0].sequence, 5u);
}

TEST_F(Waits, AllEndAndInTheirOrder) {
    const std::string id = Begin();
    std::vector<int> order;
    for (int i = 0; i < 5; ++i)
        book_.Wait(id, [&order, i](const OperationRecord&) { order.push_back(i); });
    End();
    EXPECT_THAT(order, ElementsAre(0, 1, 2, 3, 4));
}

TEST_F(Waits, HaveNumbersOfTheirOwn) {
    const std::string id = Begin();
    const auto first = book_.Wait(id, Note());
    const auto second = book_.Wait(id, Note());
    EXPECT_NE(first, second);
    EXPECT_TRUE(book_.Cancel(*second));
    EXPECT_EQ(called_.size(), 1u);
    End();
    EXPECT_EQ(called_.size(), 2u);
}

TEST_F(Waits, ThatAreCancelledAreToldTheOperationAsItIs) {
    const std::string id = Begin();
    const auto wait = book_.Wait(id, Note());
    EXPECT_TRUE(book_.Cancel(*wait));
    ASSERT_EQ(called_.size(), 1u);
    EXPECT_EQ(called_[0].state, OperationState::kRunning);
    EXPECT_FALSE(book_.Cancel(*wait));
    End();
    EXPECT_EQ(called_.size(), 1u) << "once";
}

TEST_F(Waits, ThatHaveEndedCannotBeCancelled) {
    const auto wait = book_.Wait(Begin(), Note());
    End();
    EXPECT_FALSE(book_.Cancel(*wait));
    EXPECT_FALSE(book_.Cancel(0));
    EXPECT_FALSE(book_.Cancel(12345));
    EXPECT_EQ(called_.size(), 1u);
}

TEST_F(Waits, EndWithARefusal) {
    const std::string id = Begin();
    book_.Wait(id, Note());
    book_.Refuse(id, 5, "no");
    ASSERT_EQ(called_.size(), 1u);
    EXPECT_EQ(called_[0].state, OperationState::kRefused);
}

TEST_F(Waits, EndWhenTheServiceStops) {
    book_.Wait(Begin(), Note());
    book_.Wait(Begin(), Note());
    book_.GiveUpRunning("stopped");
    ASSERT_EQ(called_.size(), 2u);
    EXPECT_EQ(called_[1].state, OperationState::kUnknown);
}

TEST_F(Waits, DoNotEndWithARemark) {
    const std::string id = Begin();
    book_.Wait(id, Note());
    book_.OnAlert(OutcomeOf(OAMEVN_STARTBOARD_DONE, "Board 1", "Board is currently being started.",
                            OAM_ERROR));
    EXPECT_THAT(called_, IsEmpty());
    End();
    EXPECT_EQ(called_.size(), 1u);
}

TEST_F(Waits, ForAnEarlierStartsOperationEndAtOnceAsUnknown) {
    EXPECT_EQ(book_.Wait("6-1", Note()), 0u);
    ASSERT_EQ(called_.size(), 1u);
    EXPECT_EQ(called_[0].state, OperationState::kUnknown);
}

TEST_F(Waits, ForAnIdentityThatWasNeverGivenThereAreNone) {
    EXPECT_FALSE(book_.Wait("7-1", Note()).has_value());
    EXPECT_FALSE(book_.Wait("nonsense", Note()).has_value());
    EXPECT_THAT(called_, IsEmpty());
}

TEST_F(Waits, MayUseTheBookInTheirCall) {
    const std::string id = Begin();
    std::string next;
    book_.Wait(id, [&](const OperationRecord& record) {
        EXPECT_EQ(book_.Find(record.id)->state, OperationState::kDone);
        EXPECT_EQ(book_.Wait(id, Note()), 0u);
        next = Begin();
    });
    End();
    EXPECT_EQ(next, "7-2");
    EXPECT_EQ(called_.size(), 1u);
}

TEST_F(Waits, OneThatThrowsKeepsNobodyElseWaiting) {
    const std::string id = Begin();
    book_.Wait(id, [](const OperationRecord&) { throw std::bad_alloc(); });
    book_.Wait(id, Note());
    End();
    EXPECT_EQ(called_.size(), 1u);
}

// With one kept, the record is forgotten by the time that it is told.
TEST_F(Waits, AreToldAnOperationThatIsForgottenMeanwhile) {
    OperationBook small(7, 1);
    const std::string id = small.Begin(OperationKind::kStart, "Board 1", "root").id;
    OperationState told = OperationState::kRunning;
    small.Wait(id, [&](const OperationRecord& record) {
        for (int i = 0; i < 3; ++i)
            small.Refuse(small.Begin(OperationKind::kStop, "Board 2", "root").id, 1, "no");
        EXPECT_EQ(small.Find(id)->state, OperationState::kUnknown);
        told = record.state;
    });
    small.Number(small.OnAlert(OutcomeOf(OAMEVN_STARTBOARD_DONE, "Board 1", "good")), 1);
    EXPECT_EQ(told, OperationState::kDone);
}

// Two on the way between outcome and number, and room for one: neither loses its wait.
TEST_F(Waits, AreNotLostWhenManyEndAtOnce) {
    OperationBook small(7, 1);
    std::vector<std::string> ids;
    int calls = 0;
    for (int i = 0; i < 4; ++i) {
        ids.push_back(small.Begin(OperationKind::kStart, "Board 1", "root").id);
        small.Wait(ids.back(), [&](const OperationRecord&) { ++calls; });
    }
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(small.OnAlert(OutcomeOf(OAMEVN_STARTBOARD_DONE, "Board 1", "good")), ids[i]);
    for (int i = 3; i >= 0; --i) small.Number(ids[i], 1);
    EXPECT_EQ(calls, 4);
    EXPECT_EQ(small.List(false, "").size(), 1u);
}

}  // namespace
}  // namespace oam::server
