// Remote clients: mutual TLS or nothing, and who they are is the name in their certificate.
#include <grpcpp/grpcpp.h>
#include <signal.h>

#include "certificates.h"
#include "daemon_test.h"

namespace oam::test {
namespace {

constexpr const char* kViewer = "noc.example.net";
constexpr const char* kAdmin = "admin.example.net";

class RemoteClients : public DaemonTest {
  protected:
    void SetUp() override {
        home.Write("oam/roles.conf", std::string("user root admin\ncertificate ") + kViewer +
                                         " viewer\ncertificate " + kAdmin + " admin\n");
        home.Write("clients.pem", clients.Certificate());
        home.Write("hosts.pem", hosts.Certificate());
        PutHost(hosts.Issue("localhost"));
        options = {
            "--listen", "127.0.0.1:0",         "--certificate",        home.Path("host.pem"),
            "--key",    home.Path("host.key"), "--client-authorities", home.Path("clients.pem")};
        Start();
        const std::string told = "TCP port ";
        address = "localhost:" + where.substr(where.find(told) + told.size());
    }

    void PutHost(const Identity& host) const {
        home.Write("host.pem", host.certificate);
        home.Write("host.key", host.key);
    }

    // With connections of its own.
    std::shared_ptr<grpc::Channel> Open(
        const std::shared_ptr<grpc::ChannelCredentials>& credentials) const {
        grpc::ChannelArguments arguments;
        arguments.SetInt(GRPC_ARG_USE_LOCAL_SUBCHANNEL_POOL, 1);
        return grpc::CreateCustomChannel(address, credentials, arguments);
    }
    std::shared_ptr<grpc::Channel> Open(const Identity& client) const {
        return Open(hosts.Certificate(), client);
    }
    std::shared_ptr<grpc::Channel> Open(const std::string& trusted, const Identity& client) const {
        return Open(grpc::SslCredentials({trusted, client.key, client.certificate}));
    }

    static grpc::Status Ask(const std::shared_ptr<grpc::Channel>& channel, v1::HostInfo* info) {
        return Call(*v1::Host::NewStub(channel), &v1::Host::Stub::GetHost, v1::GetHostRequest(),
                    info);
    }
    static grpc::Status Ask(const std::shared_ptr<grpc::Channel>& channel) {
        v1::HostInfo info;
        return Ask(channel, &info);
    }

    // What `oam` says to a remote host.
    Finished RunTool(const Identity& client, std::vector<std::string> arguments) const {
        home.Write("client.pem", client.certificate);
        home.Write("client.key", client.key);
        arguments.insert(
            arguments.begin(),
            {OAM_TOOL, "--host", address, "--certificate", home.Path("client.pem"), "--key",
             home.Path("client.key"), "--authorities", home.Path("hosts.pem")});
        return ChildProcess(arguments, home.Root()).Finish();
    }

    const Authority clients{"the clients' authority"};
    const Authority hosts{"the hosts' authority"};
    const Authority foreign{"a foreign authority"};
    std::string address;
};

constexpr auto kRefused = grpc::StatusCode::UNAVAILABLE;

TEST_F(RemoteClients, AreWhoTheirCertificateSays) {
    v1::HostInfo info;
    const auto status = Ask(Open(clients.Issue(kViewer)), &info);
    ASSERT_TRUE(status.ok()) << status.error_message();
    EXPECT_EQ(info.user(), std::string("certificate ") + kViewer);
    EXPECT_EQ(info.role(), "viewer");
    ASSERT_TRUE(Ask(Open(clients.Issue(kAdmin)), &info).ok());
    EXPECT_EQ(info.role(), "admin");
}

TEST_F(RemoteClients, MayDoWhatTheirRoleMayAndNoMore) {
    const auto channel = Open(clients.Issue(kViewer));
    v1::StartBoardRequest request;
    request.set_board("Sim E1 left");
    v1::Operation operation;
    const auto status = Call(*v1::Operations::NewStub(channel), &v1::Operations::Stub::StartBoard,
                             request, &operation);
    EXPECT_EQ(status.error_code(), grpc::StatusCode::PERMISSION_DENIED);
    EXPECT_EQ(daemon->AwaitErrorLine("denied: certificate "),
              "noc.example.net (viewer) may not StartBoard of \"Sim E1 left\"");
}

TEST_F(RemoteClients, WhoseNameNoRuleKnowsMayNothing) {
    EXPECT_EQ(Ask(Open(clients.Issue("stranger.example.net"))).error_code(),
              grpc::StatusCode::PERMISSION_DENIED);
}

TEST_F(RemoteClients, WithoutACertificateAreTurnedAway) {
    EXPECT_EQ(Ask(Open(grpc::SslCredentials({hosts.Certificate(), "", ""}))).error_code(),
              kRefused);
}

TEST_F(RemoteClients, OfAForeignAuthorityAreTurnedAway) {
    EXPECT_EQ(Ask(Open(foreign.Issue(kAdmin))).error_code(), kRefused);
    EXPECT_EQ(Ask(Open(hosts.Issue(kAdmin))).error_code(), kRefused);
}

TEST_F(RemoteClients, WhoseCertificateHasExpiredAreTurnedAway) {
    EXPECT_EQ(Ask(Open(clients.Issue(kAdmin, 3000))).error_code(), kRefused);
}

TEST_F(RemoteClients, WithoutTlsAreTurnedAway) {
    EXPECT_EQ(Ask(Open(grpc::InsecureChannelCredentials())).error_code(), kRefused);
}

TEST_F(RemoteClients, SeeWhetherTheHostIsWhoItShouldBe) {
    EXPECT_EQ(Ask(Open(foreign.Certificate(), clients.Issue(kAdmin))).error_code(), kRefused);
}

TEST_F(RemoteClients, GoOnWhileTheHostGetsAnotherCertificate) {
    const Authority next("the hosts' next authority");
    const Identity admin = clients.Issue(kAdmin);
    const auto before = Open(admin);
    ASSERT_TRUE(Ask(before).ok());
    grpc::ClientContext context;
    const auto watch = v1::Alerts::NewStub(before)->WatchAlerts(&context, v1::WatchAlertsRequest());
    v1::WatchAlertsResponse first;
    ASSERT_TRUE(watch->Read(&first));

    PutHost(next.Issue("localhost"));
    daemon->Signal(SIGHUP);
    daemon->AwaitError("the certificates are good");
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!Ask(Open(next.Certificate(), admin)).ok()) {
        ASSERT_LT(std::chrono::steady_clock::now(), limit);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    EXPECT_EQ(Ask(Open(admin)).error_code(), kRefused);

    EXPECT_TRUE(Ask(before).ok());
    Tool({"set", "Sim E1 left", "Number=40"});
    v1::WatchAlertsResponse news;
    EXPECT_TRUE(watch->Read(&news));
    context.TryCancel();
}

TEST_F(RemoteClients, AreServedOnWhenTheNewFilesAreNoCertificates) {
    const Identity admin = clients.Issue(kAdmin);
    home.Write("host.pem", "nothing");
    daemon->Signal(SIGHUP);
    daemon->AwaitError("new connections over TCP may be refused: no certificate in ");
    EXPECT_TRUE(Ask(Open(admin)).ok());
}

TEST_F(RemoteClients, UseTheToolLikeLocalOnes) {
    const Finished list = RunTool(clients.Issue(kViewer), {"board", "list"});
    EXPECT_EQ(list.status, 0) << list.err;
    EXPECT_NE(list.out.find("Sim E1 left"), std::string::npos);
    const Finished denied = RunTool(clients.Issue(kViewer), {"board", "start", "Sim E1 left"});
    EXPECT_EQ(denied.status, 5) << denied.err;
    const Finished started = RunTool(clients.Issue(kAdmin), {"board", "start", "Sim E1 left"});
    EXPECT_EQ(started.status, 0) << started.err;
    EXPECT_EQ(RunTool(clients.Issue(kAdmin), {"objects"}).status, 0);
    EXPECT_EQ(RunTool(foreign.Issue(kAdmin), {"board", "list"}).status, 3);
    // Not done here by mistake.
    EXPECT_EQ(RunTool(clients.Issue(kAdmin), {"init"}).status, 2);
    EXPECT_EQ(
        ChildProcess({OAM_TOOL, "--host", address, "board", "list"}, home.Root()).Finish().status,
        2);
}

class NoTlsFiles : public DaemonTest {
  protected:
    // The daemon must not start with these options; what it says.
    Finished Refused(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), OAM_DAEMON);
        return ChildProcess(arguments, home.Root()).Finish();
    }
};

TEST_F(NoTlsFiles, MeansNoListenerOverTcp) {
    EXPECT_EQ(Refused({"--listen", "127.0.0.1:0"}).status, 2);
    home.Write("oamd.conf", "listen = \"127.0.0.1:0\"\n");
    EXPECT_EQ(Refused({"--config", home.Path("oamd.conf")}).status, 2);
    home.Write("empty", "");
    for (const std::string& file : {std::string(), home.Path("empty"), home.Path("missing")}) {
        const Finished ended = Refused({"--listen", "127.0.0.1:0", "--certificate", file, "--key",
                                        file, "--client-authorities", file});
        EXPECT_EQ(ended.status, 1);
        EXPECT_NE(ended.err.find("no certificate in " + file), std::string::npos) << ended.err;
    }
}

TEST_F(NoTlsFiles, ThatGoTogetherIsSaid) {
    const Authority authority("an authority");
    const Identity one = authority.Issue("localhost"), other = authority.Issue("localhost");
    home.Write("host.pem", one.certificate);
    home.Write("other.key", other.key);
    home.Write("clients.pem", authority.Certificate());
    const Finished ended =
        Refused({"--listen", "127.0.0.1:0", "--certificate", home.Path("host.pem"), "--key",
                 home.Path("other.key"), "--client-authorities", home.Path("clients.pem")});
    EXPECT_EQ(ended.status, 1);
    EXPECT_NE(ended.err.find("other.key: key values mismatch"), std::string::npos) << ended.err;
}

}  // namespace
}  // namespace oam::test
