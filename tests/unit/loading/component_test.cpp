// Components: loaded, bound to their nine entries, asked and ended. The modules are small real
// ones.
#include "doors/config_door.h"
#include "doors/emc.h"
#include "doors/room_test.h"
#include "emc/component.h"
#include "small_module.h"

namespace oam::test {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

class Components : public RoomTest {
  protected:
    Components() { ConfigDoor::The().Reset(); }
    ~Components() override { EmcCommExit(); }

    static std::vector<std::string> Loaded() {
        std::vector<std::string> names;
        for (int i = 0; i < EmcsGetCount(); ++i) names.emplace_back(EmcsGetAt(i));
        return names;
    }
    static oam_msg_tag Message() {
        oam_msg_tag message{};
        message.size = sizeof message;
        return message;
    }
};

TEST_F(Components, ListsTheirFilesUnderAHeading) {
    const SmallModule module(home, "x.emc");
    EXPECT_EQ(EmcCommInit(), OAM_SUCCESS);
    EXPECT_THAT(doors.DebugText(),
                StartsWith("\nListing of EMC files found:\n"
                           "\nFILENAME        SIZE  DATE                      ATTR\n"
                           "--------        ----  ----                      ----\n"
                           "x.emc        "));
    EXPECT_THAT(doors.Calls(),
                ElementsAre(HasSubstr("AlertNotify(OAMEVN_ALERT, 0, Emc, => Loading "),
                            "CreateObject(x.emc, null)",
                            "AlertNotify(OAMEVN_ALERT, 0, Emc, x.emc DONE)"));
}

TEST_F(Components, TellThatTheDirectoryIsMissing) {
    home.Remove("lib");
    EXPECT_EQ(EmcCommInit(), OAM_SUCCESS);
    EXPECT_THAT(doors.DebugText(),
                HasSubstr("Directory for EMC files \"" + home.Path("lib") + "\" not found.\n"));
}

TEST_F(Components, TellThatThereAreNone) {
    EXPECT_EQ(EmcCommInit(), OAM_SUCCESS);
    EXPECT_THAT(doors.DebugText(), HasSubstr("No EMC files found.\n"));
    EXPECT_THAT(Loaded(), IsEmpty());
}

TEST_F(Components, TellWhatCannotBeLoaded) {
    home.Write("lib/x.emc", "no shared object");
    EXPECT_EQ(EmcCommInit(), oam_result(0xf0027));
    EXPECT_THAT(doors.DebugText(),
                HasSubstr("dlopen " + home.Path("lib/x.emc") + " fail: " + home.Path("lib/x.emc")));
    EXPECT_THAT(doors.Calls(),
                Contains("AlertNotify(OAMEVN_ALERT, 2, Emc, !! FAILED !! (0xf0027))"));
    EXPECT_THAT(Loaded(), IsEmpty());
}

TEST_F(Components, AreListedInNameOrderWithoutRegardToCase) {
    const SmallModule b(home, "B.emc");
    const SmallModule a(home, "a.EMC");
    const SmallModule c(home, "c.emc");
    EXPECT_EQ(EmcCommInit(), OAM_SUCCESS);
    EXPECT_THAT(Loaded(), ElementsAre("a.EMC", "B.emc", "c.emc"));
}

TEST_F(Components, NeedAllOfTheirNineEntries) {
    const SmallModule broken(home, "x.emc", "small_without_get_qualifier");
    EXPECT_EQ(EmcCommInit(), oam_result(ZOL_NO_SYMBOL));
    EXPECT_EQ(broken.Calls(), "Exit()\n") << "bound before the missing one, so it is ended";
    EXPECT_THAT(doors.Calls(), Not(Contains(StartsWith("CreateObject("))));
    EXPECT_THAT(Loaded(), IsEmpty());
}

TEST_F(Components, OptionalEntriesOfAPluginAreRequiredHere) {
    const SmallModule broken(home, "x.emc", "small_without_options");
    EXPECT_EQ(EmcCommInit(), oam_result(ZOL_NO_SYMBOL));
}

TEST_F(Components, AreEndedWhenOneRefusesToStart) {
    const SmallModule module(home, "x.emc");
    module.Answer(0x1234);
    EXPECT_EQ(EmcCommInit(), oam_result(0x1234));
    EXPECT_EQ(module.Calls(), "Init(x.emc)\nExit()\n");
    EXPECT_THAT(doors.Calls(),
                Contains("AlertNotify(OAMEVN_ALERT, 2, Emc, !! FAILED !! (0x1234))"));
    EXPECT_THAT(Loaded(), IsEmpty());
}

TEST_F(Components, LongPathIsAFailureThatIsNotTold) {
    const size_t directory = home.Path("lib/").size();
    home.Write("lib/" + std::string(256 - directory, 'x') + ".emc", "");
    EXPECT_EQ(EmcCommInit(), OAMERR_NOT_ENOUGH_MEMORY);
    EXPECT_THAT(doors.Calls(), IsEmpty());
}

TEST_F(Components, ReceiveAlertsOnlyWhileTheyRun) {
    const SmallModule module(home, "x.emc");
    const oam_msg_tag message = Message();
    EXPECT_EQ(EmcAlertReceive(&message), OAM_SUCCESS);
    EXPECT_EQ(EmcCommInit(), OAM_SUCCESS);
    EXPECT_EQ(EmcAlertReceive(&message), OAM_SUCCESS);
    EmcCommExit();
    EXPECT_EQ(EmcAlertReceive(&message), OAM_SUCCESS);
    EXPECT_EQ(module.Calls(), "Init(x.emc)\nAlertReceive()\nExit()\n");
}

TEST_F(Components, AllReceiveAnAlertAndTheLastFailureCounts) {
    const SmallModule a(home, "a.emc");
    const SmallModule b(home, "b.emc");
    const SmallModule c(home, "c.emc");
    EXPECT_EQ(EmcCommInit(), OAM_SUCCESS);
    a.Answer(1);
    b.Answer(2);
    const oam_msg_tag message = Message();
    EXPECT_EQ(EmcAlertReceive(&message), oam_result(2));
    EXPECT_THAT(c.Calls(), HasSubstr("AlertReceive()"));
    for (const SmallModule* module : {&a, &b, &c}) module->Answer(0);
}

TEST_F(Components, FirstInNameOrderNamesACode) {
    const SmallModule b(home, "b.emc");
    const SmallModule a(home, "a.emc");
    EXPECT_EQ(EmcGetText(5), nullptr);
    EXPECT_EQ(EmcCommInit(), OAM_SUCCESS);
    EXPECT_STREQ(EmcGetText(5), "text of a small module");
    EXPECT_THAT(a.Calls(), HasSubstr("GetText()"));
    EXPECT_THAT(b.Calls(), Not(HasSubstr("GetText()")));
}

TEST_F(Components, AllAreEndedAndTheLastFailureCounts) {
    const SmallModule a(home, "a.emc");
    const SmallModule b(home, "b.emc");
    const SmallModule c(home, "c.emc");
    EXPECT_EQ(EmcCommInit(), OAM_SUCCESS);
    a.Answer(1);
    b.Answer(2);
    EXPECT_EQ(emcsExit(), oam_result(2));
    EXPECT_THAT(c.Calls(), HasSubstr("Exit()"));
    EXPECT_THAT(Loaded(), IsEmpty());
}

TEST_F(Components, ExitIsSafeBeforeAnyStart) {
    EmcCommExit();
    EXPECT_THAT(Loaded(), IsEmpty());
}

}  // namespace
}  // namespace oam::test
