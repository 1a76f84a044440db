// What plug-ins hear and say: alerts to each of them, and texts for their own codes.
#include "boards.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class PluginAlerts : public ServiceTest {
  protected:
    static std::string Line(const std::string& file, unsigned code, const std::string& source,
                            const std::string& text) {
        return file + " AlertReceive(" + std::to_string(code) + ", " + source + ", " + text + ")";
    }
    void AnswerWith(const std::string& file, unsigned code) {
        recorder.Script(file, [code](ModuleScript& script) {
            script.alertReceive = [code](const oam_msg_tag*) { return code; };
        });
    }
};

TEST_F(PluginAlerts, ReachEveryPluginInTheOrderOfTheirNames) {
    for (const char* file : {"c.bpi", "B.bpi", "a.bpi"}) AddPlugin(file);
    Start();
    recorder.Clear();
    EXPECT_EQ(Raise(OAMEVN_BOARD_DEAD, 2, "Board 1", "dead"), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines(), ElementsAre(Line("a.bpi", OAMEVN_BOARD_DEAD, "Board 1", "dead"),
                                              Line("B.bpi", OAMEVN_BOARD_DEAD, "Board 1", "dead"),
                                              Line("c.bpi", OAMEVN_BOARD_DEAD, "Board 1", "dead")));
}

TEST_F(PluginAlerts, AnswerTheLastFailure) {
    for (const char* file : {"a.bpi", "b.bpi", "c.bpi"}) AddPlugin(file);
    AnswerWith("a.bpi", 0xD1);
    AnswerWith("b.bpi", 0xD2);
    Start();
    recorder.Clear();
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "test", "text"), 0xD2u);
    EXPECT_EQ(recorder.Count("AlertReceive"), 3u);
}

TEST_F(PluginAlerts, GoOnAfterAPluginThatThrows) {
    for (const char* file : {"a.bpi", "b.bpi"}) AddPlugin(file);
    recorder.Script("a.bpi", [](ModuleScript& script) {
        script.alertReceive = [](const oam_msg_tag*) -> unsigned { throw 1; };
    });
    Start();
    recorder.Clear();
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "test", "text"), OAM_REASON_FAILED);
    EXPECT_EQ(recorder.Count("AlertReceive"), 2u);
}

TEST_F(PluginAlerts, HandOverTheRecordItself) {
    AddPlugin("a.bpi");
    Start();
    const std::string record = MakeRecord(OAMEVN_TRACE, 0, "test", "text");
    const oam_msg_tag* heard = nullptr;
    recorder.Script("a.bpi", [&heard](ModuleScript& script) {
        script.alertReceive = [&heard](const oam_msg_tag* message) {
            heard = message;
            return 0u;
        };
    });
    EXPECT_EQ(_oamAlertNotify(AsMessage(record)), OAM_SUCCESS);
    EXPECT_EQ(heard, AsMessage(record));
}

TEST_F(PluginAlerts, ComeBeforeTheCallback) {
    AddPlugin("a.bpi");
    Start();
    size_t heard = 99;
    recorder.Script("a.bpi", [&](ModuleScript& script) {
        script.alertReceive = [&](const oam_msg_tag*) {
            heard = alerts.Heard(OAMEVN_TRACE).size();
            return 0u;
        };
    });
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "test", "text"), OAM_SUCCESS);
    EXPECT_EQ(heard, 0u);
    EXPECT_EQ(alerts.Heard(OAMEVN_TRACE).size(), 1u);
}

TEST_F(PluginAlerts, AreNotReports) {
    AddPlugin("a.bpi");
    Start();
    recorder.Clear();
    EXPECT_EQ(Raise(OAMEVN_REPORT, 0, "test", "report\n"), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines(), IsEmpty());
}

TEST_F(PluginAlerts, EndWithBoardCommunication) {
    AddPluginFor("a.bpi", {"Card"});
    Start();
    CreateBoard("Card");
    EXPECT_EQ(DbChange("Card 0", "AutoStop", "Yes"), OAM_SUCCESS);
    EXPECT_EQ(Change("Supervisor", "AutoStopEnabled", "Yes"), OAM_SUCCESS);
    recorder.Clear();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines(),
                ElementsAre(Line("a.bpi", OAMEVN_STOPBOARD_REQ, "Card 0", "Stop board in 150ms."),
                            "a.bpi StopBoard(Card 0)",
                            Line("a.bpi", OAMEVN_STOPBOARD_DONE, "Card 0", "Board is stopped."),
                            "a.bpi Exit()"));
    recorder.Clear();
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "test", "text"), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_THAT(recorder.Lines(), IsEmpty());
}

class PluginTexts : public ServiceTest {
  protected:
    void Know(const std::string& file, std::map<unsigned, const char*> texts) {
        AddPlugin(file, [&](ModuleScript& script) { script.texts = std::move(texts); });
    }
};

TEST_F(PluginTexts, AreAskedInTheOrderOfTheNamesUntilOneKnowsTheCode) {
    Know("b.bpi", {{0x30001, "of b"}, {0x30002, "of b"}});
    Know("A.bpi", {{0x30001, "of A"}});
    Know("c.bpi", {{0x30003, "of c"}, {0x30002, "of c"}});
    Start();
    EXPECT_STREQ(_oamGetText(0x30001), "of A");
    EXPECT_STREQ(_oamGetText(0x30002), "of b");
    recorder.Clear();
    EXPECT_STREQ(_oamGetText(0x30003), "of c");
    EXPECT_THAT(recorder.Lines(), ElementsAre("A.bpi GetText(196611)", "b.bpi GetText(196611)",
                                              "c.bpi GetText(196611)"));
    EXPECT_EQ(_oamGetText(0x30004), nullptr);
    EXPECT_EQ(_oamGetText(0), nullptr);
}

TEST_F(PluginTexts, OfTheServiceItselfAreNeverAskedOfAPlugin) {
    Know("a.bpi", {{OAMERR_NOT_FOUND, "mine"}});
    Start();
    recorder.Clear();
    EXPECT_STREQ(_oamGetText(OAMERR_NOT_FOUND), "OAMERR_NOT_FOUND");
    EXPECT_THAT(recorder.Lines(), IsEmpty());
}

TEST_F(PluginTexts, EndWithThePlugins) {
    Know("a.bpi", {{0x30001, "of a"}});
    EXPECT_EQ(_oamGetText(0x30001), nullptr);
    Start();
    EXPECT_STREQ(_oamGetText(0x30001), "of a");
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_EQ(_oamGetText(0x30001), nullptr);
}

TEST_F(PluginTexts, AreNoneOfAPluginThatThrows) {
    AddPlugin("a.bpi", [](ModuleScript& script) {
        script.getText = [](unsigned) -> const char* { throw 1; };
    });
    Know("b.bpi", {{0x30001, "of b"}});
    Start();
    EXPECT_STREQ(_oamGetText(0x30001), "of b");
}

}  // namespace

}  // namespace oam::test
