// What all board queries have in common: the running flag, the answer for an unknown board, the
// size of the caller's buffer, and outputs that stay untouched on failure.
#include <cstring>
#include <functional>

#include "boards.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ValuesIn;

constexpr const char* kBoard = "Board A";

// What a query may write into; everything else of it is fixed by its row.
struct Outputs {
    Outputs() { std::memset(buffer, '#', sizeof buffer); }
    bool AreUntouched() const {
        return Outputs().Same(*this) && first == kUntouched && second == kUntouched;
    }
    bool Same(const Outputs& other) const {
        return std::memcmp(buffer, other.buffer, sizeof buffer) == 0;
    }

    char buffer[64];
    unsigned size = sizeof buffer;
    unsigned first = kUntouched;
    unsigned second = kUntouched;
    int status = 0x5A5A;
};

using Query = std::function<oam_result(Outputs&)>;

struct Row {
    const char* name;
    Query known;    // asks for what Board A has
    Query unknown;  // asks for what no board has
};

std::ostream& operator<<(std::ostream& out, const Row& row) { return out << row.name; }

// The queries that answer a text: for each, the text that Board A has.
struct TextRow {
    Row row;
    const char* text;
};

std::ostream& operator<<(std::ostream& out, const TextRow& text) { return out << text.row.name; }

const TextRow kTexts[] = {
    {{"Enum", [](Outputs& o) { return _oamBoardEnum(0, o.buffer, o.size); },
      [](Outputs& o) { return _oamBoardEnum(1, o.buffer, o.size); }},
     kBoard},
    {{"LookupByNumber", [](Outputs& o) { return _oamBoardLookupByNumber(11, o.buffer, o.size); },
      [](Outputs& o) { return _oamBoardLookupByNumber(0, o.buffer, o.size); }},
     kBoard},
    {{"LookupByDriverIDs",
      [](Outputs& o) { return _oamBoardLookupByDriverIDs("drv", "id", o.buffer, o.size); },
      [](Outputs& o) { return _oamBoardLookupByDriverIDs("drv", "di", o.buffer, o.size); }},
     kBoard},
    {{"LookupByBusSlot",
      [](Outputs& o) { return _oamBoardLookupByBusSlot(1, 2, o.buffer, o.size); },
      [](Outputs& o) { return _oamBoardLookupByBusSlot(2, 1, o.buffer, o.size); }},
     kBoard},
    {{"LookupByShelfSlot",
      [](Outputs& o) { return _oamBoardLookupByShelfSlot(3, 4, o.buffer, o.size); },
      [](Outputs& o) { return _oamBoardLookupByShelfSlot(4, 3, o.buffer, o.size); }},
     kBoard},
    {{"LookupByIOAddress",
      [](Outputs& o) { return _oamBoardLookupByIOAddress(500, o.buffer, o.size); },
      [](Outputs& o) { return _oamBoardLookupByIOAddress(501, o.buffer, o.size); }},
     kBoard},
    {{"LookupBySerialNumber",
      [](Outputs& o) { return _oamBoardLookupBySerialNumber("sn-1", o.buffer, o.size); },
      [](Outputs& o) { return _oamBoardLookupBySerialNumber("sn-", o.buffer, o.size); }},
     kBoard},
    {{"LookupByProduct",
      [](Outputs& o) { return _oamBoardLookupByProduct("card", o.buffer, o.size); },
      [](Outputs& o) { return _oamBoardLookupByProduct("Cards", o.buffer, o.size); }},
     kBoard},
    {{"LookupByMACAddress",
      [](Outputs& o) { return _oamBoardLookupByMACAddress("aa:BB", o.buffer, o.size); },
      [](Outputs& o) { return _oamBoardLookupByMACAddress("aa:B", o.buffer, o.size); }},
     kBoard},
    {{"GetMACAddress",
      [](Outputs& o) { return _oamBoardGetMACAddress(kBoard, o.buffer, o.size, 0); },
      [](Outputs& o) { return _oamBoardGetMACAddress("no", o.buffer, o.size, 0); }},
     "AA:BB"},
    {{"GetSerialNumber",
      [](Outputs& o) { return _oamBoardGetSerialNumber(kBoard, o.buffer, o.size); },
      [](Outputs& o) { return _oamBoardGetSerialNumber("no", o.buffer, o.size); }},
     "SN-1"},
    {{"GetProduct", [](Outputs& o) { return _oamBoardGetProduct(kBoard, o.buffer, o.size); },
      [](Outputs& o) { return _oamBoardGetProduct("no", o.buffer, o.size); }},
     "Card"},
};

const char kMac[1][OAM_MAC_TEXT_SIZE] = {"AA:BB"};

const Row kOthers[] = {
    {"GetNumber", [](Outputs& o) { return _oamBoardGetNumber(kBoard, &o.first); },
     [](Outputs& o) { return _oamBoardGetNumber("no", &o.first); }},
    {"GetDriverIDs",
     [](Outputs& o) { return _oamBoardGetDriverIDs(kBoard, o.buffer, 32, o.buffer + 32, 32); },
     [](Outputs& o) { return _oamBoardGetDriverIDs("no", o.buffer, 32, o.buffer + 32, 32); }},
    {"GetBusSlot", [](Outputs& o) { return _oamBoardGetBusSlot(kBoard, &o.first, &o.second); },
     [](Outputs& o) { return _oamBoardGetBusSlot("no", &o.first, &o.second); }},
    {"GetShelfSlot", [](Outputs& o) { return _oamBoardGetShelfSlot(kBoard, &o.first, &o.second); },
     [](Outputs& o) { return _oamBoardGetShelfSlot("no", &o.first, &o.second); }},
    {"SetShelfSlot", [](Outputs&) { return _oamBoardSetShelfSlot(kBoard, 3, 4); },
     [](Outputs&) { return _oamBoardSetShelfSlot("no", 3, 4); }},
    {"ResetMACAddressCount", [](Outputs&) { return _oamBoardResetMACAddressCount(kBoard); },
     [](Outputs&) { return _oamBoardResetMACAddressCount("no"); }},
    {"SetMACAddress", [](Outputs&) { return _oamBoardSetMACAddress(kBoard, kMac, 1); },
     [](Outputs&) { return _oamBoardSetMACAddress("no", kMac, 1); }},
    {"GetIOAddress", [](Outputs& o) { return _oamBoardGetIOAddress(kBoard, &o.first); },
     [](Outputs& o) { return _oamBoardGetIOAddress("no", &o.first); }},
    {"GetAutoStartEnabled",
     [](Outputs& o) { return _oamBoardGetAutoStartEnabled(kBoard, &o.first); },
     [](Outputs& o) { return _oamBoardGetAutoStartEnabled("no", &o.first); }},
    {"GetAutoStopEnabled", [](Outputs& o) { return _oamBoardGetAutoStopEnabled(kBoard, &o.first); },
     [](Outputs& o) { return _oamBoardGetAutoStopEnabled("no", &o.first); }},
    {"SendBuffer", [](Outputs&) { return _oamSendBuffer(kBoard, "abc", 3); },
     [](Outputs&) { return _oamSendBuffer("no", "abc", 3); }},
    {"GetStatus", [](Outputs& o) { return _oamBoardGetStatus(kBoard, 1, &o.status); },
     [](Outputs& o) { return _oamBoardGetStatus("no", 1, &o.status); }},
};

std::vector<Row> allRows() {
    std::vector<Row> rows(std::begin(kOthers), std::end(kOthers));
    for (const TextRow& text : kTexts) rows.push_back(text.row);
    return rows;
}

void configureBoardA(const std::function<void(const Entries&)>& configure) {
    configure({{"Number", "11"},
               {"Driver.Name", "DRV"},
               {"Driver.BoardId", "ID"},
               {"Location.PCI.Bus", "1"},
               {"Location.PCI.Slot", "2"},
               {"Location.PCI.IOAddress", "500"},
               {"Location.CPCI.Shelf", "3"},
               {"Location.CPCI.Slot", "4"},
               {"Eeprom.SerialNum", "SN-1"},
               {"NetworkInterface.Ethernet.Count", "1"},
               {"NetworkInterface.Ethernet[0].MAC_Address", "AA:BB"}});
}

class AnyQuery : public BoardTest, public testing::WithParamInterface<Row> {
  protected:
    void SetUp() override {
        BoardTest::SetUp();
        configureBoardA([this](const Entries& entries) { Configure(kBoard, entries); });
    }
};

TEST_P(AnyQuery, NeedsARunningService) {
    Outputs before;
    EXPECT_EQ(GetParam().known(before), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_TRUE(before.AreUntouched());
    Start();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    Outputs after;
    EXPECT_EQ(GetParam().known(after), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_TRUE(after.AreUntouched());
}

TEST_P(AnyQuery, KnowsTheBoard) {
    Start();
    Outputs outputs;
    EXPECT_EQ(GetParam().known(outputs), OAM_SUCCESS);
}

TEST_P(AnyQuery, DoesNotKnowAnotherBoard) {
    Start();
    recorder.Clear();
    Outputs outputs;
    EXPECT_EQ(GetParam().unknown(outputs), OAMERR_NOT_FOUND);
    EXPECT_TRUE(outputs.AreUntouched());
    EXPECT_EQ(outputs.status, 0x5A5A);
    EXPECT_THAT(recorder.Lines(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Each, AnyQuery, ValuesIn(allRows()),
                         [](const auto& row) { return row.param.name; });

class TextQuery : public BoardTest, public testing::WithParamInterface<TextRow> {
  protected:
    void SetUp() override {
        BoardTest::SetUp();
        configureBoardA([this](const Entries& entries) { Configure(kBoard, entries); });
        Start();
    }
};

TEST_P(TextQuery, AnswersTheTextAsItIsStored) {
    Outputs outputs;
    EXPECT_EQ(GetParam().row.known(outputs), OAM_SUCCESS);
    EXPECT_STREQ(outputs.buffer, GetParam().text);
}

TEST_P(TextQuery, NeedsRoomForTheTerminator) {
    const auto length = static_cast<unsigned>(std::strlen(GetParam().text));
    Outputs exact;
    exact.size = length;
    EXPECT_EQ(GetParam().row.known(exact), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_TRUE(exact.AreUntouched());
    Outputs fitting;
    fitting.size = length + 1;
    EXPECT_EQ(GetParam().row.known(fitting), OAM_SUCCESS);
    EXPECT_STREQ(fitting.buffer, GetParam().text);
    EXPECT_EQ(fitting.buffer[length + 1], '#');
}

TEST_P(TextQuery, TakesABufferOfNoSize) {
    Outputs outputs;
    outputs.size = 0;
    EXPECT_EQ(GetParam().row.known(outputs), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_TRUE(outputs.AreUntouched());
}

INSTANTIATE_TEST_SUITE_P(Each, TextQuery, ValuesIn(kTexts),
                         [](const auto& row) { return row.param.row.name; });

}  // namespace

}  // namespace oam::test
