// Adding detected boards to the configuration.
#include "support/file_limit.h"
#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kNothingDetected =
    "No board have been detected. Don't forget to call oamDetectedBoards before calling this "
    "function";

class AddDetected : public ServiceTest {
  protected:
    // A service whose plug-in serves "Prod" and detects these boards.
    void StartDetecting(const std::vector<DetectedBoard>& boards) {
        AddPlugin("x.bpi", [&](ModuleScript& script) {
            script.products = {"Prod"};
            script.detected = boards;
        });
        Start();
        EXPECT_EQ(_oamDetectBoards(), OAM_SUCCESS);
        alerts.Clear();
        recorder.Clear();
    }

    static Said Message(const std::string& text) {
        return {OAMEVN_ALERT, 0, "AddDetectedBoard", text};
    }
    static Said Present(const std::string& name, int number) {
        return Message("The Board \"" + name +
                       "\" is already present in the OAM database with "
                       "Number " +
                       std::to_string(number));
    }
    static Said Occupied(const std::string& name, const std::string& other) {
        return Message("Cannot add the Board \"" + name + "\". The Board \"" + other +
                       "\" has already the same bus:slot in the OAM database");
    }
    std::vector<Said> Messages() { return alerts.HeardFrom("AddDetectedBoard"); }

    std::vector<std::string> Boards() {
        std::vector<std::string> names = Objects();
        std::erase(names, "Supervisor");
        std::erase(names, "x.bpi");
        return names;
    }

    // From the second call of an entry with mode 1 on: the first belongs to the board's creation.
    void FailOpeningAfterCreation() {
        recorder.Script("x.bpi", [this](ModuleScript& script) {
            script.openObject = [this](unsigned long, unsigned mode) {
                return mode == kWrite && ++writerOpens_ > 1 ? 0x99u : 0u;
            };
        });
    }
    void FailSetting(const std::string& keyword) {
        recorder.Script("x.bpi", [keyword](ModuleScript& script) {
            script.setKeyword = [keyword](unsigned long handle, const char* name,
                                          const char* value) {
                if (keyword == name) return 0x99u;
                return unsigned{_oamDbSetKeyword(handle, name, value)};
            };
        });
    }
    void FailClosingAfterCreation() {
        recorder.Script("x.bpi", [this](ModuleScript& script) {
            script.openObject = [this](unsigned long, unsigned mode) {
                if (mode == kWrite) ++writerOpens_;
                return 0u;
            };
            script.closeObject = [this](unsigned long) { return writerOpens_ > 1 ? 0x99u : 0u; };
        });
    }

  private:
    int writerOpens_ = 0;
};

TEST_F(AddDetected, BoardIsCreatedFromItsProductAndRenamed) {
    StartDetecting({{"Front", "Prod", "3", "4"}});
    EXPECT_EQ(_oamAddDetectedBoard("Front"), OAM_SUCCESS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Said{OAMEVN_CREATED, 0, "Prod 0", ""},
                                            Said{OAMEVN_RENAMED, 0, "Front", "Prod 0"},
                                            Said{OAMEVN_MODIFIED, 0, "Front", ""}));
    EXPECT_THAT(Boards(), ElementsAre("Front"));
    EXPECT_EQ(KeywordOf("Front", "Location.PCI.Bus"), Is("3"));
    EXPECT_EQ(KeywordOf("Front", "Location.PCI.Slot"), Is("4"));
    EXPECT_EQ(KeywordOf("Front", "Product"), Is("Prod"));
    unsigned bus = 0;
    unsigned slot = 0;
    EXPECT_EQ(_oamBoardGetBusSlot("Front", &bus, &slot), OAM_SUCCESS);
    EXPECT_EQ(bus, 3u);
    EXPECT_EQ(slot, 4u);
}

TEST_F(AddDetected, KeywordsAreSetInOrderThroughThePlugin) {
    StartDetecting({{"Front", "Prod", "3", "4"}});
    EXPECT_EQ(_oamAddDetectedBoard("Front"), OAM_SUCCESS);
    EXPECT_THAT(
        recorder.Lines({"CreateBoard", "SetKeyword"}),
        ElementsAre("x.bpi CreateBoard(Prod 0, Prod)", "x.bpi SetKeyword(Number, 0)",
                    "x.bpi SetKeyword(Name, Front)", "x.bpi SetKeyword(Location.PCI.Bus, 3)",
                    "x.bpi SetKeyword(Location.PCI.Slot, 4)"));
}

TEST_F(AddDetected, NameIsFoundInAnyCaseAndSpelledAsDetected) {
    StartDetecting({{"Front", "Prod", "3", "4"}});
    EXPECT_EQ(_oamAddDetectedBoard("FRONT"), OAM_SUCCESS);
    EXPECT_THAT(Boards(), ElementsAre("Front"));
}

TEST_F(AddDetected, NothingWasDetected) {
    Start();
    // Boards that an earlier test of this process has detected stay until the next detection.
    if (KeywordOf("Supervisor", "DetectedBoards.Count") != Is("0")) {
        EXPECT_EQ(_oamDetectBoards(), OAM_SUCCESS);
    }
    alerts.Clear();
    for (const char* name : {static_cast<const char*>(nullptr), "", "Front"}) {
        EXPECT_EQ(_oamAddDetectedBoard(name), OAMERR_NOT_FOUND);
        EXPECT_THAT(alerts.Heard(), ElementsAre(Message(kNothingDetected)));
        alerts.Clear();
    }
}

TEST_F(AddDetected, UnknownNameIsNotFoundWithoutAMessage) {
    StartDetecting({{"Front", "Prod", "3", "4"}});
    EXPECT_EQ(_oamAddDetectedBoard("Back"), OAMERR_NOT_FOUND);
    EXPECT_THAT(alerts.All(), IsEmpty());
    EXPECT_THAT(Boards(), IsEmpty());
}

TEST_F(AddDetected, BoardThatIsPresentIsRefused) {
    StartDetecting({{"Front", "Prod", "3", "4"}});
    EXPECT_EQ(_oamAddDetectedBoard("Front"), OAM_SUCCESS);
    EXPECT_EQ(DbChange("Front", "Number", "12"), OAM_SUCCESS);
    alerts.Clear();
    EXPECT_EQ(_oamAddDetectedBoard("front"), OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Present("front", 12)));
}

TEST_F(AddDetected, PresenceIsCheckedBeforeTheDetection) {
    AddPluginFor("x.bpi", {"Prod"});
    Start();
    CreateBoard("Prod");
    alerts.Clear();
    EXPECT_EQ(_oamAddDetectedBoard("Prod 0"), OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Present("Prod 0", 0)));
}

TEST_F(AddDetected, OccupiedPlaceIsRefused) {
    StartDetecting({{"A", "Prod", "3", "4"}, {"B", "Prod", "3", "4"}});
    EXPECT_EQ(_oamAddDetectedBoard("A"), OAM_SUCCESS);
    alerts.Clear();
    EXPECT_EQ(_oamAddDetectedBoard("B"), OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Occupied("B", "A")));
    EXPECT_THAT(Boards(), ElementsAre("A"));
}

TEST_F(AddDetected, EitherOfBusAndSlotMakesAPlace) {
    StartDetecting({{"A", "Prod", "0", "4"},
                    {"B", "Prod", "0", "4"},
                    {"C", "Prod", "3", "0"},
                    {"D", "Prod", "3", "0"}});
    EXPECT_EQ(_oamAddDetectedBoard("A"), OAM_SUCCESS);
    EXPECT_EQ(_oamAddDetectedBoard("B"), OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(_oamAddDetectedBoard("C"), OAM_SUCCESS);
    EXPECT_EQ(_oamAddDetectedBoard("D"), OAMERR_ALREADY_EXISTS);
}

TEST_F(AddDetected, BusAndSlotZeroAreNoPlace) {
    StartDetecting({{"A", "Prod", "0", "0"}, {"B", "Prod", "0", "0"}});
    EXPECT_EQ(_oamAddDetectedBoard("A"), OAM_SUCCESS);
    EXPECT_EQ(_oamAddDetectedBoard("B"), OAM_SUCCESS);
    EXPECT_THAT(Boards(), ElementsAre("A", "B"));
}

TEST_F(AddDetected, BoardThatCannotBeCreatedIsTold) {
    StartDetecting({{"Front", "Unknown", "3", "4"}});
    EXPECT_EQ(_oamAddDetectedBoard("Front"), OAMERR_NOT_FOUND);
    EXPECT_THAT(Messages(), ElementsAre(Message("The Board object \"Unknown 0\" cannot be created "
                                                "(ret=0x40000004)")));
    EXPECT_THAT(Boards(), IsEmpty());
}

TEST_F(AddDetected, BoardThatCannotBeOpenedIsToldAndKeepsItsFirstName) {
    StartDetecting({{"Front", "Prod", "3", "4"}});
    FailOpeningAfterCreation();
    EXPECT_EQ(_oamAddDetectedBoard("Front"), 0x99u);
    EXPECT_THAT(Messages(), ElementsAre(Message("The Board object \"Prod 0\" is already open in "
                                                "R/W mode (ret=0x99)")));
    EXPECT_THAT(Boards(), ElementsAre("Prod 0"));
}

TEST_F(AddDetected, NameThatCannotBeSetIsToldAndTheBoardIsClosed) {
    StartDetecting({{"Front", "Prod", "3", "4"}});
    FailSetting("Name");
    EXPECT_EQ(_oamAddDetectedBoard("Front"), 0x99u);
    EXPECT_THAT(Messages(), ElementsAre(Message("Error when setting the keyword 'Name' with board "
                                                "object \"Prod 0\" (ret=0x99)")));
    EXPECT_EQ(DbChange("Prod 0", "Extra", "x"), OAM_SUCCESS) << "it is closed";
}

TEST_F(AddDetected, NameThatIsNoBoardNameIsTold) {
    StartDetecting({{"<Front>", "Prod", "3", "4"}});
    EXPECT_EQ(_oamAddDetectedBoard("<Front>"), 7u);
    EXPECT_THAT(Messages(), ElementsAre(Message("Error when setting the keyword 'Name' with board "
                                                "object \"Prod 0\" (ret=0x7)")));
}

TEST_F(AddDetected, BusThatCannotBeSetIsTold) {
    StartDetecting({{"Front", "Prod", "3", "4"}});
    FailSetting("Location.PCI.Bus");
    EXPECT_EQ(_oamAddDetectedBoard("Front"), 0x99u);
    EXPECT_THAT(Messages(),
                ElementsAre(Message("Error when setting the keyword 'Location.PCI.Bus' with board "
                                    "object \"Prod 0\" (ret=0x99)")));
    EXPECT_THAT(recorder.Lines({"SetKeyword"}),
                ElementsAre("x.bpi SetKeyword(Number, 0)", "x.bpi SetKeyword(Name, Front)",
                            "x.bpi SetKeyword(Location.PCI.Bus, 3)"));
}

TEST_F(AddDetected, SlotThatCannotBeSetIsTold) {
    StartDetecting({{"Front", "Prod", "3", "4"}});
    FailSetting("Location.PCI.Slot");
    EXPECT_EQ(_oamAddDetectedBoard("Front"), 0x99u);
    EXPECT_THAT(Messages(),
                ElementsAre(Message("Error when setting the keyword 'Location.PCI.Slot' with board "
                                    "object \"Prod 0\" (ret=0x99)")));
}

TEST_F(AddDetected, BoardThatCannotBeClosedIsTold) {
    StartDetecting({{"Front", "Prod", "3", "4"}});
    FailClosingAfterCreation();
    EXPECT_EQ(_oamAddDetectedBoard("Front"), 0x99u);
    EXPECT_THAT(Messages(),
                ElementsAre(Message("Error when closing the board object \"Prod 0\" (ret=0x99)")));
    EXPECT_THAT(Boards(), ElementsAre("Prod 0"));
}

TEST_F(AddDetected, BoardThatFindsNoRoomOnTheDiskIsAWriteErrorAndNotThere) {
    StartDetecting({{"Front", "Prod", "3", "4"}});
    {
        const FileSizeLimit full(0);
        EXPECT_EQ(_oamAddDetectedBoard("Front"), OAMERR_FILE_WRITE_ERROR);
    }
    EXPECT_THAT(Boards(), IsEmpty());
    EXPECT_EQ(_oamAddDetectedBoard("Front"), OAM_SUCCESS);
    EXPECT_THAT(Boards(), ElementsAre("Front"));
}

TEST_F(AddDetected, NameOfAnotherObjectIsTold) {
    home.WriteDataFile("Obj0.xmo", DataFile("Front", {{"Name", "Front"}}));
    StartDetecting({{"Front", "Prod", "3", "4"}});
    EXPECT_EQ(_oamAddDetectedBoard("Front"), OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(Messages(), ElementsAre(Message("Error when setting the keyword 'Name' with board "
                                                "object \"Prod 0\" (ret=0x40000005)")));
}

TEST_F(AddDetected, FormatMarksInNamesAreTextsLikeAllOthers) {
    StartDetecting({{"50%s%n", "Prod", "3", "4"}, {"60%d", "Prod", "3", "4"}});
    EXPECT_EQ(_oamAddDetectedBoard("50%s%n"), OAM_SUCCESS);
    alerts.Clear();
    EXPECT_EQ(_oamAddDetectedBoard("60%d"), OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(alerts.Heard(), ElementsAre(Occupied("60%d", "50%s%n")));
}

TEST_F(AddDetected, AllAreAddedInOrder) {
    StartDetecting({{"c", "Prod", "1", "3"}, {"A", "Prod", "1", "1"}, {"b", "Prod", "1", "2"}});
    EXPECT_EQ(_oamAddDetectedBoard(nullptr), OAM_SUCCESS);
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_THAT(Boards(), ElementsAre("A", "b", "c"));
    EXPECT_THAT(recorder.Lines({"CreateBoard"}), testing::SizeIs(3));
    std::vector<std::string> renamed;
    for (const Said& said : alerts.Heard(OAMEVN_RENAMED)) renamed.push_back(said.source);
    EXPECT_THAT(renamed, ElementsAre("A", "b", "c"));
}

TEST_F(AddDetected, OneAddedOfAllIsASuccess) {
    StartDetecting({{"A", "Prod", "1", "1"},
                    {"B", "Prod", "1", "1"},
                    {"C", "Unknown", "1", "3"},
                    {"D", "Prod", "1", "4"}});
    EXPECT_EQ(_oamAddDetectedBoard("A"), OAM_SUCCESS);
    alerts.Clear();
    EXPECT_EQ(_oamAddDetectedBoard(""), OAM_SUCCESS);
    EXPECT_THAT(Messages(), ElementsAre(Present("A", 0), Occupied("B", "A"),
                                        Message("The Board object \"Unknown 0\" cannot be created "
                                                "(ret=0x40000004)")));
    EXPECT_THAT(Boards(), ElementsAre("A", "D"));
}

TEST_F(AddDetected, NoneAddedOfAllIsTheFirstFailure) {
    StartDetecting({{"A", "Unknown", "1", "1"}, {"B", "Prod", "1", "2"}, {"C", "Prod", "1", "2"}});
    EXPECT_EQ(_oamAddDetectedBoard("B"), OAM_SUCCESS);
    alerts.Clear();
    EXPECT_EQ(_oamAddDetectedBoard(nullptr), OAMERR_NOT_FOUND) << "of A, though B and C exist";
    EXPECT_THAT(Messages(), ElementsAre(Message("The Board object \"Unknown 0\" cannot be created "
                                                "(ret=0x40000004)"),
                                        Present("B", 0), Occupied("C", "B")));
}

TEST_F(AddDetected, AllPresentIsAlreadyExists) {
    StartDetecting({{"A", "Prod", "1", "1"}, {"B", "Prod", "1", "2"}});
    EXPECT_EQ(_oamAddDetectedBoard(nullptr), OAM_SUCCESS);
    EXPECT_EQ(_oamAddDetectedBoard(nullptr), OAMERR_ALREADY_EXISTS);
}

}  // namespace
}  // namespace oam::test
