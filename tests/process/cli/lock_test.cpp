// One tool at a time in an installation.
#include <signal.h>
#include <unistd.h>

#include <chrono>

#include "failure.h"
#include "installation.h"
#include "lock_file.h"
#include "tool_test.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;

class ToolLock : public ToolTest {
  protected:
    // Waits until somebody has told that he holds the lock.
    LockHolder AwaitHolder() const {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (std::chrono::steady_clock::now() < limit) {
            const auto holder = LockFile::Holder(Place());
            if (holder && holder->pid) return *holder;
        }
        ADD_FAILURE() << "nobody took the lock";
        return {};
    }

    oam::Installation Place() const { return oam::Installation::Locate(home.Root()); }
};

}  // namespace

TEST_F(ToolLock, ASecondToolIsKeptOutAndToldByWhom) {
    ChildProcess monitor(ToolCommand({"monitor"}), home.Root());
    AwaitHolder();
    const Finished second = Run({"objects"});
    EXPECT_THAT(second, Complains(1, "is in use by process " + std::to_string(monitor.Pid()) +
                                         " (oam monitor)"));
    EXPECT_EQ(second.out, "");
    EXPECT_THAT(Out({"check"}), HasSubstr("in use by process " + std::to_string(monitor.Pid())));
    EXPECT_EQ(Json({"check"})["inUseBy"]["pid"], monitor.Pid());
    EXPECT_EQ(Out({"text", "OAMERR_NOT_FOUND"}), "0x40000004\n");
    Out({"init"});
    monitor.Signal(SIGKILL);
    monitor.Finish();
    Out({"objects"});
}

TEST_F(ToolLock, IsFreeAfterTheHoldersEnd) {
    Out({"objects"});
    EXPECT_FALSE(LockFile::Holder(Place()));
    EXPECT_EQ(home.Read("oam/oam.lock"), "");
}

TEST_F(ToolLock, TheLineOfADeadHolderMeansNothing) {
    home.Write("oam/oam.lock", "1 oam monitor\n");
    EXPECT_FALSE(LockFile::Holder(Place()));
    Out({"objects"});
}

TEST_F(ToolLock, TellsTheHoldersCommandOnOneLine) {
    const LockFile lock(Place(), "oam set x\ny\x1b " + std::string(1000, 'z'));
    const auto holder = LockFile::Holder(Place());
    ASSERT_TRUE(holder);
    EXPECT_EQ(holder->pid, getpid());
    EXPECT_THAT(holder->command, ::testing::StartsWith("oam set x y  zzz"));
    EXPECT_LT(holder->command.size(), 256u);
    EXPECT_THROW(LockFile(Place(), "oam second"), Failure);
}

TEST_F(ToolLock, AHolderThatHasNotToldItsNameIsWaitedForButNotForEver) {
    const LockFile lock(Place(), "oam first");
    home.Write("oam/oam.lock", "rubbish");
    try {
        const LockFile second(Place(), "oam second");
        ADD_FAILURE() << "two holders";
    } catch (const Failure& failure) {
        EXPECT_THAT(failure.what(), HasSubstr("is in use by another process"));
    }
}

TEST_F(ToolLock, ALinkIsNotFollowed) {
    ASSERT_EQ(symlink("/tmp/elsewhere", home.Path("oam/oam.lock").c_str()), 0);
    EXPECT_THAT(Run({"objects"}), Complains(1, "cannot open the lock file"));
}

}  // namespace oam::test
