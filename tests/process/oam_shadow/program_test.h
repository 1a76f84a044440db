// The fixture: the service in this process, with boards in its shadow, and the program in another.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "child_process.h"
#include "support/service_test.h"

namespace oam::test {

class ShadowProgram : public ServiceTest {
  protected:
    void SetUp() override {
        AddPluginFor("rec.bpi", {"Card"},
                     {{"Driver.Name", "qx"}, {"Driver.BoardId", "0"}, {"XLaw", "MU-LAW"}});
    }

    void StartWithBoard() {
        Start();
        ASSERT_EQ(CreateBoard("Card"), "Card 0");
    }

    std::vector<std::string> Command(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), OAM_SHADOW_PROGRAM);
        return arguments;
    }
    Finished Run(const std::vector<std::string>& arguments) const {
        return ChildProcess(Command(arguments), home.Root()).Finish();
    }
    // Of a run that succeeds.
    std::string Out(const std::vector<std::string>& arguments) const {
        const Finished run = Run(arguments);
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.err, "");
        return run.out;
    }
    nlohmann::json Json(const std::vector<std::string>& arguments) const {
        return nlohmann::json::parse(Out(arguments));
    }
};

MATCHER_P2(Complains, status, text, "") {
    *result_listener << "status " << arg.status << ", out: " << arg.out << ", err: " << arg.err;
    return arg.status == status && arg.out.empty() && arg.err.find(text) != std::string::npos;
}

}  // namespace oam::test
