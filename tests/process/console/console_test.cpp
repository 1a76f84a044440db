#include "console_test.h"

#include <signal.h>

namespace oam::test {
namespace {

std::string between(const std::string& text, const std::string& before, char after) {
    const auto at = text.find(before);
    if (at == text.npos) return {};
    const auto begin = at + before.size();
    return text.substr(begin, text.find(after, begin) - begin);
}

}  // namespace

void ConsoleTest::TearDown() {
    EndConsole();
    DaemonTest::TearDown();
}

void ConsoleTest::StartConsole(const std::vector<std::string>& given) {
    const auto says = [&](const char* option) {
        return std::find(given.begin(), given.end(), option) != given.end();
    };
    std::vector<std::string> command{OAM_CONSOLE};
    if (!says("--listen")) command.insert(command.end(), {"--listen", "127.0.0.1:0"});
    command.insert(command.end(), given.begin(), given.end());
    console = std::make_unique<ChildProcess>(command, home.Root());
    console->AwaitOutput("/\n");
    address = between(console->Output(), " at ", '\n');
    ASSERT_FALSE(address.empty());
    address.pop_back();
    if (says("--pam") || says("--client-authorities")) return;
    console->AwaitOutput("#token=");
    token = between(console->Output(), "#token=", '\n');
}

void ConsoleTest::EndConsole() {
    if (!console) return;
    console->Signal(SIGTERM);
    EXPECT_EQ(console->Finish().status, 0);
    console.reset();
}

std::unique_ptr<httplib::Client> ConsoleTest::Stranger() const {
    auto client = std::make_unique<httplib::Client>(address);
    client->set_read_timeout(60);
    client->set_keep_alive(true);
    client->enable_server_certificate_verification(false);
    return client;
}

std::unique_ptr<httplib::Client> ConsoleTest::Script() const {
    auto client = Stranger();
    client->set_bearer_token_auth(token);
    return client;
}

json ConsoleTest::Get(httplib::Client& client, const std::string& path) {
    const auto result = client.Get("/api/v1" + path);
    EXPECT_TRUE(result) << path;
    if (!result) return {};
    EXPECT_EQ(result->status, 200) << path << '\n' << result->body;
    return json::parse(result->body, nullptr, false);
}

httplib::Result ConsoleTest::Send(httplib::Client& client, const std::string& method,
                                  const std::string& path, const json& body,
                                  const httplib::Headers& headers) {
    const std::string bytes = body.is_null() ? "" : body.dump();
    const std::string whole = "/api/v1" + path;
    const char* const type = "application/json";
    if (method == "POST") return client.Post(whole, headers, bytes, type);
    if (method == "PUT") return client.Put(whole, headers, bytes, type);
    if (method == "PATCH") return client.Patch(whole, headers, bytes, type);
    if (method == "DELETE") return client.Delete(whole, headers);
    return client.Get(whole, headers);
}

json ErrorIn(const httplib::Result& result) {
    if (!result) return {};
    const json body = json::parse(result->body, nullptr, false);
    EXPECT_TRUE(body.contains("error")) << result->body;
    return body.value("error", json::object());
}

}  // namespace oam::test
