// How the table of boards is filled from the configuration at the start.
#include "boards.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Values;

using TableFromDatabase = BoardTest;

TEST_F(TableFromDatabase, TakesEveryField) {
    Settings({{"AutoStartEnabled", "Yes"}, {"AutoStopEnabled", "Yes"}});
    Configure("Board A", {{"Number", "17"},
                          {"Driver.Name", "drv"},
                          {"Driver.BoardId", "id 5"},
                          {"Location.PCI.Bus", "2"},
                          {"Location.PCI.Slot", "9"},
                          {"Location.PCI.IOAddress", "4294967295"},
                          {"Eeprom.SerialNum", "SN-1"},
                          {"Clocking.HBus.ClockMode", "STANDALONE"},
                          {"AutoStart", "Yes"},
                          {"AutoStop", "Yes"},
                          {"XLaw", "A-LAW"},
                          {"Location.CPCI.Shelf", "3"},
                          {"Location.CPCI.Slot", "14"},
                          {kMacCount, "2"},
                          {MacKeyword(0), "00:11:22:33:44:55"},
                          {MacKeyword(1), "00:11:22:33:44:56"}});
    Start();
    EXPECT_THAT(BoardNames(), ElementsAre("Board A"));
    EXPECT_EQ(NumberOf("Board A"), Are(17));
    EXPECT_EQ(DriverIDsOf("Board A"), Is("drv|id 5"));
    EXPECT_EQ(BusSlotOf("Board A"), Are(2, 9));
    EXPECT_EQ(IOAddressOf("Board A"), Are(4294967295u));
    EXPECT_EQ(SerialNumberOf("Board A"), Is("SN-1"));
    EXPECT_EQ(ProductOf("Board A"), Is("Card"));
    EXPECT_EQ(AutoStartOf("Board A"), Are(1));
    EXPECT_EQ(AutoStopOf("Board A"), Are(1));
    EXPECT_EQ(ShelfSlotOf("Board A"), Are(3, 14));
    EXPECT_THAT(MACAddressesOf("Board A"),
                ElementsAre("00:11:22:33:44:55", "00:11:22:33:44:56", "", "", "", "", ""));
}

TEST_F(TableFromDatabase, TakesDefaultsForWhatIsMissing) {
    Settings({{"AutoStartEnabled", "Yes"}, {"AutoStopEnabled", "Yes"}});
    Configure("Board A", {{"Number", kLeftOut}});
    Start();
    EXPECT_EQ(NumberOf("Board A"), Are(0));
    EXPECT_EQ(DriverIDsOf("Board A"), Is("|"));
    EXPECT_EQ(BusSlotOf("Board A"), Are(0, 0));
    EXPECT_EQ(IOAddressOf("Board A"), Are(0));
    EXPECT_EQ(SerialNumberOf("Board A"), Is(""));
    EXPECT_EQ(AutoStartOf("Board A"), Are(0));
    EXPECT_EQ(AutoStopOf("Board A"), Are(0));
    EXPECT_EQ(ShelfSlotOf("Board A"), Are(32, 32));
    EXPECT_THAT(MACAddressesOf("Board A"), ElementsAre("", "", "", "", "", "", ""));
}

TEST_F(TableFromDatabase, ReadsWithoutAskingThePlugin) {
    Configure("Board A");
    Start();
    for (const auto& call : recorder.Calls("GetKeyword")) {
        EXPECT_EQ(call.arguments.at(0).rfind("Products", 0), 0u) << call.arguments.at(0);
    }
    EXPECT_EQ(recorder.Count("OpenObject"), 1u);  // the plug-in's own object
    EXPECT_EQ(recorder.Count("CreateBoard"), 0u);
}

TEST_F(TableFromDatabase, SortsBoardsByNameWithoutRegardToCase) {
    for (const char* board : {"delta", "Bravo", "alpha", "CHARLIE"}) Configure(board);
    Start();
    EXPECT_THAT(BoardNames(), ElementsAre("alpha", "Bravo", "CHARLIE", "delta"));
    EXPECT_EQ(NumberOf("ALPHA"), Are(2));
}

TEST_F(TableFromDatabase, HoldsMoreThanOneGrowthStep) {
    std::vector<std::string> expected;
    for (int i = 99; i >= 50; --i) Configure("B" + std::to_string(i));
    for (int i = 50; i <= 99; ++i) expected.push_back("B" + std::to_string(i));
    Start();
    EXPECT_EQ(BoardNames(), expected);
    EXPECT_EQ(NumberOf("B50"), Are(49));
}

TEST_F(TableFromDatabase, ReadsNumbersInBaseTenAsFarAsTheyGo) {
    Configure("Board A", {{"Number", "12 and more"},
                          {"Location.PCI.Bus", "0x1F"},
                          {"Location.PCI.Slot", "none"},
                          {"Location.PCI.IOAddress", "010"}});
    Start();
    EXPECT_EQ(NumberOf("Board A"), Are(12));
    EXPECT_EQ(BusSlotOf("Board A"), Are(0, 0));
    EXPECT_EQ(IOAddressOf("Board A"), Are(10));
}

TEST_F(TableFromDatabase, TellsShelfFromSlot) {
    Configure("Board A", {{"Location.CPCI.Shelf", "1"}, {"Location.CPCI.Slot", "2"}});
    Configure("Board B", {{"Location.CPCI.Shelf", "2"}, {"Location.CPCI.Slot", "1"}});
    Start();
    EXPECT_EQ(ByShelfSlot(1, 2), Is("Board A"));
    EXPECT_EQ(ByShelfSlot(2, 1), Is("Board B"));
}

TEST_F(TableFromDatabase, TakesTextsOf127CharactersAndNoLongerOnes) {
    Configure("Board A", {{"Driver.Name", std::string(127, 'd')},
                          {"Driver.BoardId", std::string(128, 'i')},
                          {"Eeprom.SerialNum", std::string(129, 's')}});
    Start();
    EXPECT_EQ(DriverIDsOf("Board A"), Is(std::string(127, 'd') + "|"));
    EXPECT_EQ(SerialNumberOf("Board A"), Is(""));
}

TEST_F(TableFromDatabase, LeavesOutObjectsWithoutAProduct) {
    Configure("Board A");
    Configure("Thing", {{"Product", kLeftOut}});
    Configure("Board Z");
    Start();
    EXPECT_THAT(BoardNames(), ElementsAre("Board A", "Board Z"));
    EXPECT_THAT(Objects(), testing::Contains("Thing"));
}

TEST_F(TableFromDatabase, LeavesOutObjectsOfAnUnknownProduct) {
    Configure("Board A", {{"Product", "Unheard of"}});
    Configure("Board B", {{"Product", std::string(128, 'p')}});
    Start();
    EXPECT_THAT(BoardNames(), IsEmpty());
    EXPECT_EQ(NumberOf("Board A"), NoNumbers(OAMERR_NOT_FOUND));
}

TEST_F(TableFromDatabase, KnowsProductsInAnyCase) {
    Configure("Board A", {{"Product", "cARD"}});
    Start();
    EXPECT_THAT(BoardNames(), ElementsAre("Board A"));
    EXPECT_EQ(ProductOf("Board A"), Is("cARD"));
}

TEST_F(TableFromDatabase, StopsTheStartWhenTwoBoardsHaveOneNumber) {
    Configure("Board A", {{"Number", "5"}});
    Configure("Board B", {{"Number", "5"}});
    EXPECT_EQ(_oamInit(), OAMERR_ALREADY_EXISTS);
    EXPECT_FALSE(g_bOamIsRunning);
    EXPECT_EQ(recorder.Count("Exit"), 1u);
}

TEST_F(TableFromDatabase, StopsTheStartWhenTwoBoardsHaveNoNumber) {
    Configure("Board A", {{"Number", kLeftOut}});
    Configure("Board B", {{"Number", kLeftOut}});
    EXPECT_EQ(_oamInit(), OAMERR_ALREADY_EXISTS);
}

TEST_F(TableFromDatabase, IsEmptyAfterAStartThatItStopped) {
    Configure("Board A", {{"Number", "5"}});
    Configure("Board B", {{"Number", "5"}});
    EXPECT_EQ(_oamInit(), OAMERR_ALREADY_EXISTS);
    home.Remove("oam/cfg/Obj0.xmo");
    Start();
    EXPECT_THAT(BoardNames(), ElementsAre("Board B"));
    EXPECT_EQ(NumberOf("Board B"), Are(5));
}

// Objects that cannot be read are set aside before; this one is spoiled in between.
TEST_F(TableFromDatabase, StopsTheStartWhenAnObjectCannotBeRead) {
    Configure("Board A");
    Configure("Board B");
    Script([this](ModuleScript& script) {
        script.init = [this](const char*) {
            home.WriteDataFile("Obj1.xmo", "<not what it was>");
            return 0u;
        };
    });
    EXPECT_EQ(_oamInit(), OAMERR_FILE_READ_ERROR);
    EXPECT_EQ(recorder.Count("Exit"), 1u);
}

TEST_F(TableFromDatabase, IsFilledAfreshByEveryStart) {
    Configure("Board A");
    Configure("Board B");
    Start();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    home.Remove("oam/cfg/Obj0.xmo");
    Start();
    EXPECT_THAT(BoardNames(), ElementsAre("Board B"));
}

TEST_F(TableFromDatabase, CountsTheMACAddresses) {
    Configure("None", {{kMacCount, "0"}, {MacKeyword(0), "a0"}});
    Configure("Four", {{kMacCount, "4"},
                       {MacKeyword(0), "f0"},
                       {MacKeyword(1), "f1"},
                       {MacKeyword(2), "f2"},
                       {MacKeyword(3), "f3"}});
    Configure("Six", {{kMacCount, "6"},
                      {MacKeyword(0), "s0"},
                      {MacKeyword(1), "s1"},
                      {MacKeyword(2), "s2"},
                      {MacKeyword(3), "s3"},
                      {MacKeyword(4), "s4"},
                      {MacKeyword(5), "s5"}});
    Configure("Gaps", {{kMacCount, "3"}, {MacKeyword(1), "g1"}});
    Start();
    EXPECT_THAT(MACAddressesOf("None"), ElementsAre("", "", "", "", "", "", ""));
    EXPECT_THAT(MACAddressesOf("Four"), ElementsAre("f0", "f1", "f2", "f3", "", "", ""));
    EXPECT_THAT(MACAddressesOf("Six"), ElementsAre("s0", "s1", "s2", "s3", "", "", ""));
    EXPECT_THAT(MACAddressesOf("Gaps"), ElementsAre("", "g1", "", "", "", "", ""));
    EXPECT_EQ(ByMACAddress("a0"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(ByMACAddress("S3"), Is("Six"));
    EXPECT_EQ(ByMACAddress("s4"), Fails(OAMERR_NOT_FOUND));
    EXPECT_EQ(ByMACAddress("G1"), Is("Gaps"));
}

TEST_F(TableFromDatabase, ReadsAFewMACAddressesWhateverTheCountSays) {
    Configure("Board A", {{kMacCount, "4294967295"}, {MacKeyword(0), "m0"}, {MacKeyword(3), "m3"}});
    Start();
    EXPECT_THAT(MACAddressesOf("Board A"), ElementsAre("m0", "", "", "m3", "", "", ""));
}

TEST_F(TableFromDatabase, TakesMACAddressesOf127CharactersAndNotOf129) {
    Configure("Board A", {{kMacCount, "2"},
                          {MacKeyword(0), std::string(127, 'm')},
                          {MacKeyword(1), std::string(129, 'n')}});
    Start();
    EXPECT_THAT(MACAddressesOf("Board A"),
                ElementsAre(std::string(127, 'm'), "", "", "", "", "", ""));
}

using Mark = std::pair<std::string, unsigned>;

class AutomaticMark : public BoardTest, public testing::WithParamInterface<Mark> {};

TEST_P(AutomaticMark, IsYesInAnyCase) {
    const auto& [value, expected] = GetParam();
    Settings({{"AutoStartEnabled", "Yes"}, {"AutoStopEnabled", "Yes"}});
    Configure("Start", {{"AutoStart", value}});
    Configure("Stop", {{"AutoStop", value}});
    Start();
    EXPECT_EQ(AutoStartOf("Start"), Are(expected));
    EXPECT_EQ(AutoStopOf("Start"), Are(0));
    EXPECT_EQ(AutoStartOf("Stop"), Are(0));
    EXPECT_EQ(AutoStopOf("Stop"), Are(expected));
}

INSTANTIATE_TEST_SUITE_P(Values, AutomaticMark,
                         Values(Mark{"Yes", 1}, Mark{"YES", 1}, Mark{"yes", 1}, Mark{"No", 0},
                                Mark{"Y", 0}, Mark{"Yes!", 0}, Mark{"true", 0}, Mark{"1", 0},
                                Mark{"", 0}));

}  // namespace

}  // namespace oam::test
