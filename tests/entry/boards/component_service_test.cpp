// What components serve once they are loaded: their objects, alerts and texts.
#include "boards.h"
#include "queries.h"

namespace oam::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kComponent = "rec.emc";

class ComponentObject : public ServiceTest {
  protected:
    void SetUp() override {
        AddComponent(kComponent);
        AddComponent("other.emc");
        Start();
        recorder.Clear();
    }
    void Script(const Recorder::Change& change) { recorder.Script(kComponent, change); }
};

TEST_F(ComponentObject, IsOpenedReadChangedAndClosedThroughItsComponent) {
    const unsigned long handle = Open(kComponent, kWrite);
    Script([](ModuleScript& script) {
        script.setKeyword = [](unsigned long, const char*, const char*) { return 0u; };
    });
    char buffer[33];
    EXPECT_EQ(_oamGetKeyword(handle, "Name", buffer, sizeof buffer), OAM_SUCCESS);
    EXPECT_EQ(_oamSetKeyword(handle, "Any", "value"), OAM_SUCCESS);
    EXPECT_EQ(_oamGetQualifier(handle, "Name", "Type", buffer, sizeof buffer), OAM_SUCCESS);
    EXPECT_STREQ(buffer, "Object");
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
    EXPECT_THAT(
        recorder.Lines({"OpenObject", "CloseObject", "GetKeyword", "SetKeyword", "GetQualifier"}),
        ElementsAre("rec.emc OpenObject(1)", "rec.emc GetKeyword(Name, 33)",
                    "rec.emc SetKeyword(Any, value)", "rec.emc GetQualifier(Name, Type, 33)",
                    "rec.emc CloseObject()"));
    for (const auto& call : recorder.Calls()) {
        if (call.entry != "AlertReceive") {
            EXPECT_EQ(call.handle, handle) << call.entry;
        }
    }
}

TEST_F(ComponentObject, AnswersWithTheComponentsCodes) {
    const unsigned long handle = Open(kComponent, kWrite);
    Script([](ModuleScript& script) {
        script.getKeyword = [](unsigned long, const char*, char*, unsigned) { return 0xE1u; };
        script.setKeyword = [](unsigned long, const char*, const char*) { return 0xE2u; };
        script.getQualifier = [](unsigned long, const char*, const char*, char*, unsigned) {
            return 0xE3u;
        };
        script.closeObject = [](unsigned long) { return 0xE4u; };
        script.openObject = [](unsigned long, unsigned) { return 0xE5u; };
    });
    EXPECT_EQ(GetKeyword(handle, "Name"), Fails(0xE1));
    EXPECT_EQ(_oamSetKeyword(handle, "Any", "value"), 0xE2u);
    EXPECT_EQ(GetQualifier(handle, "Name", "Type"), Fails(0xE3));
    EXPECT_EQ(_oamCloseObject(handle), 0xE4u);
    unsigned long other = 0;
    EXPECT_EQ(_oamOpenObject(kClient, kComponent, &other, kRead), 0xE5u);
}

TEST_F(ComponentObject, TakesWhatTheComponentThrowsForAFailure) {
    const unsigned long handle = Open(kComponent, kWrite);
    Script([](ModuleScript& script) {
        script.getKeyword = [](unsigned long, const char*, char*, unsigned) -> unsigned {
            throw 1;
        };
        script.setKeyword = [](unsigned long, const char*, const char*) -> unsigned { throw 2; };
        script.getQualifier = [](unsigned long, const char*, const char*, char*,
                                 unsigned) -> unsigned { throw 3; };
        script.closeObject = [](unsigned long) -> unsigned { throw 4; };
        script.openObject = [](unsigned long, unsigned) -> unsigned { throw 5; };
    });
    EXPECT_EQ(GetKeyword(handle, "Name"), Fails(OAM_REASON_FAILED));
    EXPECT_EQ(_oamSetKeyword(handle, "Any", "value"), OAM_REASON_FAILED);
    EXPECT_EQ(GetQualifier(handle, "Name", "Type"), Fails(OAM_REASON_FAILED));
    EXPECT_EQ(_oamCloseObject(handle), OAM_REASON_FAILED);
    unsigned long other = 0;
    EXPECT_EQ(_oamOpenObject(kClient, kComponent, &other, kRead), OAM_REASON_FAILED);
}

TEST_F(ComponentObject, GetsTheDefaultsOfUnknownQualifiers) {
    EXPECT_EQ(QualifierOf(kComponent, "Name", "Min"), Is("0"));
    EXPECT_EQ(QualifierOf(kComponent, "Name", "Unheard"), Fails(OAMERR_NOT_FOUND));
}

TEST_F(ComponentObject, IsNoBoard) {
    EXPECT_THAT(BoardNames(), IsEmpty());
    EXPECT_EQ(_oamDeleteBoard(nullptr), OAM_SUCCESS);
    EXPECT_THAT(Objects(), ElementsAre("other.emc", kComponent, "Supervisor"));
}

TEST_F(ComponentObject, IsFreeInTheNamesThatItTakes) {
    const unsigned long handle = Open(kComponent, kWrite);
    Script([](ModuleScript& script) {
        script.setKeyword = [](unsigned long, const char*, const char*) { return 0u; };
    });
    EXPECT_EQ(_oamSetKeyword(handle, "Name", " <a> "), OAM_SUCCESS);
    EXPECT_EQ(_oamCloseObject(handle), OAM_SUCCESS);
}

class ComponentAlerts : public ServiceTest {
  protected:
    static std::string Line(const std::string& file, const std::string& source,
                            const std::string& text, unsigned code = OAMEVN_ALERT) {
        return file + " AlertReceive(" + std::to_string(code) + ", " + source + ", " + text + ")";
    }
    void AnswerWith(const std::string& file, unsigned code) {
        recorder.Script(file, [code](ModuleScript& script) {
            script.alertReceive = [code](const oam_msg_tag*) { return code; };
        });
    }
};

TEST_F(ComponentAlerts, BeginWhenEveryComponentIsInitialised) {
    for (const char* file : {"b.emc", "a.emc"}) AddComponent(file);
    Start();
    const std::string stars(33, '*');
    const std::string banner =
        stars + "\n            Initializing Plug-in Components\n            " + stars;
    const std::string done = "\t\t\t\t\tDONE";
    EXPECT_THAT(recorder.Lines({"AlertReceive"}),
                ElementsAre(Line("a.emc", "DllMain", done), Line("b.emc", "DllMain", done),
                            Line("a.emc", "DllMain", banner), Line("b.emc", "DllMain", banner),
                            Line("a.emc", "DllMain", done), Line("b.emc", "DllMain", done)));
}

TEST_F(ComponentAlerts, ReachComponentsBeforePluginsAndTheCallback) {
    AddComponent("z.emc");
    AddComponent("y.emc");
    AddPlugin("a.bpi");
    Start();
    recorder.Clear();
    alerts.Clear();
    size_t heard = 99;
    recorder.Script("z.emc", [&](ModuleScript& script) {
        script.alertReceive = [&](const oam_msg_tag*) {
            heard = alerts.All().size();
            return 0u;
        };
    });
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "test", "text"), OAM_SUCCESS);
    EXPECT_THAT(recorder.Lines(), ElementsAre(Line("y.emc", "test", "text", OAMEVN_TRACE),
                                              Line("z.emc", "test", "text", OAMEVN_TRACE),
                                              Line("a.bpi", "test", "text", OAMEVN_TRACE)));
    EXPECT_EQ(heard, 0u);
}

TEST_F(ComponentAlerts, AnswerTheLastFailure) {
    for (const char* file : {"a.emc", "b.emc", "c.emc"}) AddComponent(file);
    Start();
    AnswerWith("a.emc", 0xF1);
    AnswerWith("b.emc", 0xF2);
    recorder.Clear();
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "test", "text"), 0xF2u);
    EXPECT_EQ(recorder.Count("AlertReceive"), 3u);
}

TEST_F(ComponentAlerts, GoOnAfterAComponentThatThrows) {
    for (const char* file : {"a.emc", "b.emc"}) AddComponent(file);
    Start();
    recorder.Script("a.emc", [](ModuleScript& script) {
        script.alertReceive = [](const oam_msg_tag*) -> unsigned { throw 1; };
    });
    recorder.Clear();
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "test", "text"), OAM_REASON_FAILED);
    EXPECT_EQ(recorder.Count("AlertReceive"), 2u);
}

TEST_F(ComponentAlerts, EndWithTheService) {
    AddComponent("a.emc");
    Start();
    recorder.Clear();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_EQ(Raise(OAMEVN_TRACE, 0, "test", "text"), OAMERR_SERVER_NOT_RUNNING);
    EXPECT_THAT(recorder.Lines(), ElementsAre("a.emc Exit()"));
}

class ComponentTexts : public ServiceTest {
  protected:
    void Know(const std::string& file, const char* text) {
        home.AddModule(file.ends_with(".emc") ? "recorder.emc" : "recorder.bpi", file);
        recorder.Script(file, [text](ModuleScript& script) {
            script.texts[0x30001] = text;
            script.texts[OAMERR_NOT_FOUND] = text;
        });
    }
};

TEST_F(ComponentTexts, OfTheFirstNameWin) {
    Know("b.emc", "of b");
    Know("A.emc", "of A");
    Start();
    recorder.Clear();
    EXPECT_STREQ(_oamGetText(0x30001), "of A");
    EXPECT_THAT(recorder.Lines(), ElementsAre("A.emc GetText(196609)"));
}

TEST_F(ComponentTexts, WinOverThePlugins) {
    Know("z.emc", "of z");
    Know("a.bpi", "of a");
    Start();
    EXPECT_STREQ(_oamGetText(0x30001), "of z");
}

TEST_F(ComponentTexts, LeaveOtherCodesToThePlugins) {
    AddComponent("z.emc");
    Know("a.bpi", "of a");
    Start();
    recorder.Clear();
    EXPECT_STREQ(_oamGetText(0x30001), "of a");
    EXPECT_THAT(recorder.Lines(), ElementsAre("z.emc GetText(196609)", "a.bpi GetText(196609)"));
}

TEST_F(ComponentTexts, OfTheServiceItselfAreNeverAsked) {
    Know("z.emc", "of z");
    Start();
    recorder.Clear();
    EXPECT_STREQ(_oamGetText(OAMERR_NOT_FOUND), "OAMERR_NOT_FOUND");
    EXPECT_THAT(recorder.Lines(), IsEmpty());
}

TEST_F(ComponentTexts, EndWithTheService) {
    Know("z.emc", "of z");
    Start();
    EXPECT_STREQ(_oamGetText(0x30001), "of z");
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_EQ(_oamGetText(0x30001), nullptr);
}

// Neither lock nor flag: a component may ask while it is initialised, and is asked itself then.
TEST_F(ComponentTexts, AreKnownBeforeTheServiceRuns) {
    Know("z.emc", "of z");
    const char* known = nullptr;
    recorder.Script("z.emc", [&known](ModuleScript& script) {
        script.init = [&known](const char*) {
            known = _oamGetText(0x30001);
            return 0u;
        };
    });
    Start();
    EXPECT_STREQ(known, "of z");
}

}  // namespace

}  // namespace oam::test
