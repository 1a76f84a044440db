// Looking for boards in the chassis: what the plug-ins are asked, and what the Supervisor then
// tells as "DetectedBoards".
#include <stdexcept>

#include "boards.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Detection : public ServiceTest {
  protected:
    void AddDetecting(const std::string& file, std::vector<DetectedBoard> boards,
                      std::vector<std::string> products = {}) {
        AddPlugin(file, [&](ModuleScript& script) {
            script.detected = std::move(boards);
            script.products = std::move(products);
        });
    }
    // "<name>/<product>/<bus>/<slot>" of each detected board.
    std::vector<std::string> Found() const {
        std::vector<std::string> boards;
        const Answer count = KeywordOf("Supervisor", "DetectedBoards.Count");
        EXPECT_EQ(count.code, OAM_SUCCESS);
        for (int i = 0; i < std::atoi(count.text.c_str()); ++i) {
            const std::string element = "DetectedBoards[" + std::to_string(i) + "]";
            std::string board;
            for (const char* field :
                 {".Name", ".Product", ".Location.PCI.Bus", ".Location.PCI.Slot"}) {
                const Answer value = KeywordOf("Supervisor", element + field);
                EXPECT_EQ(value.code, OAM_SUCCESS) << element << field;
                board += (board.empty() ? "" : "/") + value.text;
            }
            boards.push_back(board);
        }
        return boards;
    }
    void DetectQuietly() {
        recorder.Clear();
        EXPECT_EQ(_oamDetectBoards(), OAM_SUCCESS);
    }
};

TEST_F(Detection, NeedsARunningService) {
    AddPlugin("rec.bpi");
    EXPECT_EQ(_oamDetectBoards(), OAMERR_SERVER_NOT_RUNNING);
    Start();
    EXPECT_EQ(_oamDetectBoards(), OAM_SUCCESS);
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_EQ(_oamDetectBoards(), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_EQ(recorder.Count("DetectBoards"), 1u);
}

TEST_F(Detection, GoesOnWithThePluginsThatAnImportHasLoadedAnewMeanwhile) {
    AddDetecting("rec.bpi", {{"Found", "Prod", "1", "2"}}, {"Prod"});
    Start();
    const std::string file = home.Path("export");
    EXPECT_EQ(_oamConfigExport(file.c_str()), OAM_SUCCESS);
    recorder.Script("rec.bpi", [&](ModuleScript& script) {
        script.detectBoards = [&] {
            std::thread([&] { EXPECT_EQ(_oamConfigImport(file.c_str()), OAM_SUCCESS); }).join();
            return 0u;
        };
    });
    EXPECT_EQ(_oamDetectBoards(), OAM_SUCCESS);
    EXPECT_THAT(Found(), ElementsAre("Found/Prod/1/2"));
    EXPECT_EQ(KeywordOf("Supervisor", "Products.Count"), Is("1"));
}

TEST_F(Detection, FindsNothingWithoutPlugins) {
    Start();
    EXPECT_EQ(_oamDetectBoards(), OAM_SUCCESS);
    EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(Detection, AsksThePluginAndThenReadsItsObject) {
    AddDetecting("rec.bpi", {{"B1", "Card", "1", "11"}, {"B2", "Card", "2", "12"}});
    Start();
    DetectQuietly();
    EXPECT_THAT(recorder.Lines(),
                ElementsAre("rec.bpi DetectBoards()", "rec.bpi OpenObject(0)",
                            "rec.bpi GetKeyword(DetectedBoards.Count, 128)",
                            "rec.bpi GetKeyword(DetectedBoards[0].Name, 128)",
                            "rec.bpi GetKeyword(DetectedBoards[0].Product, 128)",
                            "rec.bpi GetKeyword(DetectedBoards[0].Location.PCI.Bus, 128)",
                            "rec.bpi GetKeyword(DetectedBoards[0].Location.PCI.Slot, 128)",
                            "rec.bpi GetKeyword(DetectedBoards[1].Name, 128)",
                            "rec.bpi GetKeyword(DetectedBoards[1].Product, 128)",
                            "rec.bpi GetKeyword(DetectedBoards[1].Location.PCI.Bus, 128)",
                            "rec.bpi GetKeyword(DetectedBoards[1].Location.PCI.Slot, 128)",
                            "rec.bpi CloseObject()"));
    EXPECT_THAT(Found(), ElementsAre("B1/Card/1/11", "B2/Card/2/12"));
}

TEST_F(Detection, AsksThePluginsInTheOrderOfTheirNames) {
    for (const char* file : {"c.bpi", "B.bpi", "a.bpi"}) AddPlugin(file);
    Start();
    DetectQuietly();
    EXPECT_THAT(recorder.Lines({"DetectBoards", "OpenObject"}),
                ElementsAre("a.bpi DetectBoards()", "a.bpi OpenObject(0)", "B.bpi DetectBoards()",
                            "B.bpi OpenObject(0)", "c.bpi DetectBoards()", "c.bpi OpenObject(0)"));
}

TEST_F(Detection, ListsBoardsByNameWithoutRegardToCase) {
    AddDetecting("a.bpi", {{"delta", "P", "1", "1"}, {"Bravo", "P", "2", "2"}});
    AddDetecting("b.bpi", {{"CHARLIE", "Q", "3", "3"}, {"alpha", "Q", "4", "4"}});
    Start();
    DetectQuietly();
    EXPECT_THAT(Found(), ElementsAre("alpha/Q/4/4", "Bravo/P/2/2", "CHARLIE/Q/3/3", "delta/P/1/1"));
}

TEST_F(Detection, FindsMoreThanOneGrowthStep) {
    std::vector<DetectedBoard> boards;
    std::vector<std::string> expected;
    for (int i = 49; i >= 10; --i) {
        boards.push_back({"B" + std::to_string(i), "P", std::to_string(i), "0"});
    }
    for (int i = 10; i <= 49; ++i) {
        expected.push_back("B" + std::to_string(i) + "/P/" + std::to_string(i) + "/0");
    }
    AddDetecting("rec.bpi", boards);
    Start();
    DetectQuietly();
    EXPECT_EQ(Found(), expected);
}

TEST_F(Detection, ReplacesWhatWasFoundBefore) {
    AddDetecting("rec.bpi", {{"B1", "P", "1", "1"}, {"B2", "P", "2", "2"}});
    Start();
    DetectQuietly();
    recorder.Script("rec.bpi", [](ModuleScript& script) {
        script.detected = {{"B3", "P", "3", "3"}};
    });
    DetectQuietly();
    EXPECT_THAT(Found(), ElementsAre("B3/P/3/3"));
    recorder.Script("rec.bpi", [](ModuleScript& script) { script.detected.clear(); });
    DetectQuietly();
    EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(Detection, KeptFindingsOutliveTheServicesStop) {
    AddDetecting("rec.bpi", {{"B1", "P", "1", "2"}});
    Start();
    DetectQuietly();
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_THAT(Found(), ElementsAre("B1/P/1/2"));
}

TEST_F(Detection, ReadsNumbersAsFarAsTheyGo) {
    AddDetecting("rec.bpi", {{"B1", "P", "7th", "x"}, {"B2", "P", "", "-1"}});
    Start();
    DetectQuietly();
    EXPECT_THAT(Found(), ElementsAre("B1/P/7/0", "B2/P/0/-1"));
}

TEST_F(Detection, FindsNothingWhenTheCountCannotBeRead) {
    AddDetecting("rec.bpi", {{"B1", "P", "1", "1"}});
    Start();
    recorder.Script("rec.bpi", [](ModuleScript& script) {
        script.getKeyword = [](unsigned long, const char*, char*, unsigned) { return 0x61u; };
    });
    DetectQuietly();
    EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(Detection, KeptWhateverThePluginsDetectBoardsAnswers) {
    AddDetecting("a.bpi", {{"B1", "P", "1", "1"}});
    AddDetecting("b.bpi", {{"B2", "P", "2", "2"}});
    Start();
    recorder.Script("a.bpi",
                    [](ModuleScript& script) { script.detectBoards = [] { return 0x62u; }; });
    recorder.Script("b.bpi", [](ModuleScript& script) {
        script.detectBoards = []() -> unsigned { throw std::runtime_error("refused"); };
    });
    DetectQuietly();
    EXPECT_THAT(Found(), ElementsAre("B1/P/1/1", "B2/P/2/2"));
}

TEST_F(Detection, KeptFirstOfTwoBoardsWithOneName) {
    AddDetecting("a.bpi", {{"Board", "P", "1", "1"}, {"BOARD", "Q", "2", "2"}});
    AddDetecting("b.bpi", {{"board", "R", "3", "3"}, {"Other", "R", "4", "4"}});
    Start();
    DetectQuietly();
    EXPECT_THAT(Found(), ElementsAre("Board/P/1/1", "Other/R/4/4"));
}

TEST_F(Detection, KeptProductOfTheBoardBeforeWhenItCannotBeRead) {
    AddDetecting("rec.bpi", {{"B1", "First", "1", "1"}, {"B2", "Second", "2", "2"}});
    Start();
    recorder.Script("rec.bpi", [](ModuleScript& script) {
        const std::map<std::string, std::string> known = {
            {"DetectedBoards.Count", "2"},
            {"DetectedBoards[0].Name", "B1"},
            {"DetectedBoards[0].Product", "First"},
            {"DetectedBoards[1].Name", "B2"},
            {"DetectedBoards[0].Location.PCI.Bus", "1"},
            {"DetectedBoards[0].Location.PCI.Slot", "1"},
            {"DetectedBoards[1].Location.PCI.Bus", "2"},
            {"DetectedBoards[1].Location.PCI.Slot", "2"}};
        script.getKeyword = [known](unsigned long, const char* keyword, char* buffer,
                                    unsigned size) -> unsigned {
            auto found = known.find(keyword);
            if (found == known.end() || found->second.size() >= size) return OAMERR_NOT_FOUND;
            found->second.copy(buffer, found->second.size());
            buffer[found->second.size()] = '\0';
            return OAM_SUCCESS;
        };
    });
    DetectQuietly();
    EXPECT_THAT(Found(), ElementsAre("B1/First/1/1", "B2/First/2/2"));
}

// The name of the board before is read again, so the board is dropped as a duplicate.
TEST_F(Detection, KeptNameOfTheBoardBeforeWhenItCannotBeRead) {
    AddDetecting("rec.bpi", {{"B1", "P", "1", "1"}, {std::string(128, 'n'), "P", "2", "2"}});
    Start();
    DetectQuietly();
    EXPECT_THAT(Found(), ElementsAre("B1/P/1/1"));
}

TEST_F(Detection, StopsAtAnObjectThatCannotBeOpened) {
    AddDetecting("a.bpi", {{"B1", "P", "1", "1"}});
    AddDetecting("b.bpi", {{"B2", "P", "2", "2"}});
    AddDetecting("c.bpi", {{"B3", "P", "3", "3"}});
    Start();
    recorder.Script("b.bpi", [](ModuleScript& script) {
        script.openObject = [](unsigned long, unsigned) { return 0x63u; };
    });
    recorder.Clear();
    EXPECT_EQ(_oamDetectBoards(), 0x63u);
    EXPECT_THAT(recorder.Lines({"DetectBoards"}),
                ElementsAre("a.bpi DetectBoards()", "b.bpi DetectBoards()"));
    EXPECT_THAT(Found(), ElementsAre("B1/P/1/1"));
}

TEST_F(Detection, StopsAtAnObjectThatCannotBeClosed) {
    AddDetecting("a.bpi", {{"B1", "P", "1", "1"}});
    AddDetecting("b.bpi", {{"B2", "P", "2", "2"}});
    Start();
    recorder.Script("a.bpi", [](ModuleScript& script) {
        script.closeObject = [](unsigned long) { return 0x64u; };
    });
    recorder.Clear();
    EXPECT_EQ(_oamDetectBoards(), 0x64u);
    EXPECT_THAT(recorder.Lines({"DetectBoards"}), ElementsAre("a.bpi DetectBoards()"));
    EXPECT_THAT(Found(), ElementsAre("B1/P/1/1"));
}

TEST_F(Detection, KeptFailureEmptiesTheProductsUntilTheNextStart) {
    AddDetecting("rec.bpi", {{"B1", "Card", "1", "1"}}, {"Card"});
    Start();
    EXPECT_EQ(CreateBoard("Card"), "Card 0");
    recorder.Script("rec.bpi", [](ModuleScript& script) {
        script.openObject = [](unsigned long, unsigned) { return 0x65u; };
    });
    EXPECT_EQ(_oamDetectBoards(), 0x65u);
    EXPECT_EQ(KeywordOf("Supervisor", "Products.Count"), Is("0"));
    char name[128] = "";
    EXPECT_EQ(_oamCreateBoard("Card", name, sizeof name), OAMERR_NOT_FOUND);
    EXPECT_THAT(BoardNames(), ElementsAre("Card 0"));
    recorder.Script("rec.bpi", [](ModuleScript& script) { script.openObject = nullptr; });
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_EQ(KeywordOf("Supervisor", "Products.Count"), Is("1"));
    EXPECT_THAT(BoardNames(), ElementsAre("Card 0"));
}

TEST_F(Detection, KeptClosingFailureEmptiesTheProductsToo) {
    AddDetecting("rec.bpi", {}, {"Card"});
    Start();
    recorder.Script("rec.bpi", [](ModuleScript& script) {
        script.closeObject = [](unsigned long) { return 0x66u; };
    });
    EXPECT_EQ(_oamDetectBoards(), 0x66u);
    EXPECT_EQ(KeywordOf("Supervisor", "Products.Count"), Is("0"));
}

TEST_F(Detection, ConfiguresNothing) {
    AddDetecting("rec.bpi", {{"B1", "Card", "1", "1"}}, {"Card"});
    Start();
    DetectQuietly();
    EXPECT_THAT(BoardNames(), IsEmpty());
    EXPECT_EQ(NumberOf("B1"), NoNumbers(OAMERR_NOT_FOUND));
}

}  // namespace

}  // namespace oam::test
