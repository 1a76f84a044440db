// The page as a person meets it, from detection to a roll-back.
#include "browser/browser_test.h"

namespace oam::test {
namespace {

constexpr const char* kSlowChassis =
    "board: Line left\nproduct: SIM-E1\nbus: 1\nslot: 2\nstart-time: 1s\n"
    "board: Line right\nproduct: SIM-E1\nbus: 1\nslot: 3\nstart: fail\n";
constexpr const char* kLeft = R"([data-board="line%20left"])";

class ConsolePage : public BrowserTest {
  protected:
    void SetUp() override {
        BrowserTest::SetUp();
        if (IsSkipped()) return;
        StartBare(kSlowChassis);
        StartConsole();
    }
    std::string Value(const std::string& keyword) {
        return browser->Run(
            "return document.querySelector(`[data-keyword=\"${arguments[0]}\"]`)"
            ".value",
            {keyword});
    }
};

TEST_F(ConsolePage, WalksFromDetectionToAStartedBoardWithItsAlertOnScreen) {
    Enter();
    browser->AwaitText(".empty", "No boards yet");
    browser->Click("[data-key=detect]");
    browser->AwaitText(".ghost", "Line right");
    browser->Click(R"([data-key="add line%20left"])");
    browser->AwaitText(std::string(kLeft) + " .state", "idle");
    EXPECT_EQ(browser->Run("return document.querySelectorAll('.ghost').length"), 1);
    browser->Click(R"([data-key="act line%20left"])");
    browser->AwaitText(std::string(kLeft) + " .state", "being started");
    browser->AwaitText(std::string(kLeft) + " .state", "started");
    browser->AwaitText(std::string(kLeft) + " .outcome", "start done");
    browser->Press("a");
    browser->AwaitText("h1", "Alerts");
    browser->AwaitText(".alert", "STARTBOARD_DONE");
    browser->Type("#by-source", "line left");
    browser->AwaitText(".alert .text", "started");
    EXPECT_EQ(browser->Run("return [...document.querySelectorAll('.alert .source')]"
                           ".every((e) => e.textContent === 'Line left')"),
              true);
    EXPECT_THAT(browser->ConsoleErrors(), ::testing::IsEmpty());
}

TEST_F(ConsolePage, TellsAFailureWhereItHappened) {
    Tool({"board", "add", "--all"});
    Enter();
    browser->Click(R"([data-key="act line%20right"])");
    browser->AwaitText(R"([data-board="line%20right"] .state)", "start failed");
    browser->AwaitText(R"([data-board="line%20right"] .outcome)", "start failed");
    browser->AwaitText(".toast.bad", "start of Line right: failed");
}

TEST_F(ConsolePage, ShowsARefusalAtItsFieldAndKeepsTheOtherChanges) {
    Tool({"board", "add", "--all"});
    Enter();
    Go("#/board/Line%20left");
    browser->AwaitText(".hint", "0 to 65535");
    browser->Type(R"([data-keyword="Driver.BoardId"])", "trunk");
    browser->Type(R"([data-keyword="Number"])", "1");
    browser->AwaitText(".count", "2 changed");
    browser->Click(".keywords [type=submit]");
    browser->AwaitText(R"(.field.refused[data-name="Number"] .refusal)", "OAMERR_ALREADY_EXISTS");
    EXPECT_EQ(browser->Run("return document.activeElement.dataset.keyword"), "Number");
    EXPECT_EQ(browser->Run("return document.querySelectorAll('.field.changed').length"), 2);
    EXPECT_EQ(Tool({"get", "Line left", "Driver.BoardId"}), "\n");
    browser->Type(R"([data-keyword="Number"])", "70000");
    browser->Click(".keywords [type=submit]");
    browser->AwaitText(R"(.field.refused[data-name="Number"] .refusal)",
                       "OAMERR_SET_BOARD_KEYWORD_FAIL");
    browser->Type(R"([data-keyword="Number"])", "7");
    browser->Click(".keywords [type=submit]");
    browser->AwaitText(".toast.good", "2 changed in Line left");
    EXPECT_EQ(Tool({"get", "Line left", "Number"}), "7\n");
    EXPECT_EQ(Tool({"get", "Line left", "Driver.BoardId"}), "trunk\n");
}

TEST_F(ConsolePage, TestsABoardAndAsksForItsStatus) {
    Tool({"board", "add", "--all"});
    Enter();
    Go("#/board/Line%20left");
    browser->Type("#selector", "0");
    browser->Click(".parts form:last-child button");
    browser->AwaitText(".parts output", "= 0");
    browser->Click("[data-key=start]");
    browser->AwaitText(".toast.good", "start of Line left: done");
    browser->Type("#selector", "0");
    browser->Click(".parts form:last-child button");
    browser->AwaitText(".parts output", "= 2");
    browser->Type("#test-value", "3");
    browser->Click("[data-key=test]");
    browser->AwaitText(".toast.good", "test of Line left: done");
    browser->AwaitText(".summary .outcome", "test done");
}

TEST_F(ConsolePage, RollsAnObjectBackAfterShowingWhatThatChanges) {
    Tool({"board", "add", "--all"});
    Enter();
    Go("#/board/Line%20left");
    browser->AwaitText(".history .did", "add");
    Tool({"set", "Line left", "Number=40"});
    // Somebody else's change shows by itself.
    browser->AwaitText(".history .did", "change");
    browser->Await("return document.querySelector('[data-keyword=Number]').value === '40'");
    browser->Click(".history li:last-child > button");
    browser->AwaitText("dialog ins", "0");
    browser->AwaitText("dialog del", "40");
    browser->Click("dialog [value=yes]");
    browser->AwaitText(".history .did", "rollback");
    browser->Await("return document.querySelector('[data-keyword=Number]').value === '0'");
    EXPECT_EQ(Tool({"get", "Line left", "Number"}), "0\n");
}

TEST_F(ConsolePage, LosesNoAlertWhenTheDaemonIsKilledAndComesBack) {
    Enter();
    Go("#/alerts");
    for (int i = 0; i < 5; ++i) Raise("before " + std::to_string(i));
    browser->AwaitText(".alert .text", "before 4");
    Kill();
    browser->AwaitText("#connection", "daemon away");
    StartAgain();
    for (int i = 0; i < 5; ++i) Raise("after " + std::to_string(i));
    browser->AwaitText("#connection", "live");
    browser->AwaitText(".alert .text", "after 4");
    browser->AwaitText(".gap", "not kept any more");
    const auto told = browser->Run(
        "return [...document.querySelectorAll('.alert .text')].map((e) => e.textContent)"
        ".filter((t) => /^(before|after) /.test(t)).reverse()");
    nlohmann::json all;
    for (const char* when : {"before ", "after "})
        for (int i = 0; i < 5; ++i) all.push_back(when + std::to_string(i));
    EXPECT_EQ(told, all);
}

TEST_F(ConsolePage, GoesOnWhenTheGatewayItselfComesBack) {
    Enter();
    Go("#/alerts");
    Raise("before");
    browser->AwaitText(".alert .text", "before");
    const std::string port = address.substr(address.rfind(':') + 1);
    EndConsole();
    browser->AwaitText("#connection", "no connection");
    Tool({"board", "add", "--all"});
    // A new start has a new token; whoever comes back is asked for it.
    StartConsole({"--listen", "127.0.0.1:" + port});
    browser->AwaitText(".login h1", "Log in");
    browser->Type("#token", token);
    browser->Press("\xee\x80\x87");  // Enter
    browser->AwaitText(".alert .text", "before");
    browser->AwaitText(".alert", "CREATED");
}

TEST_F(ConsolePage, KeepsHostileTextsTexts) {
    const std::string markup = "<img src=x onerror=\"document.title='owned'\"><script>alert(1)";
    Tool({"board", "add", "--all"});
    Tool({"set", "Line left",
          "Name=a\"'& \xe2\x80\xae"
          "b/../%41?#"});
    Tool({"set", "Line right", "Driver.BoardId=\"onfocus=alert(1)"});
    Raise(markup);
    Enter();
    browser->AwaitText(".card .name", "a\"'& \\u202eb/../%41?#");
    browser->Click(".card .name");
    browser->AwaitText("h1", "a\"'& \\u202eb/../%41?#");
    browser->AwaitText(".history .did", "change");
    browser->AwaitText(".field label", "Number");
    Go("#/alerts");
    browser->AwaitText(".alert .text", markup);
    EXPECT_EQ(browser->Run("return document.querySelectorAll('main img, main script').length"), 0);
    EXPECT_EQ(browser->Run("return document.title.includes('owned')"), false);
    Go("#/board/Line%20right");
    browser->Await(
        "return document.querySelector('[data-keyword=\"Driver.BoardId\"]')?.value === "
        "'\"onfocus=alert(1)'");
    EXPECT_THAT(browser->ConsoleErrors(), ::testing::IsEmpty());
}

TEST_F(ConsolePage, LoadsOlderAlertsOnScrolling) {
    for (int i = 0; i < 900; ++i) Raise("number " + std::to_string(i));
    Enter();
    Go("#/alerts");
    browser->AwaitText(".alert .text", "number 899");
    EXPECT_LT(browser->Run("return document.querySelectorAll('.alert').length"), 800);
    for (int i = 0; i < 10; ++i) {
        browser->Run("window.scrollTo(0, document.body.scrollHeight)");
        browser->Await(
            "return document.querySelectorAll('.alert').length > arguments[0] || "
            "document.querySelector('.foot .empty') !== null",
            {500 + i * 200});
        if (browser->Run("return document.querySelector('.foot .empty') !== null") == true) break;
    }
    browser->AwaitText(".foot", "all that are kept");
    browser->AwaitText(".alert .text", "number 0");
    browser->Type("#by-text", "number 12");
    browser->Await("return document.querySelectorAll('.alert').length === 11");
}

}  // namespace
}  // namespace oam::test
