// Who gets in, and what a request must be before anybody looks at what it asks for.
#include <sys/stat.h>

#include "console_test.h"
#include "mirror/routes.h"
#include "page/files.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;

class ConsoleEntry : public ConsoleTest {
  protected:
    void SetUp() override {
        Start();
        StartConsole();
    }

    // A browser's session: the cookie to send, and the form token.
    struct Login {
        std::string cookie;
        std::string formToken;
    };
    Login LogIn() const {
        const auto client = Stranger();
        const auto answer = Send(*client, "POST", "/session", {{"token", token}});
        EXPECT_TRUE(answer && answer->status == 200);
        const std::string cookie = answer->get_header_value("Set-Cookie");
        EXPECT_THAT(cookie, HasSubstr("HttpOnly"));
        EXPECT_THAT(cookie, HasSubstr("SameSite=Strict"));
        return {cookie.substr(0, cookie.find(';')), json::parse(answer->body)["formToken"]};
    }
};

TEST_F(ConsoleEntry, IsRefusedWithoutALoginOnEveryRoute) {
    const auto client = Stranger();
    for (const console::Route& route : console::Routes()) {
        std::string path = route.path;
        for (auto at = path.find('{'); at != path.npos; at = path.find('{'))
            path.replace(at, path.find('}') - at + 1, "x");
        const auto answer = Send(*client, route.method, path, json::object());
        ASSERT_TRUE(answer) << path;
        EXPECT_EQ(answer->status, 401) << route.method << ' ' << path;
        EXPECT_EQ(ErrorIn(answer)["reason"], "not-logged-in");
    }
    const auto session = Send(*client, "GET", "/session", nullptr);
    EXPECT_EQ(json::parse(session->body)["login"], json::array({"token"}));
}

TEST_F(ConsoleEntry, NeedsTheTokenOfThisStart) {
    const auto client = Stranger();
    for (const json& wrong :
         {json{{"token", "0"}}, json{{"token", ""}}, json{{"token", 7}},
          json{{"user", "root"}, {"password", ""}}, json{{"certificate", true}}, json::object()})
        EXPECT_EQ(Send(*client, "POST", "/session", wrong)->status, 401) << wrong;
    client->set_bearer_token_auth(token.substr(1) + "0");
    EXPECT_EQ(Send(*client, "GET", "/boards", nullptr)->status, 401);
    const auto script = Script();
    EXPECT_EQ(Get(*script, "/session")["role"], "admin");
    EXPECT_FALSE(Get(*script, "/session").contains("formToken"));
}

TEST_F(ConsoleEntry, GivesTheTokenToThisUserAloneInAFile) {
    EndConsole();
    StartConsole({"--token-file", home.Path("token")});
    struct stat facts {};
    ASSERT_EQ(stat(home.Path("token").c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777u, 0600u);
    EXPECT_EQ(home.Read("token"), token + '\n');
    EndConsole();
    EXPECT_FALSE(home.Exists("token"));
}

TEST_F(ConsoleEntry, OfACookieChangesNothingWithoutTheFormToken) {
    const auto login = LogIn();
    const auto client = Stranger();
    const httplib::Headers cookie = {{"Cookie", "other=1; " + login.cookie}};
    EXPECT_EQ(Send(*client, "GET", "/boards", nullptr, cookie)->status, 200);
    auto refused = Send(*client, "POST", "/detection", json::object(), cookie);
    EXPECT_EQ(refused->status, 403);
    EXPECT_EQ(ErrorIn(refused)["reason"], "no-form-token");
    httplib::Headers both = cookie;
    both.emplace("X-OAM-Form-Token", login.formToken);
    EXPECT_EQ(Send(*client, "POST", "/detection", json::object(), both)->status, 200);
    EXPECT_EQ(Send(*client, "DELETE", "/session", nullptr, both)->status, 200);
    EXPECT_EQ(Send(*client, "GET", "/boards", nullptr, cookie)->status, 401);
}

TEST_F(ConsoleEntry, IsRefusedToForeignPages) {
    const auto login = LogIn();
    const auto client = Stranger();
    const auto with = [&](const httplib::Headers& more) {
        httplib::Headers headers = {{"Cookie", login.cookie},
                                    {"X-OAM-Form-Token", login.formToken}};
        headers.insert(more.begin(), more.end());
        return Send(*client, "POST", "/detection", json::object(), headers)->status;
    };
    EXPECT_EQ(with({{"Origin", address}}), 200);
    EXPECT_EQ(with({{"Origin", "http://evil.test"}}), 403);
    EXPECT_EQ(with({{"Origin", "null"}}), 403);
    EXPECT_EQ(with({{"Sec-Fetch-Site", "cross-site"}}), 403);
    EXPECT_EQ(with({{"Sec-Fetch-Site", "same-origin"}}), 200);
}

TEST_F(ConsoleEntry, IsByANameOfThisHost) {
    const auto client = Script();
    const std::string port = address.substr(address.rfind(':'));
    const auto by = [&](const std::string& host) {
        return client->Get("/api/v1/boards", {{"Host", host}})->status;
    };
    EXPECT_EQ(by("127.0.0.1" + port), 200);
    EXPECT_EQ(by("LOCALHOST" + port), 200);
    EXPECT_EQ(by("evil.test" + port), 421);
    EXPECT_EQ(by("127.0.0.1"), 421);
    EXPECT_EQ(by(""), 421);
    EXPECT_EQ(client->Get("/", {{"Host", "evil.test" + port}})->status, 421);
}

TEST_F(ConsoleEntry, SendsTheSafeHeadersWithEveryAnswer) {
    const auto client = Stranger();
    for (const char* path : {"/", "/page/app.js", "/nothing", "/api/v1/boards", "/api/none"}) {
        const auto answer = client->Get(path);
        ASSERT_TRUE(answer) << path;
        const std::string policy = answer->get_header_value("Content-Security-Policy");
        EXPECT_THAT(policy, HasSubstr("default-src 'none'")) << path;
        EXPECT_THAT(policy, ::testing::Not(HasSubstr("unsafe"))) << path;
        EXPECT_EQ(answer->get_header_value("X-Content-Type-Options"), "nosniff") << path;
        EXPECT_EQ(answer->get_header_value("X-Frame-Options"), "DENY") << path;
        EXPECT_EQ(answer->get_header_value("Referrer-Policy"), "no-referrer") << path;
        EXPECT_FALSE(answer->has_header("Access-Control-Allow-Origin")) << path;
    }
}

TEST_F(ConsoleEntry, ServesThePageOnceAndThenOnlyWhenItChanged) {
    const auto client = Stranger();
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < console::kPageFileCount; ++i) {
        const auto& file = console::kPageFiles[i];
        const auto answer = client->Get(file.path);
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->status, 200);
        EXPECT_EQ(answer->body, std::string(file.bytes, file.size));
        bytes += answer->body.size();
        EXPECT_EQ(client->Get(file.path, {{"If-None-Match", file.tag}})->status, 304);
    }
    EXPECT_LT(bytes, 150u * 1024);
    EXPECT_EQ(client->Get("/page/../settings.h")->status, 404);
    EXPECT_EQ(client->Post("/", "{}", "application/json")->status, 405);
}

TEST_F(ConsoleEntry, BoundsWhatIsSentAndKeepsTheConnectionInStep) {
    const auto client = Script();
    const std::string large(300 * 1024, ' ');
    const char* const type = "application/json";
    EXPECT_EQ(client->Post("/api/v1/detection", large, type)->status, 413);
    EXPECT_EQ(Get(*client, "/boards")["boards"].size(), 4u);
    EXPECT_EQ(client->Post("/api/v1/detection", "{", type)->status, 400);
    EXPECT_EQ(client->Post("/api/v1/detection", "{}", "text/plain")->status, 415);
    EXPECT_EQ(client->Post("/api/v1/detection", {{"Content-Encoding", "gzip"}}, "{}", type)->status,
              415);
    httplib::MultipartFormDataItems form = {{"a", large, "", ""}};
    EXPECT_EQ(client->Post("/api/v1/detection", form)->status, 413);
    EXPECT_EQ(client->Get("/api/v1/boards/" + std::string(6000, 'x'))->status, 414);
    EXPECT_EQ(Get(*client, "/boards")["boards"].size(), 4u);
    // Without a login the same, and what was not read is not taken for the next request.
    const auto stranger = Stranger();
    EXPECT_EQ(stranger->Post("/api/v1/detection", large, type)->status, 401);
    EXPECT_EQ(stranger->Get("/")->status, 200);
}

TEST_F(ConsoleEntry, AnswersNonsenseAsNonsense) {
    const auto client = Script();
    EXPECT_EQ(client->Get("/api/v1/nothing")->status, 404);
    EXPECT_EQ(client->Get("/api/v2/boards")->status, 404);
    EXPECT_EQ(Send(*client, "POST", "/boards", json::object())->status, 405);
    EXPECT_EQ(client->Get("/api/v1/boards?x=1")->status, 400);
    EXPECT_EQ(client->Get("/api/v1/alerts/page?limit=many")->status, 400);
    EXPECT_EQ(client->Get("/api/v1/alerts/page?limit=%zz")->status, 400);
    EXPECT_EQ(client->Options("/api/v1/boards")->status, 405);
}

}  // namespace
}  // namespace oam::test
