// Out of memory in what runs on the service's threads: nothing is thrown, and what happened counts.
#include <gtest/gtest.h>

#include "alerts.h"
#include "alerts/alert_ring.h"
#include "operations/operation_book.h"
#include "throwing_fuse.h"

namespace oam::server {
namespace {

// Longer than what a string holds without memory.
const std::string kBoard = "Board with a name that needs memory of its own";
const std::string kRenamed = "Board with another name that needs memory as well";

// Calls action(nth) with the first, second, ... allocation failing, until none fails any more.
template <class Action>
void failEachAllocation(const Action& action) {
    bool hasBlown = true;
    int nth = 1;
    for (; hasBlown && nth < 100; ++nth) {
        SCOPED_TRACE("allocation " + std::to_string(nth));
        hasBlown = action(nth);
    }
    EXPECT_GT(nth, 2) << "it needs no memory at all";
    EXPECT_FALSE(hasBlown);
}

TEST(OutOfMemory, AnAlertHasItsNumberAndIsMissing) {
    failEachAllocation([](int nth) {
        AlertRing ring(0, 10);
        ring.Publish(AlertOf("before"));
        StoredAlert alert = AlertOf("during");
        bool hasBlown;
        {
            const ThrowingFuse fuse(nth);
            EXPECT_EQ(ring.Publish(std::move(alert)), 2u);
            hasBlown = fuse.HasBlown();
        }
        EXPECT_EQ(ring.Publish(AlertOf("behind")), 3u);
        const auto batch = ring.Read(1, 10);
        EXPECT_EQ(batch.isGap, hasBlown);
        EXPECT_EQ(NumbersOf(batch), hasBlown ? Range(3, 3) : Range(2, 3));
        return hasBlown;
    });
}

class OperationsOutOfMemory : public testing::Test {
  protected:
    OperationsOutOfMemory() { book_.Load({}); }

    // 18 digits: an identity that needs memory of its own.
    OperationBook book_{100000000000000000, 10};
};

TEST_F(OperationsOutOfMemory, AnOutcomeCountsAndItsWaitsEnd) {
    failEachAllocation([&](int nth) {
        const std::string id = book_.Begin(OperationKind::kStart, kBoard, "root").id;
        int calls = 0;
        book_.Wait(id, [&](const OperationRecord& record) {
            ++calls;
            EXPECT_EQ(record.state, OperationState::kFailed);
            EXPECT_EQ(record.sequence, 5u);
        });
        const std::string text = "a text that needs memory of its own as well";
        const StoredAlert alert = OutcomeOf(OAMEVN_STARTBOARD_DONE, kBoard, text, OAM_ERROR);
        bool hasBlown;
        {
            const ThrowingFuse fuse(nth);
            const std::string told = book_.OnAlert(alert);
            book_.Number(told, 5);
            EXPECT_EQ(told, id);
            hasBlown = fuse.HasBlown();
        }
        EXPECT_EQ(calls, 1);
        EXPECT_EQ(book_.Find(id)->text, hasBlown ? "" : text);
        EXPECT_TRUE(book_.List(true, "").empty());
        return hasBlown;
    });
}

TEST_F(OperationsOutOfMemory, ARemarkMayBeLostButNotItsOperation) {
    failEachAllocation([&](int nth) {
        const std::string id = book_.Begin(OperationKind::kTest, kBoard, "root").id;
        const StoredAlert alert =
            OutcomeOf(OAMEVN_TESTBOARD_DONE, kBoard, "Board is currently being tested.", OAM_ERROR);
        bool hasBlown;
        {
            const ThrowingFuse fuse(nth);
            EXPECT_EQ(book_.OnAlert(alert), "");
            hasBlown = fuse.HasBlown();
        }
        EXPECT_EQ(book_.Find(id)->state, OperationState::kRunning);
        book_.Number(book_.OnAlert(OutcomeOf(OAMEVN_TESTBOARD_DONE, kBoard, "good")), 1);
        return hasBlown;
    });
}

TEST_F(OperationsOutOfMemory, ARenameMayBeLostButNotTheOutcomeUnderTheOldName) {
    failEachAllocation([&](int nth) {
        const std::string id = book_.Begin(OperationKind::kStop, kBoard, "root").id;
        const StoredAlert alert = AlertOf(kBoard, OAMEVN_RENAMED, kRenamed);
        bool hasBlown;
        {
            const ThrowingFuse fuse(nth);
            EXPECT_EQ(book_.OnAlert(alert), "");
            hasBlown = fuse.HasBlown();
        }
        EXPECT_EQ(book_.OnAlert(OutcomeOf(OAMEVN_STOPBOARD_DONE, kBoard, "good")), id);
        book_.Number(id, 1);
        return hasBlown;
    });
}

TEST_F(OperationsOutOfMemory, ARequestThatCouldNotBeNotedLeavesNothingBehind) {
    std::uint64_t before = 0;
    failEachAllocation([&](int nth) {
        bool hasBlown = false;
        try {
            const ThrowingFuse fuse(nth);
            const OperationRecord begun = book_.Begin(OperationKind::kStart, kBoard, "root");
            EXPECT_EQ(OperationId::Parse(begun.id)->n, before + 1) << "no number is lost";
        } catch (const std::bad_alloc&) {
            hasBlown = true;
            EXPECT_TRUE(book_.List(false, "").empty());
            EXPECT_TRUE(book_.TakeChanged().empty());
        }
        return hasBlown;
    });
    EXPECT_EQ(book_.List(true, "").size(), 1u);
}

TEST_F(OperationsOutOfMemory, AWaitThatCouldNotBeNotedIsNotCalled) {
    const std::string id = book_.Begin(OperationKind::kStart, kBoard, "root").id;
    int calls = 0;
    failEachAllocation([&](int nth) {
        OperationBook::Done done = [&](const OperationRecord&) { ++calls; };
        try {
            const ThrowingFuse fuse(nth);
            book_.Wait(id, std::move(done));
        } catch (const std::bad_alloc&) {
            return true;
        }
        return false;
    });
    book_.Number(book_.OnAlert(OutcomeOf(OAMEVN_STARTBOARD_DONE, kBoard, "good")), 1);
    EXPECT_EQ(calls, 1);
}

TEST_F(OperationsOutOfMemory, WhatCouldNotBeTakenIsChangedStill) {
    book_.Begin(OperationKind::kStart, kBoard, "root");
    book_.Begin(OperationKind::kStop, kBoard, "root");
    failEachAllocation([&](int nth) {
        try {
            const ThrowingFuse fuse(nth);
            EXPECT_EQ(book_.TakeChanged().size(), 2u);
        } catch (const std::bad_alloc&) {
            return true;
        }
        return false;
    });
}

}  // namespace
}  // namespace oam::server
