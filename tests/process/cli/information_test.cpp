// text, shadow, plugin list, plugin check.
#include "tool_test.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;

class ToolInformation : public ToolTest {};

}  // namespace

TEST_F(ToolInformation, ACodeHasANameAndANameACode) {
    EXPECT_EQ(Out({"text", "0x40000106"}), "OAMERR_DESTORY_BOARD_FAIL\n");
    EXPECT_EQ(Out({"text", "1073741828"}), "OAMERR_NOT_FOUND\n");
    EXPECT_EQ(Out({"text", "oamevn_startboard_done"}), "0x40002101\n");
    EXPECT_EQ(
        Json({"text", "OAMEVN_ALERT"}),
        (nlohmann::json{
            {"schema", 1}, {"code", 0x40002001}, {"hex", "0x40002001"}, {"name", "OAMEVN_ALERT"}}));
}

TEST_F(ToolInformation, EveryCodeIsNamedBothWays) {
    const char* const names[] = {
#define OAM_CODE(name, value) #name,
#include "oam/codes.def"
#undef OAM_CODE
    };
    for (const char* name : names) EXPECT_EQ(Json({"text", name})["name"], name);
}

TEST_F(ToolInformation, AnUnknownCodeIsAFailure) {
    for (const char* code : {"OAMERR_BOGUS", "", "-1"})
        EXPECT_THAT(Run({"text", "--", code}), Complains(1, "the service has no code"));
    for (const char* code : {"0", "0x4000000A"})
        EXPECT_THAT(Run({"text", code}), Complains(1, "nobody has the code"));
}

TEST_F(ToolInformation, TextsNeedNoInstallation) {
    EXPECT_EQ(Out({"--dir", "nowhere", "text", "0x40000004"}), "OAMERR_NOT_FOUND\n");
    EXPECT_FALSE(home.Exists("nowhere"));
}

TEST_F(ToolInformation, TheShadowIsWhatWasPublishedLast) {
    EXPECT_EQ(Out({"shadow"}), "NUMBER  NAME  DRIVER  BOARD ID  A-LAW\nvxplugin.bpi: no\n");
    AddSimBoard();
    Out({"set", "Sim E1 left", "Number=7", "XLaw=A-LAW", "Driver.BoardId=b"});
    EXPECT_EQ(Out({"shadow"}),
              "NUMBER  NAME         DRIVER  BOARD ID  A-LAW\n"
              "     7  Sim E1 left  sim     b         yes\n"
              "vxplugin.bpi: no\n");
    const auto shadow = Json({"shadow"});
    EXPECT_EQ(shadow["usesVxPlugin"], false);
    EXPECT_EQ(shadow["boards"][0]["isALaw"], true);
}

TEST_F(ToolInformation, PlugInsAreListedWithTheirProducts) {
    EXPECT_EQ(Out({"plugin", "list"}), "NAME  KIND  PRODUCTS\n");
    AddSim();
    home.AddModule("recorder.emc", "x.emc");
    EXPECT_EQ(Out({"plugin", "list"}),
              "NAME     KIND       PRODUCTS\n"
              "sim.bpi  plug-in    SIM-E1, SIM-IP\n"
              "x.emc    component\n");
    const auto plugins = Json({"plugin", "list"})["plugins"];
    EXPECT_EQ(plugins[0]["products"], nlohmann::json({"SIM-E1", "SIM-IP"}));
}

TEST_F(ToolInformation, CodesOfPlugInsAreNamedByThem) {
    AddSim();
    EXPECT_EQ(Out({"text", "0x50000001"}), "SIM_BOARD_NOT_IN_SLOT\n");
    EXPECT_THAT(Run({"text", "0x5000FFFF"}), Complains(1, "nobody has the code 0x5000ffff"));
}

class ToolPluginCheck : public ToolTest {
  protected:
    void AddWatch(const std::string& as) const {
        std::filesystem::copy(OAM_WATCH_COMPONENT, home.Path(as));
    }
};

TEST_F(ToolPluginCheck, PassesASoundPlugInFromAnywhere) {
    AddWatch("lib/watch.emc");
    EXPECT_THAT(Out({"plugin", "check", "watch.emc"}), HasSubstr("0 errors"));
    EXPECT_EQ(Json({"plugin", "check", home.Path("lib/watch.emc")})["passed"], true);
    EXPECT_TRUE(DataFiles().empty()) << "the installation is left alone";
}

TEST_F(ToolPluginCheck, FindsAFileThatWouldShareItsDataFile) {
    AddSim();
    AddWatch("Super.emc");
    const Finished run = Run({"plugin", "check", "Super.emc"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.out, HasSubstr("\"Super.emc\" would share the data file \"Super.xmo\""));
    AddWatch("sim.other.emc");
    const Finished shared = Run({"plugin", "check", "sim.other.emc", "--json"});
    EXPECT_EQ(shared.status, 1);
    const auto answer = nlohmann::json::parse(shared.out);
    EXPECT_EQ(answer["passed"], false);
    EXPECT_EQ(answer["sharedDataFiles"].size(), 1u);
}

TEST_F(ToolPluginCheck, RefusesWhatItCannotJudge) {
    EXPECT_THAT(Run({"plugin", "check", "nothing.bpi"}), Complains(1, "there is no file"));
    home.Write("lib/text.bpi", "text");
    const Finished run = Run({"plugin", "check", "text.bpi"});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.out, HasSubstr("shared-object"));
}

}  // namespace oam::test
