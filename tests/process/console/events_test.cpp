// Alerts as events: none twice, none lost, and what is lost is said.
#include "console_test.h"
#include "event_reader.h"

namespace oam::test {
namespace {

class ConsoleEvents : public ConsoleTest {
  protected:
    void SetUp() override {
        Start();
        StartConsole();
        client = Script();
    }

    void Raise(const std::string& text) {
        const auto answer = Send(*client, "POST", "/alerts",
                                 {{"code", 0x40002001}, {"source", "test"}, {"text", text}});
        ASSERT_EQ(answer->status, 200) << answer->body;
    }
    std::unique_ptr<EventReader> Watch(const std::string& query,
                                       const httplib::Headers& headers = {}) const {
        return std::make_unique<EventReader>(Script(), "/alerts?filter.source=test" + query,
                                             headers);
    }

    std::unique_ptr<httplib::Client> client;
};

TEST_F(ConsoleEvents, ComeInOrderWithTheirNumbers) {
    const auto watcher = Watch("");
    ASSERT_TRUE(watcher->Next("caughtUp"));
    std::uint64_t last = 0;
    for (int i = 0; i < 50; ++i) {
        Raise(std::to_string(i));
        const auto event = watcher->Next("alert");
        ASSERT_TRUE(event);
        EXPECT_EQ(event->data["text"], std::to_string(i));
        EXPECT_EQ(event->id, std::to_string(event->data["sequence"].get<std::uint64_t>()));
        EXPECT_GT(event->data["sequence"], last);
        last = event->data["sequence"];
    }
}

TEST_F(ConsoleEvents, GoOnBehindTheLastOneThatABrowserHas) {
    const auto before = Watch("");
    ASSERT_TRUE(before->Next("caughtUp"));
    for (const char* text : {"one", "two", "three"}) Raise(text);
    const auto one = before->Next("alert");
    ASSERT_TRUE(one);
    const auto again = Watch("&after=0", {{"Last-Event-ID", one->id}});
    EXPECT_EQ(again->Next("alert")->data["text"], "two");
    EXPECT_EQ(again->Next("alert")->data["text"], "three");
}

TEST_F(ConsoleEvents, GoOnWhenTheDaemonWasKilledAndCameBack) {
    const auto watcher = Watch("");
    ASSERT_TRUE(watcher->Next("caughtUp"));
    Raise("before");
    ASSERT_EQ(watcher->Next("alert")->data["text"], "before");
    Kill();
    EXPECT_EQ(watcher->Next("daemon")->data["reachable"], false);
    StartAgain();
    EXPECT_EQ(watcher->Next("daemon")->data["reachable"], true);
    // The numbers that the killed daemon had set aside are gone, and that is said.
    const auto gap = watcher->Next("gap");
    ASSERT_TRUE(gap);
    EXPECT_LE(gap->data["first"], gap->data["last"]);
    Raise("after");
    EXPECT_EQ(watcher->Next("alert")->data["text"], "after");
}

TEST_F(ConsoleEvents, SayWhatIsNotKeptAnyMore) {
    EXPECT_EQ(Get(*client, "/host")["running"], true);
    Kill();
    home.Remove("oam/oamd.db");
    StartAgain();
    Raise("new");
    const auto watcher = Watch("&after=0");
    const auto gap = watcher->Next("gap");
    ASSERT_TRUE(gap);
    EXPECT_EQ(gap->data["first"], 1);
    EXPECT_EQ(watcher->Next("alert")->data["text"], "new");
}

TEST_F(ConsoleEvents, OfFiftyWatchersHoldUpNoRequest) {
    constexpr int kWatchers = 50;
    const auto ask = [&] {
        const auto begin = std::chrono::steady_clock::now();
        for (int i = 0; i < 20; ++i) EXPECT_EQ(Get(*Script(), "/boards")["boards"].size(), 4u);
        return std::chrono::steady_clock::now() - begin;
    };
    const auto alone = ask();
    std::vector<std::unique_ptr<EventReader>> watchers;
    for (int i = 0; i < kWatchers; ++i) watchers.push_back(Watch(""));
    for (const auto& watcher : watchers) ASSERT_TRUE(watcher->Next("caughtUp"));
    // Held up, a request would wait for a stream to end, which none does.
    EXPECT_LT(ask(), 10 * alone + std::chrono::seconds(5));
    Raise("for all");
    for (const auto& watcher : watchers) {
        const auto event = watcher->Next("alert");
        ASSERT_TRUE(event);
        EXPECT_EQ(event->data["text"], "for all");
    }
}

TEST_F(ConsoleEvents, HaveALimitAndGiveTheirPlacesBack) {
    EndConsole();
    StartConsole({"--streams", "2"});
    client = Script();
    auto first = Watch("");
    const auto second = Watch("");
    ASSERT_TRUE(first->Next("caughtUp"));
    ASSERT_TRUE(second->Next("caughtUp"));
    const auto refused = Send(*client, "GET", "/alerts", nullptr);
    EXPECT_EQ(refused->status, 503);
    EXPECT_TRUE(refused->has_header("Retry-After"));
    first.reset();
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    for (;;) {
        const auto again = Watch("");
        if (again->Next("caughtUp")) break;
        ASSERT_LT(std::chrono::steady_clock::now(), limit);
    }
}

TEST_F(ConsoleEvents, TellOperationsAsTheyEnd) {
    const auto begun = Send(*client, "POST", "/boards/Sim%20E1%20left/start", json::object());
    const std::string id = json::parse(begun->body)["id"];
    EventReader follower(Script(), "/operation-events?ids=" + id);
    const auto ended = follower.Next("");
    ASSERT_TRUE(ended);
    EXPECT_EQ(ended->data["id"], id);
    EXPECT_EQ(ended->data["state"], "done");
    EXPECT_TRUE(follower.Next("end"));
}

TEST_F(ConsoleEvents, HoldASessionForTwoStepsAsLongAsTheStreamLives) {
    json session;
    {
        EventReader stream(Script(), "/sessions");
        session = stream.Next("")->data["session"];
        const auto opened =
            Send(*client, "POST", "/sessions/open", {{"session", session}, {"name", "Supervisor"}});
        ASSERT_EQ(opened->status, 200) << opened->body;
        const json handle = json::parse(opened->body)["handle"];
        const auto value =
            Send(*client, "POST", "/sessions/get-keyword",
                 {{"session", session}, {"handle", handle}, {"keyword", "Version.Major"}});
        EXPECT_EQ(value->status, 200) << value->body;
    }
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    for (;;) {
        const auto closed =
            Send(*client, "POST", "/sessions/open", {{"session", session}, {"name", "Supervisor"}});
        if (closed->status == 404) break;
        ASSERT_LT(std::chrono::steady_clock::now(), limit);
    }
}

}  // namespace
}  // namespace oam::test
