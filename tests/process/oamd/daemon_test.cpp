#include "daemon_test.h"

#include <grpcpp/create_channel_posix.h>
#include <grpcpp/grpcpp.h>
#include <signal.h>

#include <filesystem>

#include "wire/local_socket.h"

namespace oam::test {

Client::Client(const Installation& home) {
    const auto descriptor = wire::Connect(wire::SocketPath(home.Root()));
    if (!descriptor) throw std::runtime_error("no daemon serves " + home.Root());
    const auto channel = grpc::CreateInsecureChannelFromFd("oamd", *descriptor);
    alerts = v1::Alerts::NewStub(channel);
    boards = v1::Boards::NewStub(channel);
    configuration = v1::Configuration::NewStub(channel);
    host = v1::Host::NewStub(channel);
    objects = v1::Objects::NewStub(channel);
    operations = v1::Operations::NewStub(channel);
    sessions = v1::Sessions::NewStub(channel);
}

v1::Refusal RefusalIn(const grpc::Status& status) {
    v1::Refusal refusal;
    EXPECT_TRUE(refusal.ParseFromString(status.error_details())) << status.error_message();
    return refusal;
}

void DaemonTest::Start(const std::string& chassis) {
    if (!chassis.empty()) home.Write("oam/cfg/sim.chassis", chassis);
    std::filesystem::copy_file(OAM_SIM_PLUGIN, home.Path("lib/sim.bpi"));
    StartAgain();
    Tool({"board", "add", "--all"});
}

void DaemonTest::StartAgain() {
    Launch();
    where = daemon->AwaitErrorLine("serves ");
}

void DaemonTest::Launch() {
    std::vector<std::string> command{OAM_DAEMON};
    command.insert(command.end(), options.begin(), options.end());
    daemon = std::make_unique<ChildProcess>(command, home.Root());
}

void DaemonTest::End() {
    if (!daemon) return;
    daemon->Signal(SIGTERM);
    EXPECT_EQ(daemon->Finish().status, 0);
    daemon.reset();
}

void DaemonTest::Kill() {
    daemon->Signal(SIGKILL);
    (void)daemon->Finish();
    daemon.reset();
}

std::string DaemonTest::Tool(const std::vector<std::string>& arguments) const {
    std::vector<std::string> command{OAM_TOOL};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const Finished run = ChildProcess(command, home.Root()).Finish();
    EXPECT_EQ(run.status, 0) << ::testing::PrintToString(arguments) << '\n' << run.err;
    return run.out;
}

std::string DaemonTest::StartBoard(Client& client, const std::string& board) const {
    v1::StartBoardRequest request;
    request.set_board(board);
    v1::Operation operation;
    const auto status =
        Call(*client.operations, &v1::Operations::Stub::StartBoard, request, &operation);
    EXPECT_TRUE(status.ok()) << status.error_message();
    EXPECT_EQ(operation.board(), board);
    return operation.id();
}

v1::Operation DaemonTest::Wait(Client& client, const std::string& id, int seconds) const {
    v1::WaitOperationRequest request;
    request.set_id(id);
    request.mutable_time_limit()->set_seconds(seconds);
    v1::Operation operation;
    const auto status =
        Call(*client.operations, &v1::Operations::Stub::WaitOperation, request, &operation);
    EXPECT_TRUE(status.ok()) << status.error_message();
    return operation;
}

}  // namespace oam::test
