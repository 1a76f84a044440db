// The alert record: its layout, and what becomes of long texts.
#include <cstring>

#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;

// The service's own texts are made long by way of a refused detected board, whose message names two
// boards: one that the test detects and one that is in its place already.
class AlertRecords : public ServiceTest {
  protected:
    static std::string Message(const std::string& detected, const std::string& present) {
        return "Cannot add the Board \"" + detected + "\". The Board \"" + present +
               "\" has already the same bus:slot in the OAM database";
    }

    // The record of a message with this many characters.
    Alert RaiseWithLength(size_t length) {
        const size_t names = length - Message("", "").size();
        const std::string present(names / 2, 'p');
        const std::string detected(names - names / 2, 'd');
        expected_ = Message(detected, present);
        EXPECT_EQ(expected_.size(), length);
        AddPlugin("x.bpi", [&](ModuleScript& script) {
            script.products = {"Prod"};
            script.detected = {{detected, "Prod", "3", "4"}};
        });
        home.WriteDataFile("Obj0.xmo", DataFile(present, {{"Location.PCI.Bus", "3"},
                                                          {"Location.PCI.Slot", "4"},
                                                          {"Name", present},
                                                          {"Number", "0"},
                                                          {"Product", "Prod"}}));
        Start();
        EXPECT_EQ(_oamDetectBoards(), OAM_SUCCESS);
        alerts.Clear();
        EXPECT_EQ(_oamAddDetectedBoard(detected.c_str()), OAMERR_ALREADY_EXISTS);
        const std::vector<Alert> all = alerts.All();
        EXPECT_EQ(all.size(), 1u);
        return all.empty() ? Alert{} : all[0];
    }

    void ExpectCut(const Alert& alert, unsigned size) {
        EXPECT_EQ(alert.source, kSource);
        EXPECT_EQ(alert.text, expected_.substr(0, 255));
        EXPECT_EQ(alert.size, size);
        ASSERT_EQ(alert.raw.size(), size);
        const size_t textEnd = alert.textOffset + 255;
        EXPECT_EQ(alert.raw.substr(textEnd), std::string(size - textEnd, '\0'))
            << "the rest of the record is zero";
    }

    const std::string kSource = "AddDetectedBoard";
    const unsigned kSourceLength = static_cast<unsigned>(kSource.size());
    std::string expected_;
};

TEST_F(AlertRecords, AreHeaderSourceAndTextInOneBlock) {
    Start();
    alerts.Clear();
    EXPECT_EQ(Change("Supervisor", "AutoStopEnabled", "Yes"), OAM_SUCCESS);
    ASSERT_EQ(alerts.All().size(), 1u);
    const Alert alert = alerts.All()[0];
    EXPECT_EQ(alert.code, OAMEVN_MODIFIED);
    EXPECT_EQ(alert.severity, 0u);
    EXPECT_EQ(alert.sourceOffset, 24u);
    EXPECT_EQ(alert.textOffset, 10u + 25u);
    EXPECT_EQ(alert.size, 10u + 26u);
    EXPECT_EQ(alert.raw.substr(24), std::string("Supervisor\0\0", 12));
    uint32_t header[5];
    std::memcpy(header, alert.raw.data(), sizeof header);
    EXPECT_THAT(header, ElementsAre(36, 0x40002007, 0, 24, 35));
}

TEST_F(AlertRecords, TextOf255CharactersIsKeptWhole) {
    const Alert alert = RaiseWithLength(255);
    EXPECT_EQ(alert.text, expected_);
    EXPECT_EQ(alert.size, kSourceLength + 255 + 26);
}

TEST_F(AlertRecords, TextOf256CharactersIsCutTo255AndCountedSo) {
    ExpectCut(RaiseWithLength(256), kSourceLength + 281);
}

TEST_F(AlertRecords, KeptTextOf257CharactersIsCutTo255AndCountedWhole) {
    ExpectCut(RaiseWithLength(257), kSourceLength + 257 + 26);
}

TEST_F(AlertRecords, KeptTextOf300CharactersIsCutTo255AndCountedWhole) {
    ExpectCut(RaiseWithLength(300), kSourceLength + 326);
}

TEST_F(AlertRecords, TextsThatAreNotTheServicesOwnAreNoFormats) {
    const std::string nasty = "50%s%n%d";
    AddPluginFor("x.bpi", {nasty});
    Start();
    const std::string board = CreateBoard(nasty);
    EXPECT_EQ(board, nasty + " 0");
    alerts.Clear();
    EXPECT_EQ(Change(board, "Name", "%x%s"), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_RENAMED, 0, "%x%s", board},
                                            Said{OAMEVN_MODIFIED, 0, "%x%s", ""}));
}

TEST_F(AlertRecords, OffsetsAndNotPositionsFindTheTexts) {
    oam_msg_tag header{};
    const std::string text = "the text";
    const std::string source = "the source";
    header.size = static_cast<uint32_t>(sizeof header + 8 + text.size() + source.size() + 2);
    header.code = OAMEVN_BOARD_DEAD;
    header.severity = 1;
    header.textOffset = sizeof header + 8;
    header.sourceOffset = static_cast<uint32_t>(header.textOffset + text.size() + 1);
    std::string record(header.size, '\0');
    std::memcpy(record.data(), &header, sizeof header);
    std::memcpy(record.data() + header.textOffset, text.data(), text.size());
    std::memcpy(record.data() + header.sourceOffset, source.data(), source.size());
    AddComponent("a.emc");
    Start();
    EXPECT_EQ(Change("Supervisor", "OammonLog", "Yes"), OAM_SUCCESS);
    recorder.Clear();
    alerts.Clear();
    EXPECT_EQ(_oamAlertNotify(AsMessage(record)), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_BOARD_DEAD, 1, source, text}));
    EXPECT_EQ(alerts.All()[0].raw, record);
    EXPECT_THAT(recorder.Lines(),
                ElementsAre("a.emc AlertReceive(1073750024, the source, the text)"));
    EXPECT_THAT(home.Read("oam/log/oammon.log"),
                ::testing::EndsWith("WARNING \"the source\">\nthe text\n"));
}

TEST_F(AlertRecords, OfClientsMayBeLongerThanTheServicesOwn) {
    Start();
    const std::string text(5000, 't');
    alerts.Clear();
    EXPECT_EQ(Raise(OAMEVN_ALERT, 0, "Test", text), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_ALERT, 0, "Test", text}));
}

}  // namespace
}  // namespace oam::test
