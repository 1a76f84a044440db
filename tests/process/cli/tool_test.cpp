#include "tool_test.h"

#include <signal.h>

#include <cstdlib>
#include <filesystem>

namespace oam::test {

bool IsServed() { return std::getenv("OAM_TEST_SERVED") != nullptr; }

Words ToolCommand(const Words& arguments) {
    Words command{OAM_TOOL};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

Finished ToolTest::Run(const Words& arguments) const {
    const auto daemon = Serve();
    return ChildProcess(ToolCommand(arguments), home.Root()).Finish();
}

void EndInOrder::operator()(ChildProcess* daemon) const {
    daemon->Signal(SIGTERM);
    EXPECT_EQ(daemon->Finish().status, 0);
    delete daemon;
}

Served ToolTest::Serve() const {
    return IsServed() && home.Exists("oam/cfg") ? Serve(home) : nullptr;
}

Served ToolTest::Serve(const Installation& place) {
    Served daemon(new ChildProcess({OAM_DAEMON}, place.Root()));
    daemon->AwaitError("serves ");
    return daemon;
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
