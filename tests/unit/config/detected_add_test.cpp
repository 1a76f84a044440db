// Adding detected boards: the texts, and the step at which each refusal comes.
#include "config_room.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string Told(const std::string& text) {
    return "AlertNotify(OAMEVN_ALERT, 0, AddDetectedBoard, " + text + ")";
}

constexpr const char* kNoneDetected =
    "No board have been detected. Don't forget to call oamDetectedBoards before calling this "
    "function";

class DetectedAdd : public ConfigRoom {
  protected:
    DetectedAdd() {
        Start();
        doors.Answer("_oamBoardGetNumber", OAMERR_NOT_FOUND);
        doors.Answer("_oamBoardLookupByBusSlot", OAMERR_NOT_FOUND);
        BoardDoor::The().detected = {{"Slot A", "Prod", "1", "2"}};
        // As a plug-in does: the board's keywords exist, and what is set is stored.
        doors.On("BoardCreate", [] {
            unsigned long handle;
            EXPECT_EQ(_oamDbOpenObject("Prod 0", &handle, kProvide), OAM_SUCCESS);
            EXPECT_EQ(_oamDbSetKeyword(handle, "Location.PCI.Bus", ""), OAM_SUCCESS);
            EXPECT_EQ(_oamDbSetKeyword(handle, "Location.PCI.Slot", ""), OAM_SUCCESS);
            return _oamDbCloseObject(handle);
        });
    }
    std::vector<std::string> Tellings() {
        std::vector<std::string> found;
        for (const std::string& call : doors.CallsOf({"AlertNotify"})) {
            if (call.find("AddDetectedBoard") != std::string::npos) found.push_back(call);
        }
        return found;
    }
};

TEST_F(DetectedAdd, CreatesOpensSetsThreeKeywordsAndCloses) {
    EXPECT_EQ(_oamAddDetectedBoard("slot a"), OAM_SUCCESS);
    EXPECT_THAT(doors.CallsOf({"_oamBoardGetNumber", "_oamBoardLookupByBusSlot", "BoardCreate",
                               "BoardSetKeyword", "BoardClose"}),
                ElementsAre("_oamBoardGetNumber(slot a)",
                            "_oamBoardLookupByBusSlot(1, 2, buffer, 128)",
                            "BoardCreate(Prod, Prod 0)",
                            "BoardSetKeyword(Prod 0, handle, Name, Slot A)",
                            "BoardSetKeyword(Prod 0, handle, Location.PCI.Bus, 1)",
                            "BoardSetKeyword(Prod 0, handle, Location.PCI.Slot, 2)",
                            "BoardClose(Prod 0, handle)"));
    EXPECT_THAT(Tellings(), IsEmpty());
}

TEST_F(DetectedAdd, TakenNameIsToldWithItsNumber) {
    doors.Answer("_oamBoardGetNumber", OAM_SUCCESS);
    BoardDoor::The().number = 7;
    EXPECT_EQ(_oamAddDetectedBoard("Slot A"), OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(Tellings(), ElementsAre(Told("The Board \"Slot A\" is already present in the OAM "
                                             "database with Number 7")));
    EXPECT_THAT(doors.CallsOf({"BoardCreate"}), IsEmpty());
}

TEST_F(DetectedAdd, NothingDetectedIsToldWithAndWithoutAName) {
    BoardDoor::The().detected.clear();
    for (const char* name : {"Slot A", "", static_cast<const char*>(nullptr)}) {
        doors.TakeCalls();
        EXPECT_EQ(_oamAddDetectedBoard(name), OAMERR_NOT_FOUND);
        EXPECT_THAT(Tellings(), ElementsAre(Told(kNoneDetected)));
    }
}

TEST_F(DetectedAdd, NameThatWasNotDetectedIsNotTold) {
    EXPECT_EQ(_oamAddDetectedBoard("Slot B"), OAMERR_NOT_FOUND);
    EXPECT_THAT(Tellings(), IsEmpty());
}

TEST_F(DetectedAdd, TakenLocationIsToldWithTheOtherBoard) {
    doors.Answer("_oamBoardLookupByBusSlot", OAM_SUCCESS);
    doors.AnswerText("_oamBoardLookupByBusSlot", "Other");
    EXPECT_EQ(_oamAddDetectedBoard("Slot A"), OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(Tellings(),
                ElementsAre(Told("Cannot add the Board \"Slot A\". The Board \"Other\" has already "
                                 "the same bus:slot in the OAM database")));
}

TEST_F(DetectedAdd, LocationZeroIsNotLookedUp) {
    BoardDoor::The().detected = {{"Slot A", "Prod", "0", "x"}};
    EXPECT_EQ(_oamAddDetectedBoard("Slot A"), OAM_SUCCESS);
    EXPECT_THAT(doors.CallsOf({"_oamBoardLookupByBusSlot"}), IsEmpty());
}

TEST_F(DetectedAdd, FailedCreationIsTold) {
    doors.Answer("BoardCreate", oam_result(0x99));
    EXPECT_EQ(_oamAddDetectedBoard("Slot A"), oam_result(0x99));
    EXPECT_THAT(Tellings(),
                ElementsAre(Told("The Board object \"Prod 0\" cannot be created (ret=0x99)")));
}

TEST_F(DetectedAdd, FailedOpeningIsTold) {
    doors.Answer("BoardOpen", oam_result(0x99));
    EXPECT_EQ(_oamAddDetectedBoard("Slot A"), oam_result(0x99));
    EXPECT_THAT(Tellings(), ElementsAre(Told("The Board object \"Prod 0\" is already open in R/W "
                                             "mode (ret=0x99)")));
}

TEST_F(DetectedAdd, FailedSettingIsToldWithItsKeywordAndCloses) {
    int sets = 0;
    for (int failing = 1; failing <= 3; ++failing) {
        const char* const keywords[] = {"Name", "Location.PCI.Bus", "Location.PCI.Slot"};
        sets = 0;
        doors.TakeCalls();
        doors.On("BoardSetKeyword", [&sets, failing] {
            return ++sets == failing ? oam_result(0x99) : OAM_SUCCESS;
        });
        EXPECT_EQ(_oamAddDetectedBoard("Slot A"), oam_result(0x99));
        EXPECT_THAT(Tellings(),
                    ElementsAre(Told(std::string("Error when setting the keyword '") +
                                     keywords[failing - 1] +
                                     "' with board object \"Prod 0\" (ret=0x99)")));
        EXPECT_EQ(openObjects().Count(), 0);
        EXPECT_EQ(_oamDeleteBoard("Prod 0"), OAM_SUCCESS);
    }
}

TEST_F(DetectedAdd, FailedClosingIsTold) {
    doors.Answer("BoardClose", oam_result(0x99));
    EXPECT_EQ(_oamAddDetectedBoard("Slot A"), oam_result(0x99));
    EXPECT_THAT(Tellings(),
                ElementsAre(Told("Error when closing the board object \"Prod 0\" (ret=0x99)")));
}

TEST_F(DetectedAdd, OfAllSucceedsWhenOneIsAdded) {
    BoardDoor::The().detected = {{"A", "Prod", "0", "0"}, {"B", "Prod", "0", "0"}};
    doors.On("_oamBoardGetNumber", [&] {
        const bool isB = doors.CallsOf({"_oamBoardGetNumber"}).back() == "_oamBoardGetNumber(B)";
        return isB ? OAMERR_NOT_FOUND : OAM_SUCCESS;
    });
    EXPECT_EQ(_oamAddDetectedBoard(nullptr), OAM_SUCCESS);
    EXPECT_EQ(Tellings().size(), 1u);
}

TEST_F(DetectedAdd, OfAllAnswersTheFirstFailureWhenNoneIsAdded) {
    BoardDoor::The().detected = {{"A", "Prod", "0", "0"}, {"B", "Prod", "1", "1"}};
    doors.Answer("BoardCreate", oam_result(0x99));
    doors.Answer("_oamBoardLookupByBusSlot", OAM_SUCCESS);
    doors.AnswerText("_oamBoardLookupByBusSlot", "Other");
    EXPECT_EQ(_oamAddDetectedBoard(""), oam_result(0x99));
    EXPECT_EQ(Tellings().size(), 2u);
}

TEST_F(DetectedAdd, ForeignTextsAreNeverFormats) {
    BoardDoor::The().detected = {{"100%s", "P%n", "0", "0"}};
    doors.Answer("BoardCreate", oam_result(1));
    EXPECT_EQ(_oamAddDetectedBoard("100%s"), oam_result(1));
    EXPECT_THAT(Tellings(),
                ElementsAre(Told("The Board object \"P%n 0\" cannot be created (ret=0x1)")));
}

}  // namespace
}  // namespace oam::test
