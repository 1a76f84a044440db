// The fixture of the tests that run the built gateway on a daemon of their own, and ask it as a
// script does.
#pragma once

#include <httplib.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "daemon_test.h"

namespace oam::test {

using nlohmann::json;

class ConsoleTest : public DaemonTest {
  protected:
    void TearDown() override;

    // At a free port of this machine.
    void StartConsole(const std::vector<std::string>& given = {});
    void EndConsole();

    // A connection of its own, with the token of this start.
    std::unique_ptr<httplib::Client> Script() const;
    std::unique_ptr<httplib::Client> Stranger() const;

    // The answer to a GET, which must be a success.
    static json Get(httplib::Client& client, const std::string& path);
    static httplib::Result Send(httplib::Client& client, const std::string& method,
                                const std::string& path, const json& body,
                                const httplib::Headers& headers = {});

    std::unique_ptr<ChildProcess> console;
    std::string address;  // "http://127.0.0.1:41234"
    std::string token;
};

// The error in an answer.
json ErrorIn(const httplib::Result& result);

}  // namespace oam::test
