// Codes and their texts.
#include <thread>

#include "support/service_test.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Codes that no part of the service uses, so that only a module can know them.
constexpr unsigned kForeign = 0x51234567;
constexpr unsigned kForeign2 = 0x51234568;

struct NamedCode {
    unsigned value;
    const char* name;
};

constexpr NamedCode kTable[] = {
    {0x40000000, "OAMERR_BASE"},
    {0x40000001, "OAMERR_SERVER_NOT_FOUND"},
    {0x40000002, "OAMERR_SERVER_NOT_RUNNING"},
    {0x40000003, "OAMERR_NOT_ENOUGH_MEMORY"},
    {0x40000004, "OAMERR_NOT_FOUND"},
    {0x40000005, "OAMERR_ALREADY_EXISTS"},
    {0x40000006, "OAMERR_ACCESS_DENIED"},
    {0x40000007, "OAMERR_FILE_READ_ERROR"},
    {0x40000008, "OAMERR_FILE_WRITE_ERROR"},
    {0x40000009, "OAMERR_CANT_CREATE_THREAD"},
    {0x40000101, "OAMERR_PLUGIN_INIT_FAIL"},
    {0x40000102, "OAMERR_PLUGIN_EXIT_FAIL"},
    {0x40000103, "OAMERR_NOT_SUPPORTED_WARNING"},
    {0x40000104, "OAMERR_AUTO_DETECT_BOARD_FAIL"},
    {0x40000105, "OAMERR_CREATE_BOARD_FAIL"},
    {0x40000106, "OAMERR_DESTORY_BOARD_FAIL"},
    {0x40000107, "OAMERR_GET_BOARD_KEYWORD_FAIL"},
    {0x40000108, "OAMERR_SET_BOARD_KEYWORD_FAIL"},
    {0x40000109, "OAMERR_GET_QUALIFIER_FAIL"},
    {0x4000010A, "OAMERR_OPEN_OBJECT_FAIL"},
    {0x4000010B, "OAMERR_CLOSE_OBJECT_FAIL"},
    {0x4000010C, "OAMERR_START_BOARD_FAIL"},
    {0x4000010D, "OAMERR_STOP_BOARD_FAIL"},
    {0x4000010E, "OAMERR_BOARD_SELFTEST_FAIL"},
    {0x4000010F, "OAMERR_BOARD_SELFTEST_INVALID"},
    {0x40000110, "OAMERR_SEND_BUFFER_FAIL"},
    {0x40000111, "OAMERR_OPEN_DRIVER_FAIL"},
    {0x40000112, "OAMERR_GET_BOARD_STATUS_FAIL"},
    {0x40001000, "OAM_REASON_BASE"},
    {0x40001001, "OAM_REASON_FAILED"},
    {0x40002000, "OAMEVN_BASE"},
    {0x40002001, "OAMEVN_ALERT"},
    {0x40002002, "OAMEVN_REPORT"},
    {0x40002003, "OAMEVN_CREATED"},
    {0x40002004, "OAMEVN_DELETED"},
    {0x40002005, "OAMEVN_RENAMED"},
    {0x40002006, "OAMEVN_TRACE"},
    {0x40002007, "OAMEVN_MODIFIED"},
    {0x40002008, "OAMEVN_BOARD_DEAD"},
    {0x40002009, "OAMEVN_TEMPERATURE_WARNING"},
    {0x4000200A, "OAMEVN_TEMPERATURE_ALERT"},
    {0x4000200B, "OAMEVN_FAN_RPM_WARNING"},
    {0x40002101, "OAMEVN_STARTBOARD_DONE"},
    {0x40002102, "OAMEVN_STOPBOARD_DONE"},
    {0x40002103, "OAMEVN_TESTBOARD_DONE"},
    {0x40002201, "OAMEVN_STOPBOARD_REQ"},
};

class CodeTexts : public ServiceTest {
  protected:
    void AddTexts(const std::string& file, std::map<unsigned, const char*> texts) {
        recorder.Script(file, [&](ModuleScript& script) { script.texts = std::move(texts); });
    }
};

TEST_F(CodeTexts, EveryCodesTextIsItsName) {
    ASSERT_EQ(std::size(kTable), 46u);
    for (const NamedCode& code : kTable) EXPECT_STREQ(_oamGetText(code.value), code.name);
}

TEST_F(CodeTexts, KeptMisspeltDestroyIsPartOfTheInterface) {
    EXPECT_STREQ(_oamGetText(0x40000106), "OAMERR_DESTORY_BOARD_FAIL");
}

TEST_F(CodeTexts, AreStatic) {
    const char* before = _oamGetText(OAMERR_NOT_FOUND);
    Start();
    EXPECT_EQ(_oamGetText(OAMERR_NOT_FOUND), before);
}

TEST_F(CodeTexts, UnknownCodesHaveNone) {
    Start();
    for (unsigned code : {0u, 1u, 7u, 0xf0027u, 0x3FFFFFFFu, 0x4000000Au, 0x40000100u, 0x40000113u,
                          0x40000FFFu, 0x40001002u, 0x40001FFFu, 0x4000200Cu, 0x40002100u,
                          0x40002104u, 0x40002200u, 0x40002202u, 0x80000000u, 0xFFFFFFFFu}) {
        EXPECT_EQ(_oamGetText(code), nullptr) << std::hex << code;
    }
}

TEST_F(CodeTexts, ComponentIsAskedBeforeAnyPlugin) {
    AddPlugin("a.bpi");
    AddComponent("z.emc");
    AddTexts("a.bpi", {{kForeign, "of the plug-in"}, {kForeign2, "of the plug-in alone"}});
    AddTexts("z.emc", {{kForeign, "of the component"}});
    Start();
    EXPECT_STREQ(_oamGetText(kForeign), "of the component");
    EXPECT_THAT(recorder.Lines({"GetText"}),
                ElementsAre("z.emc GetText(" + std::to_string(kForeign) + ")"));
    recorder.Clear();
    EXPECT_STREQ(_oamGetText(kForeign2), "of the plug-in alone");
    EXPECT_THAT(recorder.Lines({"GetText"}),
                ElementsAre("z.emc GetText(" + std::to_string(kForeign2) + ")",
                            "a.bpi GetText(" + std::to_string(kForeign2) + ")"));
}

TEST_F(CodeTexts, FirstComponentInNameOrderWins) {
    for (const char* file : {"b.emc", "C.emc", "A.emc"}) AddComponent(file);
    AddTexts("b.emc", {{kForeign, "b"}});
    AddTexts("C.emc", {{kForeign, "C"}, {kForeign2, "C"}});
    Start();
    EXPECT_STREQ(_oamGetText(kForeign), "b");
    EXPECT_STREQ(_oamGetText(kForeign2), "C");
}

TEST_F(CodeTexts, FirstPluginInNameOrderWins) {
    for (const char* file : {"b.bpi", "C.bpi", "A.bpi"}) AddPlugin(file);
    AddTexts("b.bpi", {{kForeign, "b"}});
    AddTexts("C.bpi", {{kForeign, "C"}, {kForeign2, "C"}});
    Start();
    EXPECT_STREQ(_oamGetText(kForeign), "b");
    EXPECT_STREQ(_oamGetText(kForeign2), "C");
}

TEST_F(CodeTexts, ModulesAreNeverAskedForTheServicesOwnCodes) {
    AddPlugin("a.bpi");
    AddComponent("c.emc");
    AddTexts("a.bpi", {{OAMERR_NOT_FOUND, "usurped"}});
    AddTexts("c.emc", {{OAMERR_NOT_FOUND, "usurped"}});
    Start();
    for (const NamedCode& code : kTable) EXPECT_STREQ(_oamGetText(code.value), code.name);
    EXPECT_THAT(recorder.Lines({"GetText"}), IsEmpty());
}

TEST_F(CodeTexts, ModulesAreAskedForTheGapsAndForZero) {
    AddPlugin("a.bpi");
    AddTexts("a.bpi", {{0, "zero"}, {0x40000100, "gap"}});
    Start();
    EXPECT_STREQ(_oamGetText(0), "zero");
    EXPECT_STREQ(_oamGetText(0x40000100), "gap");
}

TEST_F(CodeTexts, EmptyTextOfAComponentIsAnAnswer) {
    AddPlugin("a.bpi");
    AddComponent("c.emc");
    AddTexts("a.bpi", {{kForeign, "of the plug-in"}});
    AddTexts("c.emc", {{kForeign, ""}});
    Start();
    EXPECT_STREQ(_oamGetText(kForeign), "");
}

TEST_F(CodeTexts, PluginWithoutTheEntryKnowsNone) {
    home.AddModule("recorder_minimal.bpi", "a.bpi");
    AddPlugin("b.bpi");
    AddTexts("b.bpi", {{kForeign, "b"}});
    Start();
    EXPECT_STREQ(_oamGetText(kForeign), "b");
    EXPECT_EQ(_oamGetText(kForeign2), nullptr);
}

TEST_F(CodeTexts, OfModulesEndWithTheService) {
    AddPlugin("a.bpi");
    AddComponent("c.emc");
    AddTexts("a.bpi", {{kForeign, "text"}});
    AddTexts("c.emc", {{kForeign2, "text"}});
    EXPECT_EQ(_oamGetText(kForeign), nullptr);
    Start();
    EXPECT_EQ(_oamExit(), OAM_SUCCESS);
    EXPECT_EQ(_oamGetText(kForeign), nullptr);
    EXPECT_EQ(_oamGetText(kForeign2), nullptr);
}

TEST_F(CodeTexts, AreAnsweredWhileAModuleIsBusyWithAnAlert) {
    Latch latch;
    AddComponent("a.emc", [&](ModuleScript& script) {
        script.texts = {{kForeign, "text"}};
        script.alertReceive = [&](const oam_msg_tag* message) {
            if (message->code == OAMEVN_BOARD_DEAD) latch.Wait();
            return 0u;
        };
    });
    Start();
    std::thread raiser([] { (void)Raise(OAMEVN_BOARD_DEAD, 2, "Test", "text"); });
    EXPECT_TRUE(latch.WaitForArrival());
    EXPECT_STREQ(_oamGetText(kForeign), "text") << "no lock is taken";
    latch.Open();
    raiser.join();
}

}  // namespace
}  // namespace oam::test
