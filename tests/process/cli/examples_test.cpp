// Every example of the help texts and of the manual is a command that works.
//
// Each is run by a shell in an installation of its own, with the simulated chassis. Directories and
// the group in the examples stand for the test's own. Those of `oam fleet` need a fleet, and are run
// where there is one (tests/fleet/host).
#include <grp.h>
#include <unistd.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include "tool_test.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

// Lines that are a command of the tool, without what stands before it.
std::vector<std::string> examplesIn(const std::string& text, const std::string& before) {
    std::vector<std::string> examples;
    for (const std::string& line : linesOf(text))
        if (line.starts_with(before + "oam ")) examples.push_back(line.substr(before.size()));
    return examples;
}

std::string read(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string readManual() { return read(OAM_MANUAL); }

// From a heading, or what it begins with, to the next one.
std::string sectionOf(const std::string& manual, const std::string& heading) {
    size_t begin = manual.find('\n' + heading + ' ');
    if (begin == std::string::npos) begin = manual.find('\n' + heading + '\n');
    if (begin == std::string::npos) return {};
    return manual.substr(begin, manual.find("\n##", begin + 1) - begin);
}

std::set<std::string> optionsIn(const std::string& text) {
    const std::regex option("--[a-z][a-z-]*");
    return {std::sregex_token_iterator(text.begin(), text.end(), option), {}};
}

void replace(std::string* text, const std::string& from, const std::string& to) {
    const size_t at = text->find(from);
    if (at != std::string::npos) text->replace(at, from.size(), to);
}

class ToolExamples : public ToolTest {
  protected:
    // The commands below this one, as its help lists them.
    std::vector<Words> Commands(const Words& words = {}) const {
        Words help = words;
        help.push_back("--help");
        std::vector<Words> commands;
        bool inList = false;
        for (const std::string& line : linesOf(Out(help))) {
            if (line.empty()) inList = false;
            if (inList && line.size() > 2 && line[2] != ' ' && !line.starts_with("  fleet ")) {
                Words command = words;
                command.push_back(line.substr(2, line.find(' ', 2) - 2));
                commands.push_back(command);
            }
            if (line == "Subcommands:") inList = true;
        }
        return commands;
    }

    std::vector<Words> AllCommands() const {
        std::vector<Words> all;
        for (const Words& command : Commands()) {
            all.push_back(command);
            const auto below = Commands(command);
            all.insert(all.end(), below.begin(), below.end());
        }
        return all;
    }

    static bool NeedsDaemon(const std::string& example) {
        for (const char* words : {"oam host", "oam doctor", "oam service", "oam config", "--after"})
            if (example.find(words) != std::string::npos) return true;
        return false;
    }

    static void RunInAnInstallation(const std::string& example) {
        Installation place;
        std::filesystem::copy_file(OAM_SIM_PLUGIN, place.Path("lib/sim.bpi"));
        std::filesystem::copy_file(OAM_WATCH_COMPONENT, place.Path("lib/watch.emc"));
        place.Write("command.txt", "temperature 400\n");
        const Served daemon = NeedsDaemon(example) ? Serve(place) : nullptr;
        const bool isAddition = example.find("board add") != std::string::npos;
        if (!isAddition)
            RunShell(place,
                     "oam board add --all && oam board create SIM-E1 && oam export saved.oam");
        // A board without a place can neither be started nor tested.
        if (!isAddition && example.find(" --all") != std::string::npos)
            RunShell(place, "oam board delete 'SIM-E1 0'");
        std::string command = example;
        replace(&command, "/opt/oam", place.Root());
        replace(&command, "/srv/oam", place.Path("srv"));
        replace(&command, "--group oam", std::string("--group ") + getgrgid(getgid())->gr_name);
        RunShell(place, command);
    }

    static void RunShell(const Installation& place, const std::string& command) {
        const std::string directory = std::filesystem::path(OAM_TOOL).parent_path();
        const Finished run =
            ChildProcess({"/bin/sh", "-c", "PATH='" + directory + "':$PATH; " + command},
                         place.Root())
                .Finish();
        EXPECT_EQ(run.status, 0) << command << '\n' << run.out << run.err;
    }
};

}  // namespace

TEST_F(ToolExamples, EveryCommandHasSomeInItsHelp) {
    const auto commands = AllCommands();
    EXPECT_GT(commands.size(), 25u);
    for (Words command : commands) {
        command.push_back("--help");
        EXPECT_FALSE(examplesIn(Out(command), "  ").empty()) << ::testing::PrintToString(command);
    }
}

TEST_F(ToolExamples, OfTheHelpTextsWork) {
    std::vector<std::string> examples = examplesIn(Out({"--help"}), "  ");
    for (Words command : AllCommands()) {
        command.push_back("--help");
        for (const std::string& example : examplesIn(Out(command), "  "))
            if (std::find(examples.begin(), examples.end(), example) == examples.end())
                examples.push_back(example);
    }
    EXPECT_GT(examples.size(), 35u);
    for (const std::string& example : examples) RunInAnInstallation(example);
}

TEST_F(ToolExamples, OfTheManualWork) {
    const auto examples = examplesIn(readManual(), "    ");
    EXPECT_GT(examples.size(), 20u);
    for (const std::string& example : examples) RunInAnInstallation(example);
}

TEST_F(ToolExamples, OfTheManPagesWork) {
    std::set<std::string> examples;
    for (const char* directory : {OAM_MAN_PAGES, OAM_MADE_MAN_PAGES})
        for (const auto& entry : std::filesystem::directory_iterator(directory))
            if (entry.path().extension() == ".scd")
                for (const std::string& example : examplesIn(read(entry.path()), "$ "))
                    examples.insert(example);
    // Those of the manual are in its man page, and tried above.
    const auto manual = examplesIn(readManual(), "    ");
    for (const std::string& example : manual) EXPECT_EQ(examples.erase(example), 1u) << example;
    std::erase_if(examples, [](const auto& one) { return one.starts_with("oam fleet "); });
    EXPECT_FALSE(examples.empty());
    for (const std::string& example : examples) RunInAnInstallation(example);
}

// One behind the other, as a newcomer types them.
TEST_F(ToolExamples, OfTheReadmeWork) {
    std::string block = sectionOf(read(OAM_README), "## An installation");
    block.erase(0, block.find("```sh\n") + 6);
    block.erase(block.find("```"));
    const Installation place(Layout::kBare);
    for (size_t at = 0; (at = block.find("/opt/oam", at)) != std::string::npos;)
        block.replace(at, 8, place.Root());
    replace(&block, "build/release/lib/oam/sim.bpi", OAM_SIM_PLUGIN);
    RunShell(place, "set -e; " + block);
}

TEST_F(ToolExamples, OptionsOfEveryCommandAreThoseOfTheManual) {
    const std::string manual = readManual();
    const auto everywhere = optionsIn(sectionOf(manual, "## Options"));
    for (const Words& command : AllCommands()) {
        if (!Commands(command).empty()) continue;
        std::string heading = "### oam";
        for (const std::string& word : command) heading += ' ' + word;
        Words help = command;
        help.push_back("--help");
        auto explained = optionsIn(Out(help));
        auto told = optionsIn(sectionOf(manual, heading));
        for (const std::string& option : everywhere) {
            explained.erase(option);
            told.erase(option);
        }
        EXPECT_EQ(told, explained) << heading;
    }
    EXPECT_THAT(optionsIn(Out({"--help"})), ::testing::IsSubsetOf(everywhere));
}

TEST_F(ToolExamples, TheManualTellsOfNoOtherCommand) {
    std::set<std::string> known{"oam fleet"};
    for (const Words& command : AllCommands()) {
        std::string title = "oam";
        for (const std::string& word : command) title += ' ' + word;
        known.insert(title);
    }
    for (std::string line : linesOf(readManual())) {
        if (!line.starts_with("### ")) continue;
        line.erase(0, 4);
        while (!known.contains(line) && line.find(' ') != std::string::npos)
            line.erase(line.rfind(' '));
        EXPECT_NE(line, "oam") << "a heading of no command";
    }
}

TEST_F(ToolExamples, TheManualTellsOfEveryCommand) {
    const std::string manual = readManual();
    for (const Words& command : AllCommands()) {
        if (!Commands(command).empty()) continue;
        std::string heading = "### oam";
        for (const std::string& word : command) heading += ' ' + word;
        EXPECT_THAT(manual, HasSubstr('\n' + heading)) << "in " OAM_MANUAL;
    }
}

}  // namespace oam::test
