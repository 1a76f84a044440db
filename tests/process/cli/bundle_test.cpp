// The archive for support: what is in it, what is not, and that it comes whatever is wrong.
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include "secret_values.h"
#include "tool_test.h"

namespace oam::test {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

class ToolBundle : public ToolTest {
  protected:
    // Makes one and unpacks it: the directory in it.
    fs::path Make() {
        run = Run({"bundle", "all.tar.gz"});
        EXPECT_EQ(run.status, 0) << run.err;
        fs::remove_all(home.Path("unpacked"));
        home.MakeDirectory("unpacked");
        EXPECT_EQ(
            ChildProcess({"/bin/tar", "-xzf", home.Path("all.tar.gz"), "-C", home.Path("unpacked")},
                         home.Root())
                .Finish()
                .status,
            0);
        const auto names = home.List("unpacked");
        EXPECT_EQ(names.size(), 1u);
        return names.empty() ? fs::path() : fs::path("unpacked") / names[0];
    }
    std::string Part(const fs::path& bundle, const char* name) const {
        return home.Read((bundle / name).string());
    }

    Finished run;
};

}  // namespace

TEST_F(ToolBundle, HoldsWhatTheDaemonTellsAndTheFiles) {
    AddSim();
    const Served daemon = Serve(home);
    ChildProcess(ToolCommand({"board", "add", "--all"}), home.Root()).Finish();
    ChildProcess(ToolCommand({"board", "start", "Sim E1 left"}), home.Root()).Finish();
    const auto bundle = Make();
    EXPECT_THAT(Part(bundle, "about.txt"), HasSubstr(home.Root()));
    EXPECT_THAT(Part(bundle, "host.json"), HasSubstr("\"running\": true"));
    EXPECT_THAT(Part(bundle, "doctor.json"), HasSubstr("\"findings\""));
    EXPECT_THAT(Part(bundle, "boards.json"), HasSubstr("Sim E1 left"));
    EXPECT_THAT(Part(bundle, "plugins.json"), HasSubstr("sim.bpi"));
    EXPECT_THAT(Part(bundle, "alerts.json"), HasSubstr("OAMEVN_STARTBOARD_DONE"));
    EXPECT_THAT(Part(bundle, "shadow.json"), HasSubstr("Sim E1 left"));
    EXPECT_THAT(Part(bundle, "check.json"), HasSubstr("\"problems\""));
    EXPECT_THAT(Part(bundle, "log/startup.log"), HasSubstr("DONE"));
    EXPECT_THAT(Part(bundle, "lib.txt"), HasSubstr("sim.bpi"));
    EXPECT_THAT(Part(bundle, "cfg/Super.xmo"), HasSubstr("AutoStartEnabled"));
    EXPECT_EQ(Part(bundle, "not-collected.txt"), "everything was collected\n");
    struct stat facts {};
    ASSERT_EQ(stat(home.Path("all.tar.gz").c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777, 0600u);
}

TEST_F(ToolBundle, SaysWhatThereIsNotWithoutADaemonAndStartsNoService) {
    AddSim();
    home.WriteDataFile("Obj0.xmo", "rubbish");
    const auto bundle = Make();
    EXPECT_THAT(Part(bundle, "not-collected.txt"),
                AllOf(HasSubstr("host.json: "), HasSubstr("alerts.json: ")));
    EXPECT_THAT(run.err, HasSubstr("not collected: host.json"));
    EXPECT_EQ(Part(bundle, "cfg/Obj0.xmo"), "rubbish");
    EXPECT_THAT(Part(bundle, "check.json"), HasSubstr("Obj0.xmo"));
    EXPECT_TRUE(home.Exists("oam/cfg/Obj0.xmo")) << "a start would set it aside";
}

TEST_F(ToolBundle, HoldsNoSecrets) {
    auto entries = StandardEntries("B", "SIM-E1");
    entries.push_back({"Snmp.Community", "hunter2"});
    entries.push_back({"ApiKey", "hunter3"});
    entries.push_back({"Keywords.Count", "4711"});
    home.WriteDataFile("B.xmo", DataFile("B", entries));
    home.Write("oam/cfg/Old.bak", "<x><Password>hunter4");
    const auto bundle = Make();
    EXPECT_THAT(Part(bundle, "cfg/B.xmo"),
                AllOf(Not(HasSubstr("hunter")), HasSubstr("4711"), HasSubstr("(removed)")));
    EXPECT_EQ(Part(bundle, "cfg/Old.bak"), "<x><Password>(removed)");
}

TEST_F(ToolBundle, LeavesNothingBehindAndReplacesAnOldOne) {
    home.Write("all.tar.gz", "old");
    Make();
    Make();
    for (const std::string& name : home.List("."))
        EXPECT_THAT(name, Not(::testing::StartsWith(".oam-bundle")));
}

TEST_F(ToolBundle, IsRefusedWhereNobodyMayWrite) {
    EXPECT_THAT(Run({"bundle", "/nowhere/all.tar.gz"}), Complains(1, "cannot write in"));
}

TEST(SecretValues, AreKnownByTheirKeywords) {
    for (const char* name : {"Password", "snmp.COMMUNITY", "Tls.PrivateKey", "ApiToken", "Pin"})
        EXPECT_TRUE(IsSecretName(name)) << name;
    for (const char* name : {"Name", "Keywords.Count", "Location.PCI.Bus", "Mapping", "AutoStart"})
        EXPECT_FALSE(IsSecretName(name)) << name;
    EXPECT_EQ(WithoutSecrets("<a><Key>x\ny</></a>"), "<a><Key>(removed)</></a>");
    EXPECT_EQ(WithoutSecrets("<a><Key> </></a> <b"), "<a><Key> </></a> <b");
    EXPECT_EQ(WithoutSecrets("no tag"), "no tag");
}

}  // namespace oam::test
