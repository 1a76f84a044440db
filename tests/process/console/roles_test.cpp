// Every verb and every role, through the mirror: what a role may is what the table says, whoever
// logged in and however.
#include <signal.h>

#include "console_test.h"
#include "logins.h"
#include "mirror/routes.h"

namespace oam::test {
namespace {

// Users that every Debian system has; what they may is of these rules alone.
constexpr std::array kUsers = {std::pair("viewer", "games"), std::pair("operator", "man"),
                               std::pair("configurator", "mail"), std::pair("admin", "news")};

class ConsoleRoles : public ConsoleTest {
  protected:
    void SetUp() override {
        WritePamRules(home);
        Start();
        std::string rules = "user " + OwnUser() + " admin\n";
        for (const auto& [role, user] : kUsers)
            rules += std::string("user ") + user + ' ' + role + '\n';
        home.Write("oam/roles.conf", rules);
        daemon->Signal(SIGHUP);
        daemon->AwaitError("roles were read again");
        StartConsole({"--pam", "--pam-directory", home.Path("pam.d")});
    }

    std::unique_ptr<httplib::Client> As(const std::string& user) const {
        auto client = Stranger();
        const auto answer =
            Send(*client, "POST", "/session",
                 {{"user", user}, {"password", "secret of " + user}, {"bearer", true}});
        EXPECT_EQ(answer->status, 200) << answer->body;
        client->set_bearer_token_auth(json::parse(answer->body)["bearer"]);
        return client;
    }
};

int rank(const std::string& role) {
    for (int i = 0; i < 4; ++i)
        if (kUsers.at(static_cast<std::size_t>(i)).first == role) return i;
    return -1;
}

// A request that comes as far as the role, and does as little as can be behind it.
httplib::Result ask(httplib::Client& client, const console::Route& route) {
    std::string path = std::string("/api/v1") + route.path;
    for (auto at = path.find('{'); at != path.npos; at = path.find('{'))
        path.replace(at, path.find('}') - at + 1, "1");
    const std::string method = route.method;
    if (method == "POST") return client.Post(path, "{}", "application/json");
    if (method == "PATCH") return client.Patch(path, "{}", "application/json");
    if (method == "DELETE") return client.Delete(path);
    if (method == "PUT")
        return client.Put(path, route.kind == console::RouteKind::kImport ? "x" : "{}",
                          route.kind == console::RouteKind::kImport ? "application/octet-stream"
                                                                    : "application/json");
    return client.Get(path);
}

TEST_F(ConsoleRoles, HoldForEveryVerb) {
    for (const auto& [role, user] : kUsers) {
        const auto client = As(user);
        EXPECT_EQ(Get(*client, "/session")["role"], role);
        EXPECT_EQ(Get(*client, "/session")["user"], std::string(user) + " via " + OwnUser());
        for (const console::Route& route : console::Routes()) {
            if (route.kind == console::RouteKind::kEvents) continue;
            const std::string what = std::string(role) + ": " + route.verb;
            const bool isOwn = std::string(route.service) != "Sessions";
            // To roll everything back is more than to roll back one object.
            const std::string needed = std::string(route.verb) == "RollBack" ? "admin" : route.role;
            const auto answer = ask(*client, route);
            ASSERT_TRUE(answer) << what;
            if (rank(role) < rank(needed)) {
                EXPECT_EQ(answer->status, 403) << what;
                EXPECT_EQ(ErrorIn(answer)["reason"], "not-permitted") << what;
            } else {
                EXPECT_NE(answer->status, 403) << what << answer->body;
                EXPECT_NE(answer->status, 401) << what << answer->body;
                EXPECT_LT(isOwn ? answer->status : 0, 500) << what << answer->body;
            }
        }
    }
}

TEST_F(ConsoleRoles, AreNobodysWithoutTheRightPassword) {
    const auto client = Stranger();
    for (const json& wrong :
         {json{{"user", "man"}, {"password", "secret of mail"}},
          json{{"user", "man"}, {"password", ""}}, json{{"user", ""}, {"password", ""}},
          json{{"user", std::string("man\0x", 5)}, {"password", "secret of man"}},
          json{{"user", "man"}, {"password", std::string(5000, 'x')}}, json{{"token", ""}}})
        EXPECT_GE(Send(*client, "POST", "/session", wrong)->status, 400) << wrong;
    const auto session = Send(*client, "GET", "/session", nullptr);
    EXPECT_EQ(session->status, 401);
    EXPECT_EQ(json::parse(session->body)["login"], json::array({"password"}));
}

TEST_F(ConsoleRoles, OfStreamsHoldToo) {
    home.Write("oam/roles.conf", "user " + OwnUser() + " admin\nuser games viewer\n");
    daemon->Signal(SIGHUP);
    const auto stranger = As("mail");
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    std::string body;
    while (body.find("event: refused") == body.npos) {
        ASSERT_LT(std::chrono::steady_clock::now(), limit);
        body.clear();
        stranger->Get("/api/v1/alerts", [&](const char* data, std::size_t size) {
            body.append(data, size);
            return body.find("caughtUp") == body.npos;
        });
    }
    EXPECT_THAT(body, ::testing::HasSubstr("not-permitted"));
}

}  // namespace
}  // namespace oam::test
