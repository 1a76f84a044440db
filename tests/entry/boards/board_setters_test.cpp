// The three calls that change a board's record without its configuration.
#include "boards.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using Setters = BoardTest;

TEST_F(Setters, SetAtMostFourMACAddresses) {
    Configure("A");
    Start();
    EXPECT_EQ(SetMACAddresses("a", {"0", "1", "2", "3", "4", "5"}), OAM_SUCCESS);
    EXPECT_THAT(MACAddressesOf("A"), ElementsAre("0", "1", "2", "3", "", "", ""));
    EXPECT_EQ(ByMACAddress("3"), Is("A"));
    EXPECT_EQ(ByMACAddress("4"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(SetMACAddresses("a", {"x"}), OAM_SUCCESS);
    EXPECT_THAT(MACAddressesOf("A"), ElementsAre("x", "", "", "", "", "", ""));
    EXPECT_EQ(ByMACAddress("1"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(Setters, SetMACAddressesOf128Characters) {
    Configure("A");
    Start();
    const std::string longest(128, 'm');
    EXPECT_EQ(SetMACAddresses("A", {longest, "second"}), OAM_SUCCESS);
    EXPECT_EQ(MACAddressOf("A", 0), Is(longest));
    EXPECT_EQ(MACAddressOf("A", 1), Is("second"));
    EXPECT_EQ(ByMACAddress(longest), Is("A"));
}

TEST_F(Setters, SetNoMACAddressesByACountOfZero) {
    Configure("A");
    Start();
    EXPECT_EQ(SetMACAddresses("A", {"0", "1"}), OAM_SUCCESS);
    EXPECT_EQ(_oamBoardSetMACAddress("A", nullptr, 0), OAM_SUCCESS);
    EXPECT_THAT(MACAddressesOf("A"), ElementsAre("", "", "", "", "", "", ""));
    EXPECT_EQ(ByMACAddress("0"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(Setters, ResetTheMACAddressCount) {
    Configure("A");
    Start();
    EXPECT_EQ(SetMACAddresses("A", {"0", "1"}), OAM_SUCCESS);
    EXPECT_EQ(_oamBoardResetMACAddressCount("a"), OAM_SUCCESS);
    EXPECT_THAT(MACAddressesOf("A"), ElementsAre("", "", "", "", "", "", ""));
    EXPECT_EQ(ByMACAddress("0"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(ByMACAddress("1"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(Setters, SetShelfAndSlotInThisOrder) {
    Configure("A");
    Start();
    EXPECT_EQ(_oamBoardSetShelfSlot("a", 5, 6), OAM_SUCCESS);
    EXPECT_EQ(ShelfSlotOf("A"), Are(5, 6));
    EXPECT_EQ(ByShelfSlot(5, 6), Is("A"));
    EXPECT_EQ(ByShelfSlot(6, 5), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(ByShelfSlot(32, 32), Fails(OAMERR_NOT_FOUND));
}

TEST_F(Setters, KeptChangesStayInTheTableOnly) {
    Configure("A", {{"Location.CPCI.Shelf", "1"},
                    {"Location.CPCI.Slot", "2"},
                    {kMacCount, "1"},
                    {MacKeyword(0), "m0"}});
    Start();
    const std::string file = home.ReadDataFile("Obj0.xmo");
    const std::string segment = home.Read("shm/OAM_BoardIDsShadow");
    alerts.Clear();
    recorder.Clear();
    EXPECT_EQ(_oamBoardSetShelfSlot("A", 7, 8), OAM_SUCCESS);
    EXPECT_EQ(SetMACAddresses("A", {"n0", "n1"}), OAM_SUCCESS);
    EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), file);
    EXPECT_EQ(home.Read("shm/OAM_BoardIDsShadow"), segment);
    EXPECT_EQ(StoredKeywordOf("A", "Location.CPCI.Shelf"), Is("1"));
    EXPECT_THAT(alerts.Heard(), IsEmpty());
    EXPECT_THAT(recorder.Lines(), IsEmpty());
}

TEST_F(Setters, KeptChangesLastUntilTheNextCommittedOne) {
    Configure("A", {{"Location.CPCI.Shelf", "1"},
                    {"Location.CPCI.Slot", "2"},
                    {"Location.PCI.Bus", "0"},
                    {kMacCount, "1"},
                    {MacKeyword(0), "m0"}});
    Start();
    EXPECT_EQ(_oamBoardSetShelfSlot("A", 7, 8), OAM_SUCCESS);
    EXPECT_EQ(SetMACAddresses("A", {"n0", "n1"}), OAM_SUCCESS);
    EXPECT_EQ(Change("A", "Location.PCI.Bus", "9"), OAM_SUCCESS);
    EXPECT_EQ(ShelfSlotOf("A"), Are(1, 2));
    EXPECT_THAT(MACAddressesOf("A"), ElementsAre("m0", "", "", "", "", "", ""));
}

TEST_F(Setters, KeptChangesLastUntilARestart) {
    Configure("A", {{"Location.CPCI.Shelf", "1"}, {"Location.CPCI.Slot", "2"}});
    Start();
    EXPECT_EQ(_oamBoardSetShelfSlot("A", 7, 8), OAM_SUCCESS);
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_EQ(ShelfSlotOf("A"), Are(1, 2));
}

}  // namespace

}  // namespace oam::test
