// What people see on a terminal, and what nobody gets in a pipe; and what is shown of boards while
// a daemon is there that does not answer.
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "table_fit.h"
#include "tool_test.h"

namespace oam::test {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

class ToolTerminal : public ToolTest {
  protected:
    // All that the tool writes to a terminal of so many columns.
    std::string OnTerminal(const Words& arguments, unsigned short columns,
                           const char* noColour = "") const {
        winsize size{24, columns, 0, 0};
        int terminal = -1;
        const pid_t child = forkpty(&terminal, nullptr, nullptr, &size);
        if (child == 0) {
            setenv("TERM", "xterm", 1);
            setenv("NO_COLOR", noColour, 1);
            const Words command = ToolCommand(arguments);
            std::vector<char*> words;
            for (const std::string& word : command)
                words.push_back(const_cast<char*>(word.c_str()));
            words.push_back(nullptr);
            execv(words[0], words.data());
            _exit(127);
        }
        std::string seen;
        char block[4096];
        for (ssize_t got; (got = read(terminal, block, sizeof block)) > 0;)
            seen.append(block, static_cast<size_t>(got));
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) != 127);
        close(terminal);
        return seen;
    }
    void AddBoards() const {
        AddSim();
        Out({"board", "add", "--all"});
    }
};

}  // namespace

TEST_F(ToolTerminal, GetsTablesThatFitAndHeadingsThatStandOut) {
    AddBoards();
    const std::string wide = OnTerminal({"supervisor"}, 200);
    EXPECT_THAT(wide, AllOf(HasSubstr("\x1b[1mSETTING"), Not(HasSubstr("\u2026"))));
    const std::string narrow = OnTerminal({"supervisor"}, 50);
    EXPECT_THAT(narrow, HasSubstr("\u2026"));
    EXPECT_THAT(OnTerminal({"supervisor"}, 200, "1"), Not(HasSubstr("\x1b[")));
}

TEST_F(ToolTerminal, SeesFailuresStandOut) {
    EXPECT_THAT(OnTerminal({"show", "nothing"}, 80), HasSubstr("\x1b[1;31moam:\x1b[0m "));
}

TEST_F(ToolTerminal, IsToldHowFarAnOperationOnManyBoardsIs) {
    AddBoards();
    EXPECT_THAT(OnTerminal({"board", "start", "--all"}, 80), HasSubstr("start: 1 of 4 boards"));
    EXPECT_THAT(OnTerminal({"board", "stop", "Sim E1 left"}, 80), Not(HasSubstr(" of ")));
}

TEST_F(ToolTerminal, IsNotWhatAPipeIs) {
    AddBoards();
    setenv("TERM", "xterm", 1);
    const Finished run = Run({"board", "start", "--all"});
    EXPECT_THAT(run.out + run.err, AllOf(Not(HasSubstr("\x1b")), Not(HasSubstr(" of 4"))));
    EXPECT_THAT(Out({"supervisor"}), Not(HasSubstr("\u2026")));
}

TEST_F(ToolTerminal, ShowsTheShadowWhileADaemonDoesNotAnswer) {
    AddBoards();
    const Served daemon = Serve(home);
    daemon->Signal(SIGSTOP);
    const Finished list = ChildProcess(ToolCommand({"board", "list"}), home.Root()).Finish();
    const Finished show = ChildProcess(ToolCommand({"show", "Supervisor"}), home.Root()).Finish();
    daemon->Signal(SIGCONT);
    EXPECT_EQ(list.status, 0) << list.err;
    EXPECT_THAT(list.out, HasSubstr("Sim E1 left"));
    EXPECT_THAT(list.err, AllOf(HasSubstr("does not answer"), HasSubstr("board shadow")));
    EXPECT_THAT(show, Complains(3, "the daemon does not answer"));
}

TEST(FittedTable, CutsTheWidestTextsAndNoNumbers) {
    Table table{{{"number", "NUMBER", true}, {"name", "NAME"}, {"text", "TEXT"}}, {}};
    table.rows.push_back({1234567890123u, "ab\u00e4cdefghijkl", std::string(40, 'x')});
    EXPECT_EQ(AsText(Fitted(table, 0)), AsText(table));
    EXPECT_EQ(AsText(Fitted(table, 200)), AsText(table));
    EXPECT_EQ(AsText(Fitted(table, 37)),
              "       NUMBER  NAME        TEXT\n"
              "1234567890123  ab\u00e4cdefgh\u2026  xxxxxxxxx\u2026\n");
    // There is an end to it.
    EXPECT_EQ(AsText(Fitted(table, 5)),
              "       NUMBER  NAME      TEXT\n"
              "1234567890123  ab\u00e4cdef\u2026  xxxxxxx\u2026\n");
}

}  // namespace oam::test
