// How the products that the plug-ins serve are gathered at the start.
#include <stdexcept>

#include "boards.h"
#include "module_log.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Products : public ServiceTest {
  protected:
    std::vector<std::string> Listed() const {
        std::vector<std::string> names;
        for (int index = 0;; ++index) {
            const Answer name = KeywordOf("Supervisor", "Products[" + std::to_string(index) + "]");
            if (name.code != OAM_SUCCESS) break;
            names.push_back(name.text);
        }
        EXPECT_EQ(KeywordOf("Supervisor", "Products.Count"), Is(std::to_string(names.size())));
        return names;
    }

    // One plug-in whose object answers this keyword so, and every other from its list.
    void Answering(const std::string& file, const std::string& keyword, const std::string& text) {
        recorder.Script(file, [=](ModuleScript& script) {
            const std::vector<std::string> products = script.products;
            script.getKeyword = [=](unsigned long, const char* asked, char* buffer,
                                    unsigned size) -> unsigned {
                if (asked == keyword) return Copy(text, buffer, size);
                for (size_t i = 0; i < products.size(); ++i) {
                    if (asked == "Products[" + std::to_string(i) + "]") {
                        return Copy(products[i], buffer, size);
                    }
                }
                return OAMERR_NOT_FOUND;
            };
        });
    }

    static unsigned Copy(const std::string& text, char* buffer, unsigned size) {
        if (text.size() >= size) return OAMERR_NOT_ENOUGH_MEMORY;
        text.copy(buffer, text.size());
        buffer[text.size()] = '\0';
        return OAM_SUCCESS;
    }
};

TEST_F(Products, AreReadFromThePluginsOwnObjectAfterItsInit) {
    AddPluginFor("rec.bpi", {"One", "Two"});
    Start();
    std::vector<std::string> lines = recorder.Lines();
    ASSERT_FALSE(lines.empty());
    lines.pop_back();  // the start's last alert
    EXPECT_THAT(lines,
                ElementsAre("rec.bpi Init(rec.bpi)", "rec.bpi OpenObject(0)",
                            "rec.bpi GetKeyword(Products.Count, 128)",
                            "rec.bpi GetKeyword(Products[0], 128)",
                            "rec.bpi GetKeyword(Products[1], 128)", "rec.bpi CloseObject()"));
    const auto opened = recorder.Calls("OpenObject");
    const auto closed = recorder.Calls("CloseObject");
    ASSERT_EQ(opened.size(), 1u);
    ASSERT_EQ(closed.size(), 1u);
    EXPECT_NE(opened[0].handle, 0u);
    EXPECT_EQ(closed[0].handle, opened[0].handle);
    for (const auto& read : recorder.Calls("GetKeyword")) {
        EXPECT_EQ(read.handle, opened[0].handle);
        EXPECT_FALSE(read.nullBuffer);
    }
}

TEST_F(Products, AreAskedOfThePluginsInTheOrderOfTheirNames) {
    for (const char* file : {"c.bpi", "B.bpi", "a.bpi"}) AddPlugin(file);
    Start();
    EXPECT_THAT(recorder.Lines({"OpenObject", "CloseObject"}),
                ElementsAre("a.bpi OpenObject(0)", "a.bpi CloseObject()", "B.bpi OpenObject(0)",
                            "B.bpi CloseObject()", "c.bpi OpenObject(0)", "c.bpi CloseObject()"));
}

TEST_F(Products, MayBeNone) {
    AddPlugin("rec.bpi");
    Start();
    EXPECT_THAT(Listed(), IsEmpty());
}

TEST_F(Products, AreListedByNameWithoutRegardToCase) {
    AddPluginFor("b.bpi", {"beta", "Alpha"});
    AddPluginFor("a.bpi", {"GAMMA", "delta"});
    Start();
    EXPECT_THAT(Listed(), ElementsAre("Alpha", "beta", "delta", "GAMMA"));
}

TEST_F(Products, BelongToThePluginThatReportedThem) {
    AddPluginFor("a.bpi", {"Zulu"});
    AddPluginFor("z.bpi", {"Alpha"});
    Start();
    EXPECT_EQ(CreateBoard("Alpha"), "Alpha 0");
    EXPECT_EQ(CreateBoard("Zulu"), "Zulu 0");
    EXPECT_THAT(recorder.Lines({"CreateBoard"}), ElementsAre("z.bpi CreateBoard(Alpha 0, Alpha)",
                                                             "a.bpi CreateBoard(Zulu 0, Zulu)"));
}

TEST_F(Products, MayBeMoreThanOneGrowthStep) {
    std::vector<std::string> expected;
    for (int i = 10; i <= 49; ++i) expected.push_back("P" + std::to_string(i));
    AddPluginFor("rec.bpi", {expected.rbegin(), expected.rend()});
    Start();
    EXPECT_EQ(Listed(), expected);
}

TEST_F(Products, AreGatheredAfreshByEveryStart) {
    AddPluginFor("rec.bpi", {"One", "Two"});
    Start();
    recorder.Script("rec.bpi", [](ModuleScript& script) { script.products = {"Two", "Three"}; });
    EXPECT_EQ(_oamRestart(), OAM_SUCCESS);
    EXPECT_THAT(Listed(), ElementsAre("Three", "Two"));
}

TEST_F(Products, MayHaveNamesOf127Characters) {
    AddPluginFor("rec.bpi", {std::string(127, 'p')});
    Start();
    EXPECT_THAT(Listed(), ElementsAre(std::string(127, 'p')));
}

TEST_F(Products, StopTheStartWhenANameDoesNotFit) {
    AddPluginFor("rec.bpi", {std::string(128, 'p')});
    EXPECT_EQ(_oamInit(), OAMERR_NOT_ENOUGH_MEMORY);
}

TEST_F(Products, AreCountedAsFarAsTheCountIsANumber) {
    AddPluginFor("rec.bpi", {"One", "Two", "Three"});
    Answering("rec.bpi", "Products.Count", "2 of them");
    Start();
    EXPECT_THAT(Listed(), ElementsAre("One", "Two"));
}

TEST_F(Products, AreNoneWhenTheCountIsNoNumber) {
    AddPluginFor("rec.bpi", {"One"});
    Answering("rec.bpi", "Products.Count", "several");
    Start();
    EXPECT_THAT(Listed(), IsEmpty());
}

TEST_F(Products, AreNoneWhenTheCountIsNegative) {
    AddPluginFor("rec.bpi", {"One"});
    Answering("rec.bpi", "Products.Count", "-3");
    Start();
    EXPECT_THAT(Listed(), IsEmpty());
}

TEST_F(Products, AreNoneWhenTheCountCannotBeRead) {
    AddPlugin("rec.bpi", [](ModuleScript& script) {
        script.getKeyword = [](unsigned long, const char*, char*, unsigned) { return 0x51u; };
    });
    Start();
    EXPECT_THAT(Listed(), IsEmpty());
    EXPECT_EQ(recorder.Count("CloseObject"), 1u);
}

TEST_F(Products, AreNoneWhenTheCountIsAnsweredWithoutAWord) {
    AddPlugin("rec.bpi", [](ModuleScript& script) {
        script.getKeyword = [](unsigned long, const char*, char*, unsigned) { return 0u; };
    });
    Start();
    EXPECT_THAT(Listed(), IsEmpty());
}

TEST_F(Products, HaveAnEmptyNameWhenItIsAnsweredWithoutAWord) {
    AddPlugin("rec.bpi", [](ModuleScript& script) {
        script.getKeyword = [](unsigned long, const char* asked, char* buffer, unsigned size) {
            return std::string(asked) == "Products.Count" ? Copy("1", buffer, size) : 0u;
        };
    });
    Start();
    EXPECT_THAT(Listed(), ElementsAre(""));
}

TEST_F(Products, StopTheStartWhenOneIsReportedTwice) {
    AddPluginFor("rec.bpi", {"Card", "CARD"});
    EXPECT_EQ(_oamInit(), OAMERR_ALREADY_EXISTS);
    EXPECT_FALSE(g_bOamIsRunning);
    EXPECT_THAT(recorder.Lines({"CloseObject", "Exit"}),
                ElementsAre("rec.bpi CloseObject()", "rec.bpi Exit()"));
}

TEST_F(Products, StopTheStartWhenTwoPluginsReportOne) {
    AddPluginFor("a.bpi", {"Card"});
    AddPluginFor("b.bpi", {"card"});
    EXPECT_EQ(_oamInit(), OAMERR_ALREADY_EXISTS);
    EXPECT_THAT(
        recorder.Lines({"CloseObject", "Exit"}),
        ElementsAre("a.bpi CloseObject()", "b.bpi CloseObject()", "a.bpi Exit()", "b.bpi Exit()"));
}

TEST_F(Products, StopTheStartWhenOneOfTheCountedCannotBeRead) {
    AddPluginFor("rec.bpi", {"One"});
    Answering("rec.bpi", "Products.Count", "2");
    EXPECT_EQ(_oamInit(), OAMERR_NOT_FOUND);
    EXPECT_THAT(recorder.Lines({"CloseObject", "Exit"}),
                ElementsAre("rec.bpi CloseObject()", "rec.bpi Exit()"));
}

TEST_F(Products, StopTheStartWithTheCodeOfARefusedOpening) {
    AddPlugin("a.bpi", [](ModuleScript& script) {
        script.openObject = [](unsigned long, unsigned) { return 0x52u; };
    });
    AddPlugin("b.bpi");
    EXPECT_EQ(_oamInit(), 0x52u);
    EXPECT_THAT(recorder.Lines({"OpenObject", "GetKeyword", "CloseObject"}),
                ElementsAre("a.bpi OpenObject(0)"));
}

TEST_F(Products, StopTheStartWithTheCodeOfARefusedClosing) {
    AddPluginFor("a.bpi", {"Card"});
    AddPlugin("b.bpi");
    recorder.Script("a.bpi", [](ModuleScript& script) {
        script.closeObject = [](unsigned long) { return 0x53u; };
    });
    EXPECT_EQ(_oamInit(), 0x53u);
    EXPECT_EQ(recorder.Count("OpenObject"), 1u);
    EXPECT_THAT(recorder.Lines({"Exit"}), ElementsAre("a.bpi Exit()", "b.bpi Exit()"));
}

TEST_F(Products, StopTheStartWithTheFirstFailureOfTwo) {
    AddPluginFor("rec.bpi", {"Card", "Card"});
    recorder.Script("rec.bpi", [](ModuleScript& script) {
        script.closeObject = [](unsigned long) { return 0x53u; };
    });
    EXPECT_EQ(_oamInit(), OAMERR_ALREADY_EXISTS);
}

TEST_F(Products, StopTheStartWhenAReadingThrows) {
    AddPlugin("rec.bpi", [](ModuleScript& script) {
        script.openObject = [](unsigned long, unsigned) -> unsigned {
            throw std::runtime_error("refused");
        };
    });
    EXPECT_EQ(_oamInit(), OAM_REASON_FAILED);
}

TEST_F(Products, StopTheStartWithoutALineOfTheirOwn) {
    AddPluginFor("rec.bpi", {"Card", "Card"});
    EXPECT_EQ(_oamInit(), OAMERR_ALREADY_EXISTS);
    EXPECT_EQ(StageLines(home.Read("oam/log/startup.log"), kPluginStage),
              LoadingLine("Plug-in", home.Path("lib/rec.bpi")) + DoneLine("Plug-in", "rec.bpi"));
}

TEST_F(Products, LeaveNothingOfAFailedStartBehind) {
    AddPluginFor("rec.bpi", {"One", "Two", "Two"});
    EXPECT_EQ(_oamInit(), OAMERR_ALREADY_EXISTS);
    recorder.Script("rec.bpi", [](ModuleScript& script) { script.products = {"Two"}; });
    Start();
    EXPECT_THAT(Listed(), ElementsAre("Two"));
}

TEST_F(Products, AreNotDetectedBoards) {
    AddPluginFor("rec.bpi", {"Card"});
    Start();
    EXPECT_EQ(recorder.Count("DetectBoards"), 0u);
    EXPECT_EQ(KeywordOf("Supervisor", "DetectedBoards.Count"), Is("0"));
}

}  // namespace

}  // namespace oam::test
