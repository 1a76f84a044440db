// TLS and certificates: whose is known, whose is not, and as what the daemon sees them.
#include <signal.h>

#include "certificates.h"
#include "console_test.h"
#include "logins.h"

namespace oam::test {
namespace {

class ConsoleTls : public ConsoleTest {
  protected:
    void SetUp() override {
        const Authority hosts("hosts"), clients("clients"), others("others");
        home.Write("hosts.pem", hosts.Certificate());
        home.Write("clients.pem", clients.Certificate());
        Keep("host", hosts.IssueAs("host", "DNS:host.test,IP:127.0.0.1"));
        Keep("noc", clients.IssueAs("noc.test", ""));
        Keep("desk", clients.IssueAs("ignored", "DNS:desk.test"));
        Keep("other", others.IssueAs("noc.test", ""));
        home.Write("oam/roles.conf", "user " + OwnUser() +
                                         " admin\ncertificate noc.test operator\n"
                                         "certificate desk.test viewer\n");
        Start();
        StartConsole({"--certificate", home.Path("host.pem"), "--key", home.Path("host.key"),
                      "--client-authorities", home.Path("clients.pem")});
        // A connection that the gateway has refused may be written to before that is noticed.
        signal(SIGPIPE, SIG_IGN);
    }

    void Keep(const std::string& file, const Identity& identity) {
        home.Write(file + ".pem", identity.certificate);
        home.Write(file + ".key", identity.key);
    }

    std::unique_ptr<httplib::Client> With(const std::string& certificate) const {
        auto client = std::make_unique<httplib::Client>(address, home.Path(certificate + ".pem"),
                                                        home.Path(certificate + ".key"));
        client->set_ca_cert_path(home.Path("hosts.pem"));
        client->enable_server_certificate_verification(true);
        client->set_read_timeout(60);
        return client;
    }
};

TEST_F(ConsoleTls, KnowsAClientByTheNameInItsCertificate) {
    EXPECT_TRUE(address.starts_with("https://")) << address;
    for (const auto& [file, role] : {std::pair("noc", "operator"), std::pair("desk", "viewer")}) {
        const auto client = With(file);
        // A certificate alone is shown for a foreign page, too.
        EXPECT_EQ(Send(*client, "GET", "/boards", nullptr)->status, 401);
        const auto login =
            Send(*client, "POST", "/session", {{"certificate", true}, {"bearer", true}});
        ASSERT_TRUE(login) << httplib::to_string(login.error());
        ASSERT_EQ(login->status, 200) << login->body;
        client->set_bearer_token_auth(json::parse(login->body)["bearer"]);
        EXPECT_EQ(Get(*client, "/session")["role"], role);
        EXPECT_EQ(Get(*client, "/boards")["boards"].size(), 4u);
        EXPECT_EQ(Send(*client, "POST", "/boards/x/buffer", json::object())->status, 403);
    }
}

TEST_F(ConsoleTls, RefusesCertificatesOfOtherAuthorities) {
    const auto answer = With("other")->Get("/api/v1/session");
    EXPECT_FALSE(answer && answer->status == 200);
    const auto none = Stranger();
    const auto session = Send(*none, "GET", "/session", nullptr);
    ASSERT_TRUE(session);
    EXPECT_EQ(session->status, 401);
    EXPECT_EQ(json::parse(session->body)["login"], json::array());
    EXPECT_EQ(Send(*none, "POST", "/session", {{"certificate", true}})->status, 401);
}

TEST_F(ConsoleTls, KeepsItsCookieToTlsAndToThisHost) {
    const auto client = With("noc");
    const auto login = Send(*client, "POST", "/session", {{"certificate", true}});
    const std::string cookie = login->get_header_value("Set-Cookie");
    EXPECT_TRUE(cookie.starts_with("__Host-")) << cookie;
    EXPECT_THAT(cookie, ::testing::HasSubstr("; Secure"));
    EXPECT_THAT(login->get_header_value("Strict-Transport-Security"),
                ::testing::HasSubstr("max-age"));
}

TEST_F(ConsoleTls, IsReachedByTheNamesInItsCertificate) {
    const auto client = With("noc");
    const std::string port = address.substr(address.rfind(':'));
    EXPECT_EQ(client->Get("/", {{"Host", "host.test" + port}})->status, 200);
    EXPECT_EQ(client->Get("/", {{"Host", "other.test" + port}})->status, 421);
}

TEST_F(ConsoleTls, ShowsANewCertificateAndTrustsNewAuthoritiesAfterASignal) {
    const std::string port = address.substr(address.rfind(':'));
    EXPECT_FALSE(With("other")->Get("/"));
    const Authority renewed("renewed"), others("others");
    Keep("host", renewed.IssueAs("host", "DNS:new.test,IP:127.0.0.1"));
    Keep("other", others.IssueAs("noc.test", ""));
    home.Write("clients.pem", others.Certificate());
    console->Signal(SIGHUP);
    console->AwaitError("the certificates are read again");

    home.Write("hosts.pem", renewed.Certificate());
    const auto client = With("other");
    const auto answer = client->Get("/", {{"Host", "new.test" + port}});
    ASSERT_TRUE(answer) << httplib::to_string(answer.error());
    EXPECT_EQ(answer->status, 200);
    EXPECT_EQ(client->Get("/", {{"Host", "host.test" + port}})->status, 421);
    EXPECT_FALSE(With("noc")->Get("/")) << "its authority is trusted no more";
}

TEST_F(ConsoleTls, KeepsItsCertificateWhenTheNewOneCannotBeUsed) {
    home.Write("host.key", "no key");
    console->Signal(SIGHUP);
    console->AwaitError("the certificates stay as they were: the key ");
    EXPECT_EQ(With("noc")->Get("/")->status, 200);
}

}  // namespace
}  // namespace oam::test
