// A process killed at any moment loses nothing that it has acknowledged, and one restart suffices.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <filesystem>
#include <random>

#include "expected_boards.h"
#include "support/installation.h"
#include "worker_process.h"

namespace {

namespace fs = std::filesystem;
using std::chrono::microseconds;

class Kill : public testing::Test {
  protected:
    void SetUp() override { fs::copy_file(SIM_PLUGIN, root() / "lib" / "sim.bpi"); }

    fs::path root() const { return installation_.Root(); }

    // Starts once more and looks at what is there.
    ExpectedBoards::Boards lookAfterRestart() {
        const WorkerRun run = runWorker({"list"});
        EXPECT_TRUE(WIFEXITED(run.status) && WEXITSTATUS(run.status) == 0)
            << "the start after a kill failed with status " << run.status;
        for (const auto& entry : fs::recursive_directory_iterator(root() / "oam" / "cfg")) {
            const std::string name = entry.path().filename();
            EXPECT_EQ(entry.path().extension(), ".xmo") << name << " is left over";
        }
        return ExpectedBoards::Parse(run.lines);
    }

    // Rounds spread their kills over a time in which a worker makes many changes.
    microseconds killTime() { return microseconds(random_() % 40000); }

    static constexpr int kRounds = 25;

  private:
    oam::test::Installation installation_;
    std::mt19937 random_{20261120};
};

TEST_F(Kill, AtAnyMomentOfABoardsLifeLosesNoAcknowledgedChange) {
    ExpectedBoards expected;
    for (int round = 0; round < kRounds; ++round) {
        const WorkerRun run = killWorker({"change", std::to_string(round)}, killTime());
        ASSERT_TRUE(WIFSIGNALED(run.status)) << "the worker ended by itself: " << run.status;
        expected.Follow(run.lines);
        ASSERT_EQ(expected.Settle(lookAfterRestart()), "") << "round " << round;
    }
}

TEST_F(Kill, AtAnyMomentOfAnImportLeavesTheOldOrTheNewConfiguration) {
    ExpectedBoards expected;
    const WorkerRun prepared = killWorker({"change", "7"}, microseconds(200000));
    expected.Follow(prepared.lines);
    const ExpectedBoards::Boards before = lookAfterRestart();
    ASSERT_EQ(expected.Settle(before), "");
    ASSERT_FALSE(before.empty());
    for (int round = 0; round < kRounds; ++round) {
        const WorkerRun run = killWorker({"import", (root() / "all.export").string()}, killTime());
        ASSERT_TRUE(WIFSIGNALED(run.status)) << "the worker ended by itself: " << run.status;
        ASSERT_EQ(lookAfterRestart(), before) << "round " << round;
    }
}

}  // namespace
