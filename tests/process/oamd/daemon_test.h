// The fixture of the tests that run the built daemon on an installation of their own, and speak
// with it as any client does.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "child_process.h"
#include "oam/v1/alerts.grpc.pb.h"
#include "oam/v1/boards.grpc.pb.h"
#include "oam/v1/configuration.grpc.pb.h"
#include "oam/v1/host.grpc.pb.h"
#include "oam/v1/objects.grpc.pb.h"
#include "oam/v1/operations.grpc.pb.h"
#include "oam/v1/refusal.pb.h"
#include "oam/v1/sessions.grpc.pb.h"
#include "support/installation.h"

namespace oam::test {

// One connection to the daemon.
class Client {
  public:
    explicit Client(const Installation& home);

    std::unique_ptr<v1::Alerts::Stub> alerts;
    std::unique_ptr<v1::Boards::Stub> boards;
    std::unique_ptr<v1::Configuration::Stub> configuration;
    std::unique_ptr<v1::Host::Stub> host;
    std::unique_ptr<v1::Objects::Stub> objects;
    std::unique_ptr<v1::Operations::Stub> operations;
    std::unique_ptr<v1::Sessions::Stub> sessions;
};

// A call with a generous limit: Call(*client.host, &v1::Host::Stub::GetHost, request, &response)
template <class Stub, class Request, class Response>
grpc::Status Call(Stub& stub,
                  grpc::Status (Stub::*method)(grpc::ClientContext*, const Request&, Response*),
                  const Request& request, Response* response) {
    grpc::ClientContext context;
    context.set_deadline(std::chrono::system_clock::now() + std::chrono::seconds(60));
    return (stub.*method)(&context, request, response);
}

v1::Refusal RefusalIn(const grpc::Status& status);

// A chassis with one board of each kind of start.
inline constexpr const char* kMixedChassis = R"(
board: Good
product: SIM-E1
bus: 1
slot: 1
start-time: 1ms

board: Bad
product: SIM-E1
bus: 1
slot: 2
start: fail
start-time: 1ms

board: Stuck
product: SIM-E1
bus: 1
slot: 3
start: hang 3600s
)";

class DaemonTest : public ::testing::Test {
  protected:
    // `parent` of the installation: one that lies in memory makes a commit cheap.
    explicit DaemonTest(const std::string& parent = "/tmp") : home(Layout::kComplete, parent) {}
    void TearDown() override { End(); }

    // With this chassis, or the built-in one.
    void Start(const std::string& chassis = {});
    // The same again.
    void StartAgain();
    // Without waiting for it to serve.
    void Launch();
    // In good order.
    void End();
    void Kill();
    // The tool, as an operator uses it; it must succeed.
    std::string Tool(const std::vector<std::string>& arguments) const;

    // The identity of a request that was accepted.
    std::string StartBoard(Client& client, const std::string& board) const;
    v1::Operation Wait(Client& client, const std::string& id, int seconds) const;

    Installation home;
    std::vector<std::string> options;  // of the daemon
    std::unique_ptr<ChildProcess> daemon;
    std::string where;  // what it said at its start of where it serves
};

}  // namespace oam::test
