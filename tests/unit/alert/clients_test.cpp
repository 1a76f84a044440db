// The table of registered clients, and registration.
#include "alert/clients.h"

#include "alert_room.h"
#include "support/allocation_fuse.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Clients : public ::testing::Test {
  protected:
    std::vector<unsigned long> All() const {
        std::vector<unsigned long> clients;
        for (int i = 0; i < table.Count(); ++i) clients.push_back(table.ClientAt(i));
        return clients;
    }
    int PositionOf(unsigned long client, bool found) const {
        int index = -1;
        EXPECT_EQ(table.Find(client, &index), found) << client;
        return index;
    }

    CArrayPtrsToClient table{0, kTableGrowth};
};

TEST_F(Clients, SeventeenInDescendingOrderTakeTwoStepsAndStandInAscendingOrder) {
    for (unsigned long client = 17; client >= 1; --client) {
        ASSERT_EQ(table.Insert(client), OAM_SUCCESS);
    }
    EXPECT_EQ(table.Capacity(), 32);
    ASSERT_EQ(table.Count(), 17);
    for (int i = 0; i < 17; ++i) EXPECT_EQ(table.ClientAt(i), static_cast<unsigned long>(i) + 1);
}

TEST_F(Clients, LeavingOneByOneGivesTheStepsBack) {
    for (unsigned long client = 17; client >= 1; --client) {
        ASSERT_EQ(table.Insert(client), OAM_SUCCESS);
    }
    for (unsigned long client = 1; client <= 17; ++client) {
        EXPECT_EQ(table.Capacity(), client == 1 ? 32 : 16) << client;
        ASSERT_EQ(table.Remove(client), OAM_SUCCESS);
    }
    EXPECT_EQ(table.Capacity(), 0);
}

TEST_F(Clients, KeptTheInitialSizeIsIgnored) {
    const CArrayPtrsToClient other(64, 16);
    EXPECT_EQ(other.Capacity(), 0);
}

TEST_F(Clients, AreFoundOrGetTheirPosition) {
    for (unsigned long client : {30ul, 10ul, 20ul}) ASSERT_EQ(table.Insert(client), OAM_SUCCESS);
    EXPECT_EQ(PositionOf(10, true), 0);
    EXPECT_EQ(PositionOf(30, true), 2);
    EXPECT_EQ(PositionOf(5, false), 0);
    EXPECT_EQ(PositionOf(25, false), 2);
    EXPECT_EQ(PositionOf(31, false), 3);
}

TEST_F(Clients, CompareAsUnsignedLongs) {
    for (unsigned long client : {~0ul, 0ul, 1ul << 63, 0xFFFFFFFFul}) {
        ASSERT_EQ(table.Insert(client), OAM_SUCCESS);
    }
    EXPECT_THAT(All(), ElementsAre(0ul, 0xFFFFFFFFul, 1ul << 63, ~0ul));
}

TEST_F(Clients, AreAsTheyWereWhenThereIsNoMemory) {
    for (unsigned long client = 1; client <= 16; ++client) {
        ASSERT_EQ(table.Insert(client), OAM_SUCCESS);
    }
    EXPECT_EQ(FailEachAllocation([&] { return table.Insert(99); },
                                 [&](oam_result result) {
                                     EXPECT_EQ(result, OAMERR_NOT_ENOUGH_MEMORY);
                                     EXPECT_EQ(table.Count(), 16);
                                     EXPECT_EQ(table.Capacity(), 16);
                                     EXPECT_EQ(PositionOf(99, false), 16);
                                 }),
              OAM_SUCCESS);
    EXPECT_EQ(FailEachAllocation([&] { return table.Remove(3); },
                                 [&](oam_result result) {
                                     EXPECT_EQ(result, OAMERR_NOT_ENOUGH_MEMORY);
                                     EXPECT_EQ(table.Count(), 17);
                                     EXPECT_EQ(PositionOf(3, true), 2);
                                 }),
              OAM_SUCCESS);
    EXPECT_EQ(table.Capacity(), 16);
}

class Registration : public AlertRoom {};

TEST_F(Registration, NeedsACallback) {
    EXPECT_EQ(_oamAlertRegister(5), OAMERR_NOT_FOUND);
    InstallCallback();
    EXPECT_EQ(_oamAlertRegister(5), OAM_SUCCESS);
    EXPECT_EQ(_oamAlertRegister(5), OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(alertClients().Count(), 1);
}

TEST_F(Registration, EndsWithoutACallbackToo) {
    InstallCallback();
    EXPECT_EQ(_oamAlertRegister(5), OAM_SUCCESS);
    EXPECT_EQ(_oamAlertRegisterCallback(nullptr), OAM_SUCCESS);
    EXPECT_EQ(_oamAlertUnregister(5), OAM_SUCCESS);
    EXPECT_EQ(_oamAlertUnregister(5), OAMERR_NOT_FOUND);
}

TEST_F(Registration, IsOverWithTheAlertSystemWhileTheCallbackStays) {
    InstallCallback();
    EXPECT_EQ(_oamAlertRegister(5), OAM_SUCCESS);
    EXPECT_EQ(AlertInit(), OAM_SUCCESS);
    AlertExit();
    EXPECT_EQ(alertClients().Count(), 0);
    EXPECT_EQ(alertClients().Capacity(), 0);
    EXPECT_EQ(AlertInit(), OAM_SUCCESS);
    EXPECT_EQ(Raise("again"), OAM_SUCCESS);
    EXPECT_THAT(doors.CallsOf({"callback"}), ElementsAre("callback(4294967295, again)"));
}

TEST_F(Registration, WorksWhileTheAlertSystemDoesNotRun) {
    InstallCallback();
    EXPECT_EQ(_oamAlertRegister(5), OAM_SUCCESS);
    EXPECT_EQ(Raise("too early"), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_THAT(doors.Calls(), IsEmpty());
    EXPECT_EQ(AlertInit(), OAM_SUCCESS);
    EXPECT_EQ(Raise("now"), OAM_SUCCESS);
    EXPECT_EQ(doors.CallsOf({"callback"}).back(), "callback(5, now)");
}

}  // namespace
}  // namespace oam::test
