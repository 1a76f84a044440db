// The page of the host: what is loaded, and the configuration as a whole.
#include "browser/browser_test.h"

namespace oam::test {
namespace {

class ConsoleHostPage : public BrowserTest {
  protected:
    void SetUp() override {
        BrowserTest::SetUp();
        if (IsSkipped()) return;
        Start();
        StartConsole();
        Enter();
    }
};

TEST_F(ConsoleHostPage, ShowsWhatTheCallsIntoEachPluginTook) {
    Tool({"board", "start", "Sim E1 left"});
    Go("#/host");
    browser->AwaitText("#modules th", "sim.bpi");
    browser->AwaitText("#modules td", "plug-in: SIM-");
    EXPECT_EQ(browser->Run("return document.querySelector('#modules tr.entry:not([hidden])')"),
              nullptr);
    browser->Click("[data-key=\"module-sim.bpi\"]");
    browser->AwaitText("#modules tr.entry:not([hidden]) th", "StartBoard");
    EXPECT_EQ(browser->Run("return [...document.querySelectorAll('#modules tr.entry')]"
                           ".find((row) => /^StartBoard/.test(row.textContent))"
                           ".querySelector('td').textContent"),
              "1");
    EXPECT_THAT(browser->ConsoleErrors(), ::testing::IsEmpty());
}

TEST_F(ConsoleHostPage, ImportsAFileAfterShowingWhatItWouldChange) {
    const std::string file = home.Path("kept.oam");
    Tool({"export", file});
    Tool({"set", "Sim E1 left", "Number=40"});
    Go("#/host");
    browser->Choose("#import-file", file);
    browser->AwaitText("#transfer h3", "What it would change");
    browser->AwaitText("#transfer del", "40");
    EXPECT_EQ(Tool({"get", "Sim E1 left", "Number"}), "40\n") << "nothing has changed yet";
    browser->Click("[data-key=import]");
    browser->AwaitText("dialog h2", "Import this configuration?");
    browser->Click("dialog [value=yes]");
    browser->AwaitText(".toast.good", "imported");
    EXPECT_EQ(Tool({"get", "Sim E1 left", "Number"}), "0\n");
    browser->AwaitText("#generations .did", "import");
}

TEST_F(ConsoleHostPage, SaysWhereAFileCannotBeImported) {
    home.Write("spoiled.oam", "[Sim E1 left]\nno value here\n");
    Go("#/host");
    browser->Choose("#import-file", home.Path("spoiled.oam"));
    browser->AwaitText("#transfer .refusal", "cannot be imported");
    browser->AwaitText("#transfer .findings .bad", "line ");
    EXPECT_EQ(browser->Run("return document.querySelector('[data-key=import]')"), nullptr);
}

TEST_F(ConsoleHostPage, RestartsTheServiceWhenThatIsConfirmed) {
    Go("#/host");
    browser->Click("[data-key=restart]");
    browser->AwaitText("dialog h2", "Restart the service?");
    browser->Click("dialog [value=yes]");
    browser->AwaitText(".toast.good", "the service: restart done");
    browser->AwaitText("#about dd", "running");
}

}  // namespace
}  // namespace oam::test
