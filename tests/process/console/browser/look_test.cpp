// What the page costs, whom it asks, and who can use it.
#include "browser/browser_test.h"
#include "logins.h"

namespace oam::test {
namespace {

using ::testing::IsEmpty;

class ConsoleLook : public BrowserTest {
  protected:
    void SetUp() override {
        BrowserTest::SetUp();
        if (IsSkipped()) return;
        Start();
        StartConsole();
    }
};

TEST_F(ConsoleLook, IsSmallSoonOfUseAndAsksNobodyElse) {
    (void)browser->Requests();  // of the browser's own first page
    Enter();
    std::size_t bytes = 0;
    for (const auto& loaded : browser->Requests()) {
        EXPECT_EQ(loaded.url.find(address), 0u) << loaded.url;
        bytes += loaded.bytes;
    }
    EXPECT_GT(bytes, 10000u);
    EXPECT_LT(bytes, 150u * 1024);
    // The best of some: others use this machine, too.
    double best = 1e9;
    for (int i = 0; i < 5; ++i) {
        browser->Open("about:blank");
        browser->Open(address + "/");
        best = std::min(best, browser->Await("return window.usefulAfter ?? null").get<double>());
    }
    RecordProperty("useful_after_ms", std::to_string(best));
    std::cout << "first view: " << bytes << " bytes, of use after " << best << " ms\n";
    constexpr double kAimed = 200, kPatience = 25;
    EXPECT_LT(best, kAimed * kPatience);
    EXPECT_THAT(browser->ConsoleErrors(), IsEmpty());
}

TEST_F(ConsoleLook, HasNamesContrastAndRoomOnEveryViewByDayAndNightAndOnAPhone) {
    Raise("an error", 2);
    Raise("a warning", 1);
    Enter();
    struct View {
        const char* hash;
        const char* selector;
        const char* text;
    };
    for (const auto& [hash, selector, text] :
         {View{"#/", ".card", "Sim E1 left"}, View{"#/board/Sim%20E1%20left", ".field", "Number"},
          View{"#/alerts", ".alert", "a warning"}, View{"#/host", ".well", "Nothing"}})
        for (const int width : {1280, 360})
            for (const bool isDark : {false, true}) {
                browser->Resize(width, 800);
                browser->PreferDark(isDark);
                Go(hash);
                browser->AwaitText(selector, text);
                EXPECT_EQ(browser->Run(kAccessibilityCheck), json::array())
                    << hash << " at " << width << (isDark ? " dark" : " light");
            }
}

TEST_F(ConsoleLook, CanBeUsedWithTheKeyboardAlone) {
    Enter();
    const std::string tab = "\xee\x80\x84", enter = "\xee\x80\x87", escape = "\xee\x80\x8c";
    const auto reach = [&](const std::string& what) {
        for (int i = 0; i < 100; ++i) {
            if (browser->Run("return document.activeElement.matches(arguments[0])", {what}) == true)
                return;
            browser->Press(tab);
        }
        FAIL() << "the keyboard does not come to " << what;
    };
    browser->Press("c");
    reach(R"([data-key="act sim%20e1%20left"])");
    browser->Press(enter);
    browser->AwaitText(R"([data-board="sim%20e1%20left"] .state)", "started");
    // What is drawn anew leaves the focus where it was.
    EXPECT_EQ(browser->Run("return document.activeElement.dataset.key ?? ''"),
              "act sim%20e1%20left");
    browser->Run("document.activeElement.blur()");
    reach(R"([data-key="open sim%20e1%20left"])");
    browser->Press(enter);
    browser->AwaitText(".field", "Number");
    EXPECT_EQ(browser->Run("return document.activeElement.tagName"), "H1");
    reach("[data-key=delete]");
    browser->Press(enter);
    browser->AwaitText("dialog h2", "Delete Sim E1 left?");
    browser->Press(escape);
    browser->Await("return document.querySelector('dialog') === null");
    reach("[data-keyword=AutoStart]");
    browser->Press("Y");
    browser->AwaitText(".count", "1 changed");
    browser->Press("/");
    reach(".keywords [type=submit]");
    browser->Press(enter);
    browser->AwaitText(".toast.good", "1 changed");
    EXPECT_EQ(Tool({"get", "Sim E1 left", "AutoStart"}), "Yes\n");
}

class ConsoleViewer : public BrowserTest {};

TEST_F(ConsoleViewer, LogsInWithAPasswordAndIsOfferedNothingThatIsNotPermitted) {
    WritePamRules(home);
    home.Write("oam/roles.conf", "user " + OwnUser() + " admin\nuser games viewer\n");
    Start();
    StartConsole({"--pam", "--pam-directory", home.Path("pam.d")});
    browser->Open(address + "/");
    browser->AwaitText(".login h1", "Log in");
    EXPECT_EQ(browser->Run(kAccessibilityCheck), json::array());
    browser->Type("#user", "games");
    browser->Type("#password", "wrong");
    browser->Press("\xee\x80\x87");
    browser->AwaitText(".login .refusal", "wrong");
    browser->Type("#password", "secret of games");
    browser->Press("\xee\x80\x87");
    browser->AwaitText(".card", "Sim E1 left");
    browser->AwaitText("#who", "games");
    browser->AwaitText("#who", "viewer");
    EXPECT_EQ(browser->Run("return document.querySelectorAll('main button').length"), 0);
    Go("#/board/Sim%20E1%20left");
    browser->AwaitText(".field", "Number");
    EXPECT_EQ(
        browser->Run("return document.querySelectorAll('.field input, .field select').length"), 0);
}

}  // namespace
}  // namespace oam::test
