// An error at every system call that setting aside, dropping and restoring take, with links and on
// a file system that has none: done, or refused with the old data files still there for the next
// start.
#include <errno.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <cstring>
#include <functional>
#include <vector>

#include "aside_room.h"
#include "system_errors.h"
#include "traced_child.h"

namespace oam::test {
namespace {

using ::testing::ElementsAre;
using torture::Decide;
using torture::Decision;
using torture::SystemCall;

enum FileSystem { kWithLinks, kWithoutLinks };

class FailingCalls : public ImportAside, public testing::WithParamInterface<FileSystem> {
  protected:
    struct Trial {
        std::function<void()> prepare;
        std::function<bool()> operation;
        std::function<void(bool done)> check;
    };

    void TryEachCall(const Trial& trial) {
        std::vector<long> calls;
        trial.prepare();
        ASSERT_TRUE(Traced(trial, [&](const SystemCall& call) {
            calls.push_back(call.number);
            return Otherwise(call);
        }));
        trial.check(true);
        size_t refused = 0;
        for (size_t point = 0; point < calls.size(); ++point) {
            for (const Decision& failure : torture::FailuresOf(calls[point])) {
                const bool isShort = failure.kind == Decision::Kind::kShorten;
                SCOPED_TRACE(torture::CallName(calls[point]) + (" (call " + std::to_string(point)) +
                             "): " + (isShort ? "half" : strerrorname_np(failure.error)));
                trial.prepare();
                size_t call = 0;
                bool isDone = false;
                const bool done = Traced(trial, [&](const SystemCall& made) {
                    const bool isBehind = call++ >= point && made.number == calls[point];
                    if (isDone || !isBehind) return Otherwise(made);
                    isDone = true;
                    return failure;
                });
                trial.check(done);
                if (!done) ++refused;
                if (HasFailure()) return;
            }
        }
        EXPECT_GT(refused, 10u) << "there are errors that cannot be overcome";
    }

    void SetAsideBeforeTheImport() {
        WriteOld();
        ASSERT_EQ(SetAside(), OAM_SUCCESS);
        WriteNew();
    }
    // What the next start makes of it.
    void ExpectOldAfterAStart() {
        EXPECT_TRUE(RollBack());
        ExpectOld();
    }

  private:
    static bool Traced(const Trial& trial, const Decide& decide) {
        const int status = torture::RunTraced(
            [&] {
                torture::TraceFromHere();
                const bool done = trial.operation();
                torture::TraceUntilHere();
                return done ? 0 : 1;
            },
            decide);
        EXPECT_TRUE(WIFEXITED(status));
        return WEXITSTATUS(status) == 0;
    }
    // Nothing here is about what the disk keeps, so that no time is spent on it.
    static Decision Otherwise(const SystemCall& call) {
        if (call.number == SYS_fsync) return {Decision::Kind::kFail, 0};
        if (call.number == SYS_link && GetParam() == kWithoutLinks)
            return {Decision::Kind::kFail, EPERM};
        return {};
    }
};

TEST_P(FailingCalls, SetTheOldFilesAsideOrChangeNothing) {
    TryEachCall({[&] { WriteOld(); }, [&] { return SetAside() == OAM_SUCCESS; },
                 [&](bool done) {
                     if (done) ExpectOldIn(kAside);
                     EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), "old 0");
                     ExpectOldAfterAStart();
                 }});
}

TEST_P(FailingCalls, DropTheOldFilesOrKeepThemAll) {
    TryEachCall(
        {[&] { SetAsideBeforeTheImport(); }, [&] { return dropDataFilesAside(directory.c_str()); },
         [&](bool done) {
             if (!done) {
                 ExpectOldIn(kAside);
                 return ExpectOldAfterAStart();
             }
             EXPECT_TRUE(RollBack());
             EXPECT_THAT(home.List("oam/cfg"), ElementsAre("Obj0.xmo", "Obj1.xmo", "notes.txt"));
             EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), "new 0");
         }});
}

TEST_P(FailingCalls, RestoreTheOldFilesOrLeaveItToTheNextStart) {
    TryEachCall({[&] { SetAsideBeforeTheImport(); }, [&] { return RollBack(); },
                 [&](bool done) {
                     if (done) {
                         EXPECT_EQ(home.ReadDataFile("Obj0.xmo"), "old 0");
                     }
                     ExpectOldAfterAStart();
                 }});
}

INSTANTIATE_TEST_SUITE_P(OnAFileSystem, FailingCalls, testing::Values(kWithLinks, kWithoutLinks),
                         [](const auto& row) {
                             return std::string(row.param == kWithLinks ? "WithLinks"
                                                                        : "WithoutLinks");
                         });

}  // namespace
}  // namespace oam::test
