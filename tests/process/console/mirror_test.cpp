// The API through the mirror: answers, refusals and names of any bytes.
#include "console_test.h"
#include "mirror/json_codec.h"

namespace oam::test {
namespace {

using ::testing::HasSubstr;

class ConsoleMirror : public ConsoleTest {
  protected:
    void SetUp() override {
        Start();
        StartConsole();
        client = Script();
    }
    std::unique_ptr<httplib::Client> client;
};

TEST_F(ConsoleMirror, ListsLooksUpAndDescribesBoards) {
    const json boards = Get(*client, "/boards")["boards"];
    ASSERT_EQ(boards.size(), 4u);
    EXPECT_EQ(boards[0]["name"], "Sim E1 left");
    const json one = Get(*client, "/boards/Sim%20E1%20left");
    EXPECT_EQ(one, boards[0]);
    const auto& place = one["busSlot"];
    EXPECT_EQ(Get(*client, "/lookup?busSlot.bus=" + std::to_string(place["bus"].get<int>()) +
                               "&busSlot.slot=" + std::to_string(place["slot"].get<int>()))["name"],
              "Sim E1 left");
    const json described =
        Get(*client, "/objects/Sim%20E1%20left/description?keywords=Number")["descriptions"];
    ASSERT_EQ(described.size(), 1u);
    EXPECT_EQ(described[0]["keyword"]["name"], "Number");
    EXPECT_EQ(Get(*client, "/boards/Sim%20E1%20left/status?selector=0")["status"], 0);
}

TEST_F(ConsoleMirror, StartsABoardAndTellsTheOutcome) {
    const auto begun = Send(*client, "POST", "/boards/Sim%20E1%20left/start", json::object());
    ASSERT_EQ(begun->status, 200) << begun->body;
    const std::string id = json::parse(begun->body)["id"];
    const json ended = Get(*client, "/operations/" + id + "/outcome?timeLimit=30");
    EXPECT_EQ(ended["state"], "done");
    EXPECT_EQ(ended["kind"], "start");
    EXPECT_EQ(Get(*client, "/operations/" + id), ended);
}

TEST_F(ConsoleMirror, TellsWhatWasRefusedAndWhy) {
    const auto refused =
        Send(*client, "PATCH", "/objects/Sim%20E1%20left",
             {{"changes", json::array({{{"keyword", "Number"}, {"value", "1"}}})}});
    EXPECT_EQ(refused->status, 409);
    const json error = ErrorIn(refused);
    EXPECT_EQ(error["reason"], "already-exists");
    EXPECT_EQ(error["codeName"], "OAMERR_ALREADY_EXISTS");
    EXPECT_EQ(error["code"], 0x40000005);
    EXPECT_EQ(error["object"], "Sim E1 left");
    EXPECT_EQ(error["keyword"], "Number");
    EXPECT_EQ(error["value"], "1");
    EXPECT_NE(error["rule"], "");
    const auto missing = Send(*client, "GET", "/boards/none", nullptr);
    EXPECT_EQ(missing->status, 404);
    EXPECT_EQ(ErrorIn(missing)["reason"], "not-found");
}

// Every byte as an escape.
std::string escaped(const std::string& name) {
    std::string path;
    for (const char c : name) {
        char escape[4];
        std::snprintf(escape, sizeof escape, "%%%02x", static_cast<unsigned char>(c));
        path += escape;
    }
    return path;
}

TEST_F(ConsoleMirror, CarriesHostileNamesUnchanged) {
    const auto rename = [&](const std::string& from, const json& to) {
        return Send(*client, "PATCH", "/objects/" + escaped(from),
                    {{"changes", json::array({{{"keyword", "Name"}, {"value", to}}})}});
    };
    // A data file cannot hold it.
    const std::string markup = "<img src=x onerror=alert(1)>";
    const auto refused = rename("Sim E1 left", markup);
    EXPECT_EQ(refused->status, 409);
    EXPECT_EQ(ErrorIn(refused)["value"], markup);
    std::string now = "Sim E1 left";
    for (const std::string& name : {std::string("a/b?c#d%41"), std::string("\xff\xfe odd"),
                                    std::string("\xe2\x80\xae backwards"), std::string("'\"&;")}) {
        const json text = console::TextToJson(name);
        ASSERT_EQ(rename(now, text)->status, 200) << name;
        now = name;
        EXPECT_EQ(Get(*client, "/boards/" + escaped(name))["name"], text);
    }
}

TEST_F(ConsoleMirror, ExportsPreviewsAndImports) {
    const auto exported = client->Get("/api/v1/configuration");
    ASSERT_EQ(exported->status, 200);
    EXPECT_THAT(exported->body, HasSubstr("Sim E1 left"));
    Send(*client, "DELETE", "/objects/Sim%20E1%20left", nullptr);
    EXPECT_EQ(Get(*client, "/boards")["boards"].size(), 3u);
    const char* const type = "application/octet-stream";
    const auto preview = client->Put("/api/v1/configuration?preview=true", exported->body, type);
    ASSERT_EQ(preview->status, 200) << preview->body;
    const json differences = json::parse(preview->body)["differences"];
    ASSERT_EQ(differences.size(), 1u);
    EXPECT_EQ(differences[0]["kind"], "created");
    EXPECT_EQ(Get(*client, "/boards")["boards"].size(), 3u);
    const auto imported = client->Put("/api/v1/configuration", exported->body, type);
    ASSERT_EQ(imported->status, 200) << imported->body;
    EXPECT_GT(json::parse(imported->body)["generation"], 0);
    EXPECT_EQ(Get(*client, "/boards")["boards"].size(), 4u);
    const auto wrong = client->Put("/api/v1/configuration", std::string("nothing"), type);
    EXPECT_FALSE(json::parse(wrong->body)["findings"].empty());
}

TEST_F(ConsoleMirror, FindsADaemonThatCameBack) {
    Kill();
    const auto away = Send(*client, "GET", "/boards", nullptr);
    EXPECT_EQ(away->status, 503);
    EXPECT_EQ(ErrorIn(away)["reason"], "unavailable");
    EXPECT_FALSE(Get(*client, "/session")["reachable"]);
    StartAgain();
    EXPECT_EQ(Get(*client, "/boards")["boards"].size(), 4u);
    EXPECT_TRUE(Get(*client, "/session")["reachable"]);
    // Also when nobody asked while it was away, and for what is not asked twice.
    Kill();
    StartAgain();
    EXPECT_EQ(Send(*client, "POST", "/detection", json::object())->status, 200);
    Kill();
    StartAgain();
    EXPECT_EQ(client->Get("/api/v1/configuration")->status, 200);
}

}  // namespace
}  // namespace oam::test
