// Every example of the fleet's manual and of the README is a command that
// works, in a fleet of one host, whose name stands for those of the examples.
#include <filesystem>
#include <fstream>
#include <sstream>

#include "fleet_test.h"

namespace oam::test {
namespace {

std::vector<std::string> examplesIn(const std::string& path) {
    std::vector<std::string> examples;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        const size_t begin = line.find("oam fleet ");
        const std::string before = line.substr(0, begin);
        if (begin != line.npos && (before.empty() || before == "    " || before == "$ "))
            examples.push_back(line.substr(begin));
    }
    return examples;
}

class FleetExamples : public FleetTest {
  protected:
    void RunAll(const std::string& document) {
        const auto examples = examplesIn(std::string(OAM_DOCUMENTS) + '/' + document);
        EXPECT_FALSE(examples.empty()) << document;
        for (const std::string& example : examples) Run(example);
    }

    void StartHost() {
        StartAll();
        // What is asked of all boards can be done with this one only.
        for (const char* board : {"Bad", "Stuck"}) Tool({"board", "delete", board});
        ASSERT_TRUE(AwaitPresence("alive", std::chrono::seconds(30)));
        std::ofstream settings(home.Path("fleet.conf"));
        const auto admin = engine.OptionsOf("admin");
        for (size_t i = 0; i + 1 < admin.size(); i += 2)
            settings << admin[i].substr(2) << " = " << admin[i + 1] << '\n';
    }

  private:
    static void Replace(std::string* text, const std::string& from, const std::string& to) {
        const size_t at = text->find(from);
        if (at != text->npos) text->replace(at, from.size(), to);
    }

    void Run(const std::string& example) const {
        std::string command = example.substr(0, example.find(" #"));
        Replace(&command, "rack-7-1,rack-7-2", kHostName);
        Replace(&command, "rack-7-*", "h*");
        // They come until somebody interrupts it, when there are any.
        const bool isEndless = command.find(" alerts ") != command.npos;
        if (isEndless) command += " --for 1";
        const std::string tools = std::filesystem::path(OAM_TOOL).parent_path();
        const Finished run = ChildProcess({"/bin/sh", "-c",
                                           "PATH='" + tools + "':$PATH; export OAM_FLEET_CONFIG='" +
                                               home.Path("fleet.conf") + "'; " + command},
                                          home.Root())
                                 .Finish();
        EXPECT_EQ(run.status, 0) << command << '\n' << run.out << run.err;
        EXPECT_TRUE(isEndless || !run.out.empty()) << command;
    }
};

}  // namespace

TEST_F(FleetExamples, OfTheManualWork) {
    StartHost();
    RunAll("docs/fleet.md");
    EXPECT_TRUE(std::filesystem::exists(home.Path("saved-h.1.oam")));
}

TEST_F(FleetExamples, OfTheReadmeWork) {
    StartHost();
    RunAll("README.md");
}

}  // namespace oam::test
