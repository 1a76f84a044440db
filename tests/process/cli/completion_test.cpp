// Completion as bash does it: the function that is installed, with the line as it is typed.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <sstream>

#include "shell_words.h"
#include "tool_test.h"

namespace oam::test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

class ToolCompletion : public ToolTest {
  protected:
    // What bash offers for the word at the end of the line.
    Words Complete(const std::string& line) const {
        const std::string directory = std::filesystem::path(OAM_TOOL).parent_path();
        // The words as bash would split them do not matter to the function, but have to be there.
        const std::string script =
            "PATH='" + directory +
            "':$PATH; source " OAM_COMPLETION
            "; COMP_LINE=$1 COMP_POINT=${#1} COMP_WORDS=($1) COMP_CWORD=$((${#COMP_WORDS[@]} - 1))"
            "; _oam oam; ((${#COMPREPLY[@]} == 0)) || printf '%s\\n' \"${COMPREPLY[@]}\"";
        const Finished run =
            ChildProcess({"/bin/bash", "--norc", "-c", "set -f; " + script, "bash", line},
                         home.Root())
                .Finish();
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.err, "") << line;
        Words offered;
        std::istringstream lines(run.out);
        for (std::string one; std::getline(lines, one);) offered.push_back(one);
        return offered;
    }
    void AddBoards() const {
        AddSim();
        Out({"board", "add", "--all"});
    }
};

}  // namespace

TEST_F(ToolCompletion, OffersCommandsAndOptions) {
    EXPECT_THAT(Complete("oam bo"), ElementsAre("board"));
    EXPECT_THAT(Complete("oam board st"), ElementsAre("start", "status", "stop"));
    EXPECT_THAT(Complete("oam board start --no"), ElementsAre("--no-wait"));
    EXPECT_THAT(Complete("oam --json board list --d"), ElementsAre("--dir"));
    EXPECT_THAT(Complete("oam "), Contains("monitor"));
    EXPECT_THAT(Complete("oam "), Not(Contains("complete")));
}

TEST_F(ToolCompletion, OffersNamesOfTheDataFilesWithoutADaemon) {
    AddBoards();
    EXPECT_THAT(Complete("oam board info sim\\ e1"),
                ElementsAre("Sim\\ E1\\ left", "Sim\\ E1\\ right"));
    EXPECT_THAT(Complete("oam show S"), Contains("Supervisor"));
    EXPECT_THAT(Complete("oam get 'Sim E1 left' Location.PCI.B"), ElementsAre("Location.PCI.Bus"));
    EXPECT_FALSE(home.Exists("oam/log/oammon.log")) << "the service was started";
}

TEST_F(ToolCompletion, OffersNamesOfTheDaemon) {
    AddBoards();
    const Served daemon = Serve(home);
    EXPECT_THAT(Complete("oam board start Sim\\ IP\\ u"), ElementsAre("Sim\\ IP\\ upper"));
    EXPECT_THAT(Complete("oam board create SIM-"), ElementsAre("SIM-E1", "SIM-IP"));
    EXPECT_THAT(Complete("oam board lookup --product SIM-I"), ElementsAre("SIM-IP"));
    EXPECT_THAT(Complete("oam config history Super"), ElementsAre("Supervisor"));
    EXPECT_THAT(Complete("oam --dir " + home.Root() + " board start Sim\\ IP\\ u"),
                ElementsAre("Sim\\ IP\\ upper"));
}

TEST_F(ToolCompletion, QuotesAsTheWordIsQuoted) {
    AddBoards();
    EXPECT_THAT(Complete("oam board start \"Sim E1 l"), ElementsAre("Sim E1 left"));
    EXPECT_THAT(Complete("oam board start 'Sim E1 l"), ElementsAre("Sim E1 left"));
    Out({"set", "Sim E1 left", "Name=It's $5 \"x\""});
    EXPECT_THAT(Complete("oam board start It"), ElementsAre("It\\'s\\ \\$5\\ \\\"x\\\""));
    EXPECT_THAT(Complete("oam board start 'It"), ElementsAre("It'\\''s $5 \"x\""));
    EXPECT_THAT(Complete("oam board start \"It"), ElementsAre("It's \\$5 \\\"x\\\""));
}

TEST_F(ToolCompletion, OffersValuesBehindAnEqualSign) {
    AddBoards();
    EXPECT_THAT(Complete("oam supervisor AutoStartE"), ElementsAre("AutoStartEnabled="));
    // The shell replaces only what stands behind the sign.
    EXPECT_THAT(Complete("oam supervisor AutoStartEnabled="), ElementsAre("No", "Yes"));
    const Served daemon = Serve(home);
    EXPECT_THAT(Complete("oam set Sim\\ E1\\ left XLaw=A"), ElementsAre("A-LAW"));
}

TEST_F(ToolCompletion, LeavesFilesToTheShell) { EXPECT_THAT(Complete("oam export x"), IsEmpty()); }

TEST_F(ToolCompletion, IsSilentWhereThereIsNoInstallation) {
    EXPECT_THAT(Complete("oam --dir /nowhere board start S"), IsEmpty());
    EXPECT_THAT(Complete("oam frobnicate S"), IsEmpty());
    EXPECT_THAT(Complete("oam board start \"unheard of"), IsEmpty());
}

TEST_F(ToolCompletion, DoesNotWaitForADaemonThatDoesNotAnswer) {
    const int silent = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    home.Path("oam/oamd.sock").copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(silent, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(silent, 8), 0);
    auto quickest = std::chrono::steady_clock::duration::max();
    for (int i = 0; i < 5; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        const Finished run =
            ChildProcess(ToolCommand({"complete", "oam board start S"}), home.Root()).Finish();
        quickest = std::min(quickest, std::chrono::steady_clock::now() - begin);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, "");
    }
    close(silent);
    // Far from what any other command waits, near enough for somebody who has pressed a key; the
    // rest is for a sanitizer on a busy machine.
    EXPECT_LT(quickest, std::chrono::seconds(1));
}

TEST(ShellWords, AreReadAsTheShellReadsThem) {
    const ShellWords words = ReadShellWords("x; oam set 'a b'\"c\\\"d\" e\\ f g=\"h i");
    EXPECT_THAT(words.before, ElementsAre("oam", "set", "a bc\"d", "e f"));
    EXPECT_EQ(words.last, "g=h i");
    EXPECT_EQ(words.quote, '"');
    EXPECT_EQ(words.kept, 2u);
    EXPECT_EQ(ReadShellWords("oam show ").last, "");
    EXPECT_EQ(ReadShellWords("oam show '").quote, '\'');
}

}  // namespace oam::test
