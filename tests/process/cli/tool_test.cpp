#include "tool_test.h"

#include <filesystem>

namespace oam::test {

Words ToolCommand(const Words& arguments) {
    Words command{OAM_TOOL};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

Finished ToolTest::Run(const Words& arguments) const {
    return ChildProcess(ToolCommand(arguments), home.Root()).Finish();
}

std::string ToolTest::Out(const Words& arguments) const {
    const Finished run = Run(arguments);
    EXPECT_EQ(run.status, 0) << ::testing::PrintToString(arguments) << '\n' << run.err;
    return run.out;
}

nlohmann::json ToolTest::Json(const Words& arguments) const {
    Words words = arguments;
    words.push_back("--json");
    const auto object = nlohmann::json::parse(Run(words).out, nullptr, false);
    EXPECT_TRUE(object.is_object()) << ::testing::PrintToString(arguments);
    EXPECT_EQ(object.value("schema", 0), 1);
    return object;
}

void ToolTest::AddSim() const {
    std::filesystem::copy_file(OAM_SIM_PLUGIN, home.Path("lib/sim.bpi"));
}

void ToolTest::AddSim(const std::string& chassis) const {
    home.Write("oam/cfg/sim.chassis", chassis);
    AddSim();
}

void ToolTest::AddSimBoard(const std::string& board) const {
    AddSim();
    Out({"board", "add", board});
}

std::vector<std::string> ToolTest::DataFiles() const {
    std::vector<std::string> files;
    for (const std::string& name : home.List("oam/cfg"))
        files.push_back(name + '\n' + home.ReadDataFile(name));
    return files;
}

}  // namespace oam::test
