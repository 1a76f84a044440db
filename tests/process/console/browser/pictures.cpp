// Takes the pictures of the documents: OAM_PICTURES names where they go.
#include "browser/browser_test.h"

namespace oam::test {
namespace {

constexpr const char* kChassis = R"(board: Line 1
product: SIM-E1
bus: 1
slot: 2
serial: SIM000102
board: Line 2
product: SIM-E1
bus: 1
slot: 3
serial: SIM000103
start-time: 30s
board: Line 3
product: SIM-E1
bus: 1
slot: 4
start: fail
board: Line 4
product: SIM-E1
bus: 1
slot: 5
board: Media upper
product: SIM-IP
bus: 2
slot: 4
serial: SIM000204
mac: 02:00:53:02:04:00
temperature: 350, 950 after 500ms
board: Media lower
product: SIM-IP
bus: 2
slot: 5
serial: SIM000205
mac: 02:00:53:02:05:00
board: Media spare
product: SIM-IP
bus: 2
slot: 6
)";

class ConsolePictures : public BrowserTest {
  protected:
    void Take(const std::string& name) {
        const char* const folder = std::getenv("OAM_PICTURES");
        ASSERT_NE(folder, nullptr) << "OAM_PICTURES names where the pictures go";
        std::ofstream(std::string(folder) + '/' + name + ".png", std::ios::binary)
            << browser->Picture();
    }
};

TEST_F(ConsolePictures, AreTaken) {
    StartBare(kChassis);
    Tool({"board", "add", "Line 1"});
    for (const char* board : {"Line 2", "Line 3", "Media upper", "Media lower"})
        Tool({"board", "add", board});
    Tool({"set", "Line 1", "Number=10", "Driver.BoardId=trunk-1"});
    Tool({"set", "Line 1", "XLaw=A-LAW"});
    StartConsole();
    browser->Resize(1280, 620);
    browser->PreferDark(false);
    Enter();
    browser->Click("[data-key=detect]");
    browser->AwaitText(".ghost", "Media spare");
    for (const char* board : {"line%201", "line%203", "media%20upper", "media%20lower", "line%202"})
        browser->Click("[data-key=\"act " + std::string(board) + "\"]");
    browser->AwaitText("[data-board=\"media%20upper\"] .state", "too hot");
    browser->AwaitText("[data-board=\"line%201\"] .state", "started");
    browser->AwaitText("[data-board=\"media%20lower\"] .state", "started");
    browser->AwaitText("[data-board=\"line%203\"] .state", "start failed");
    browser->Await("return document.querySelectorAll('.toast').length === 0");
    browser->AwaitText("[data-board=\"line%202\"] .state", "being started");
    Take("chassis");
    browser->PreferDark(true);
    Take("chassis-dark");
    browser->Resize(390, 844);
    Take("chassis-phone");
    browser->PreferDark(false);
    browser->Resize(1280, 860);
    Go("#/board/Line%201");
    browser->AwaitText(".field", "ClockMode");
    browser->AwaitText(".history .did", "change");
    browser->Type("[data-keyword=\"Driver.BoardId\"]", "trunk-2");
    browser->Type("[data-keyword=Number]", "1");
    browser->Click(".keywords [type=submit]");
    browser->AwaitText(".field.refused .refusal", "number");
    browser->Run("window.scrollTo(0, 0)");
    Take("board");
    Go("#/alerts");
    browser->AwaitText(".alert", "TEMPERATURE_ALERT");
    browser->Resize(1280, 760);
    Take("alerts");
    Go("#/host");
    browser->AwaitText(".well", "Nothing");
    browser->AwaitText(".field", "AutoStartEnabled");
    Take("host");
}

}  // namespace
}  // namespace oam::test
