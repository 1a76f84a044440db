// What the tool still tells while no service is to be had: what the board shadow holds.
#include <unistd.h>

#include <filesystem>
#include <optional>

#include "installation.h"
#include "lock_file.h"
#include "tool_test.h"

namespace oam::test {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

class ToolWithoutService : public ToolTest {
  protected:
    void SetUp() override {
        if (IsServed()) GTEST_SKIP() << "a daemon serves";
        AddSim();
        Out({"board", "add", "--all"});
        Out({"set", "Sim E1 left", "Number=7", "XLaw=A-LAW", "Driver.BoardId=b"});
        // As a daemon at its start, or at its end, that nobody can reach.
        lock_.emplace(oam::Installation::Locate(home.Root()), "oamd");
    }

    // Answered by the shadow, and said so.
    std::string FromShadow(const Words& arguments) const {
        const Finished run = Run(arguments);
        EXPECT_EQ(run.status, 0) << ::testing::PrintToString(arguments) << '\n' << run.err;
        EXPECT_THAT(run.err, AllOf(HasSubstr("is in use by process"),
                                   HasSubstr("this is what the board shadow holds")));
        return run.out;
    }

    std::optional<LockFile> lock_;
};

}  // namespace

TEST_F(ToolWithoutService, ListsTheBoardsOfTheShadow) {
    const std::string list = FromShadow({"board", "list"});
    EXPECT_THAT(list, HasSubstr("     7  Sim E1 left   sim     b"));
    EXPECT_THAT(list, HasSubstr("Sim IP upper"));
}

TEST_F(ToolWithoutService, TellsOfABoardWhatTheShadowHas) {
    EXPECT_EQ(FromShadow({"board", "info", "sim e1 LEFT"}),
              "name                Sim E1 left\n"
              "number              7\n"
              "driver              sim\n"
              "board id in driver  b\n"
              "A-law               yes\n");
    const auto info = Json({"board", "info", "Sim E1 left"});
    EXPECT_EQ(info["number"], 7);
    EXPECT_EQ(info["driverName"], "sim");
}

TEST_F(ToolWithoutService, FindsABoardByWhatTheShadowHas) {
    EXPECT_EQ(FromShadow({"board", "lookup", "--number", "7"}), "Sim E1 left\n");
    EXPECT_EQ(FromShadow({"board", "lookup", "--driver", "sim", "b"}), "Sim E1 left\n");
    EXPECT_EQ(Json({"board", "lookup", "--number", "7"})["name"], "Sim E1 left");
}

TEST_F(ToolWithoutService, SaysSoWhereTheShadowHasNothing) {
    const auto isRefused = Complains(3, "no daemon answers");
    EXPECT_THAT(Run({"board", "status", "Sim E1 left"}), isRefused);
    EXPECT_THAT(Run({"board", "lookup", "--product", "SIM-E1"}), isRefused);
    EXPECT_THAT(Run({"board", "start", "Sim E1 left"}), isRefused);
    EXPECT_THAT(Run({"set", "Sim E1 left", "Number=8"}), isRefused);
    EXPECT_THAT(Run({"objects"}), isRefused);
}

TEST_F(ToolWithoutService, DoesNotTakeABoardThatTheShadowLacksForOneThatIsNotThere) {
    const auto isRefused = Complains(3, "the board shadow holds no such board");
    EXPECT_THAT(Run({"board", "info", "Sim E1 middle"}), isRefused);
    EXPECT_THAT(Run({"board", "lookup", "--number", "12345"}), isRefused);
    EXPECT_THAT(Run({"board", "lookup", "--driver", "sim", "c"}), isRefused);
}

// Once there is a service again, it is asked.
TEST_F(ToolWithoutService, AsksItAgainWhenItIsThere) {
    lock_.reset();
    EXPECT_THAT(Run({"board", "info", "Sim E1 middle"}), Complains(4, "Sim E1 middle"));
    EXPECT_THAT(Out({"board", "info", "Sim E1 left"}), HasSubstr("SIM-E1"));
}

// They may ask a daemon and read what is published, and no more.
TEST_F(ToolWithoutService, AnswersThoseWhoMayNotRunTheServiceThemselves) {
    if (geteuid() != 0) GTEST_SKIP() << "this takes another user";
    if (access("/usr/bin/setpriv", X_OK) != 0) GTEST_SKIP() << "no setpriv here";
    lock_.reset();
    namespace fs = std::filesystem;
    for (const char* path : {"", "shm", "oam"}) fs::permissions(home.Path(path), fs::perms(0750));
    fs::permissions(home.Path("oam/cfg"), fs::perms(0700));
    const auto runAsStranger = [&](Words words) {
        words.insert(words.begin(),
                     {"/usr/bin/setpriv", "--reuid=65534", "--regid=" + std::to_string(getegid()),
                      "--clear-groups", OAM_TOOL});
        return ChildProcess(words, "/").Finish();
    };
    if (runAsStranger({"--help"}).status != 0) GTEST_SKIP() << "the build is closed to others";
    const Finished list = runAsStranger({"board", "list"});
    EXPECT_EQ(list.status, 0) << list.err;
    EXPECT_THAT(list.out, HasSubstr("Sim E1 left"));
    EXPECT_THAT(list.err, HasSubstr("this is what the board shadow holds"));
    EXPECT_THAT(runAsStranger({"objects"}), Complains(3, "no daemon answers"));
}

}  // namespace oam::test
