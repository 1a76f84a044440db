// Whose handles are whose, and what becomes of them when the service stops.
#include "handle_ledger.h"

namespace oam::check {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

// Calls are told apart by where they are, and never looked at.
const char places[2] = {};
const auto* const one = reinterpret_cast<const EntryCall*>(&places[0]);
const auto* const other = reinterpret_cast<const EntryCall*>(&places[1]);
constexpr unsigned long kHandle = 7;

TEST(HandleLedger, AnOpenHandleIsUsableAndClosableUntilItIsClosed) {
    HandleLedger ledger;
    ledger.Opened(kHandle, "Board", one);
    EXPECT_TRUE(ledger.IsUsable(kHandle));
    EXPECT_TRUE(ledger.IsClosable(kHandle));
    ledger.Closed(kHandle);
    EXPECT_FALSE(ledger.IsUsable(kHandle));
    EXPECT_FALSE(ledger.IsClosable(kHandle));
}

TEST(HandleLedger, ALentHandleIsUsableButNotTheModulesToClose) {
    HandleLedger ledger;
    ledger.Lent(kHandle);
    EXPECT_TRUE(ledger.IsUsable(kHandle));
    EXPECT_FALSE(ledger.IsClosable(kHandle));
    ledger.TakenBack(kHandle);
    EXPECT_FALSE(ledger.IsUsable(kHandle));
}

TEST(HandleLedger, ACallLeavesOpenWhatItHasOpenedItself) {
    HandleLedger ledger;
    ledger.Opened(kHandle, "Board", one);
    EXPECT_THAT(ledger.TakeLeftOpenBy(other), IsEmpty());
    const auto left = ledger.TakeLeftOpenBy(one);
    ASSERT_THAT(left, SizeIs(1));
    EXPECT_EQ(left[0].handle, kHandle);
    EXPECT_EQ(left[0].object, "Board");
    EXPECT_FALSE(ledger.IsUsable(kHandle));
}

TEST(HandleLedger, WhatAThreadOfTheModulesOwnHasOpenAtTheServicesEndIsLeftOpen) {
    HandleLedger ledger;
    ledger.Opened(kHandle, "Board", nullptr);
    EXPECT_THAT(ledger.TakeAll(), SizeIs(1));
    EXPECT_FALSE(ledger.IsUsable(kHandle));
    EXPECT_FALSE(ledger.EndedWithService(kHandle, nullptr));
}

// A stop of the service waits for no operation: a board may be about to stop, with its object open.
TEST(HandleLedger, WhatACallThatIsUnderWayHasOpenAtTheServicesEndIsNotLeftOpen) {
    HandleLedger ledger;
    ledger.Opened(kHandle, "Board", one);
    EXPECT_THAT(ledger.TakeAll(), IsEmpty());
    EXPECT_FALSE(ledger.IsUsable(kHandle));
    EXPECT_TRUE(ledger.EndedWithService(kHandle, one));
    EXPECT_FALSE(ledger.EndedWithService(kHandle, other));
}

TEST(HandleLedger, ACallThatHasEndedIsForgotten) {
    HandleLedger ledger;
    ledger.Opened(kHandle, "Board", one);
    (void)ledger.TakeAll();
    EXPECT_THAT(ledger.TakeLeftOpenBy(one), IsEmpty());
    // Another one may lie in its place.
    EXPECT_FALSE(ledger.EndedWithService(kHandle, one));
}

}  // namespace
}  // namespace oam::check
