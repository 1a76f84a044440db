// Who may do what, and what a stranger's bytes do.
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <random>

#include "daemon_test.h"
#include "wire/daemon_channel.h"
#include "wire/local_socket.h"

namespace oam::test {
namespace {

class DaemonAccess : public DaemonTest {
  protected:
    void SetUp() override { Start(); }

    grpc::Status Change(Client& client, const std::string& keyword, const std::string& value) {
        v1::ChangeObjectRequest request;
        request.set_name("Sim E1 left");
        auto* const change = request.add_changes();
        change->set_keyword(keyword);
        change->set_value(value);
        v1::ChangeObjectResponse response;
        return Call(*client.objects, &v1::Objects::Stub::ChangeObject, request, &response);
    }
};

TEST_F(DaemonAccess, IsByTheRolesFileWhichIsReadAgainOnDemand) {
    home.Write("oam/roles.conf", "everyone viewer\n");
    daemon->Signal(SIGHUP);
    daemon->AwaitError("roles were read again");
    Client client(home);
    const grpc::Status status = Change(client, "Number", "40");
    EXPECT_EQ(status.error_code(), grpc::StatusCode::PERMISSION_DENIED);
    EXPECT_EQ(RefusalIn(status).party(), v1::Refusal::PARTY_DAEMON);
    daemon->AwaitError("denied: ");
    v1::ListBoardsResponse boards;
    EXPECT_TRUE(
        Call(*client.boards, &v1::Boards::Stub::ListBoards, v1::ListBoardsRequest(), &boards).ok());
    EXPECT_EQ(boards.boards_size(), 4);
}

TEST_F(DaemonAccess, StaysAsItWasWhenTheRolesFileIsWrong) {
    home.Write("oam/roles.conf", "everyone emperor\n");
    daemon->Signal(SIGHUP);
    daemon->AwaitError("roles.conf:1: ");
    Client client(home);
    EXPECT_TRUE(Change(client, "Number", "40").ok());
}

// Who the daemon takes a caller for that names somebody else in its metadata.
v1::HostInfo hostAs(Client& client, const std::map<std::string, std::string>& metadata) {
    grpc::ClientContext context;
    for (const auto& [key, name] : metadata) context.AddMetadata(key, name);
    v1::HostInfo info;
    const auto status = client.host->GetHost(&context, v1::GetHostRequest(), &info);
    if (status.error_code() == grpc::StatusCode::PERMISSION_DENIED) info.set_role("none");
    return info;
}

TEST_F(DaemonAccess, OfOneWhoSpeaksForAnotherIsTheLowerOneOfBothRoles) {
    home.Write("oam/roles.conf",
               "user root configurator\n"
               "user games viewer\nuser man admin\ncertificate noc.test operator\n");
    daemon->Signal(SIGHUP);
    daemon->AwaitError("roles were read again");
    if (getuid() != 0) GTEST_SKIP() << "the rules name root, who does not run this test";
    Client client(home);
    EXPECT_EQ(hostAs(client, {}).role(), "configurator");
    EXPECT_EQ(hostAs(client, {{wire::kForUser, "games"}}).role(), "viewer");
    EXPECT_EQ(hostAs(client, {{wire::kForUser, "games"}}).user(), "games via root");
    EXPECT_EQ(hostAs(client, {{wire::kForUser, "man"}}).role(), "configurator");
    EXPECT_EQ(hostAs(client, {{wire::kForCertificate, "noc.test"}}).role(), "operator");
    EXPECT_EQ(hostAs(client, {{wire::kForCertificate, "other.test"}}).role(), "none");
    EXPECT_EQ(hostAs(client, {{wire::kForUser, "nobody-of-this-name"}}).role(), "none");
    EXPECT_EQ(hostAs(client, {{wire::kForUser, std::string("games\0x", 7)}}).role(), "none");
    EXPECT_EQ(hostAs(client, {{wire::kForUser, "man"}, {wire::kForCertificate, "noc.test"}}).role(),
              "none");
}

TEST_F(DaemonAccess, RefusalsNameTheKeywordTheValueAndTheRule) {
    Client client(home);
    const grpc::Status status = Change(client, "Number", "1");
    EXPECT_EQ(status.error_code(), grpc::StatusCode::ALREADY_EXISTS);
    const v1::Refusal refusal = RefusalIn(status);
    EXPECT_EQ(refusal.code_name(), "OAMERR_ALREADY_EXISTS");
    EXPECT_EQ(refusal.object(), "Sim E1 left");
    EXPECT_EQ(refusal.keyword(), "Number");
    EXPECT_EQ(refusal.value(), "1");
    const v1::Refusal unstorable = RefusalIn(Change(client, "Driver.BoardId", "a<b"));
    EXPECT_EQ(unstorable.keyword(), "Driver.BoardId");
    EXPECT_EQ(unstorable.value(), "a<b");
}

TEST_F(DaemonAccess, RefusalsOfLongNamesAndValuesArriveToo) {
    Client client(home);
    for (const std::size_t size : {300u, 5000u, 60000u}) {
        v1::ReadObjectRequest request;
        request.set_name(std::string(size, '\xff'));
        v1::ReadObjectResponse response;
        const grpc::Status status =
            Call(*client.objects, &v1::Objects::Stub::ReadObject, request, &response);
        EXPECT_EQ(status.error_code(), grpc::StatusCode::NOT_FOUND) << status.error_message();
        EXPECT_NE(RefusalIn(status).rule(), "");
        const grpc::Status refused = Change(client, "Number", std::string(size, '9'));
        EXPECT_EQ(refused.error_code(), grpc::StatusCode::FAILED_PRECONDITION)
            << refused.error_message();
        EXPECT_NE(RefusalIn(refused).rule(), "");
    }
    EXPECT_TRUE(Change(client, "Number", "40").ok());
}

TEST_F(DaemonAccess, BytesThatAreNoRequestCostNobodyElseAnything) {
    std::minstd_rand random(1);
    const std::string preface = "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n";
    for (int round = 0; round < 50; ++round) {
        const auto stranger = wire::Connect(wire::SocketPath(home.Root()));
        ASSERT_TRUE(stranger);
        std::string bytes = round % 2 == 0 ? preface : "";
        for (int i = 0; i < round * 20; ++i) bytes += static_cast<char>(random());
        (void)!send(*stranger, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        close(*stranger);
    }
    EXPECT_NE(Tool({"board", "list"}), "");
}

TEST_F(DaemonAccess, NamesOfAnyBytesAreAnsweredOrRefused) {
    Client client(home);
    std::minstd_rand random(2);
    for (int round = 0; round < 200; ++round) {
        v1::ReadObjectRequest request;
        std::string name;
        for (int i = 0; i < round; ++i) name += static_cast<char>(random());
        request.set_name(name);
        v1::ReadObjectResponse response;
        const auto code =
            Call(*client.objects, &v1::Objects::Stub::ReadObject, request, &response).error_code();
        EXPECT_TRUE(code == grpc::StatusCode::NOT_FOUND ||
                    code == grpc::StatusCode::INVALID_ARGUMENT)
            << code;
    }
}

TEST_F(DaemonAccess, ASecondDaemonIsToldWhoServesTheInstallation) {
    const Finished second = ChildProcess({OAM_DAEMON}, home.Root()).Finish();
    EXPECT_EQ(second.status, 1);
    EXPECT_THAT(second.err, ::testing::HasSubstr("oamd"));
    EXPECT_THAT(second.err, ::testing::HasSubstr(std::to_string(daemon->Pid())));
}

}  // namespace
}  // namespace oam::test
