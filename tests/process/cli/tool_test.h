// The fixture of the tests that run the built tool on an installation of their own.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "child_process.h"
#include "support/data_file.h"
#include "support/installation.h"

namespace oam::test {

using Words = std::vector<std::string>;

// The command of the tool with these arguments.
Words ToolCommand(const Words& arguments);

struct EndInOrder {
    void operator()(ChildProcess* daemon) const;
};
using Served = std::unique_ptr<ChildProcess, EndInOrder>;

class ToolTest : public ::testing::Test {
  protected:
    // Runs the tool in the installation's directory to its end.
    Finished Run(const Words& arguments) const;
    // The same for a command that must succeed: its output.
    std::string Out(const Words& arguments) const;
    // The same with --json, parsed; the output is one object with "schema": 1.
    nlohmann::json Json(const Words& arguments) const;

    // The simulated chassis, with "Sim E1 left", "Sim E1 right" and two more to detect.
    void AddSim() const;
    // The same with this chassis file instead of the built-in one.
    void AddSim(const std::string& chassis) const;
    // With one detected board added.
    void AddSimBoard(const std::string& board = "Sim E1 left") const;

    // "oam/cfg" as file names and contents.
    std::vector<std::string> DataFiles() const;

    // With OAM_TEST_SERVED in the environment a daemon on the installation, until the end of the
    // scope; every run of the tool then has one of its own, since tests change files in between.
    Served Serve() const;
    // On that one, whatever the environment says.
    static Served Serve(const Installation& place);

    Installation home;
};

// For tests of what only the tool in its own process does.
bool IsServed();
#define OAM_DIRECT_ONLY() \
    if (IsServed()) GTEST_SKIP() << "a daemon does this by itself"

// What the tool's own messages begin with.
MATCHER_P2(Complains, status, text, "") {
    *result_listener << "status " << arg.status << ", out: " << arg.out << ", err: " << arg.err;
    return arg.status == status && arg.err.find(text) != std::string::npos;
}

}  // namespace oam::test
