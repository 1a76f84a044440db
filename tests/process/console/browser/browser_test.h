// The fixture of the tests that look at the page: a daemon, a gateway and a browser of their own.
#pragma once

#include <memory>
#include <string>

#include "browser/webdriver.h"
#include "console_test.h"

namespace oam::test {

class BrowserTest : public ConsoleTest {
  protected:
    // Skips where there is no browser.
    void SetUp() override;
    void TearDown() override;

    // The service with the plug-in and this chassis, and nothing configured yet.
    void StartBare(const std::string& chassis = {});
    // The page as the printed address opens it, until it is of use.
    void Enter();
    void Go(const std::string& hash);
    // An alert of a script's.
    void Raise(const std::string& text, unsigned severity = 0);

    std::unique_ptr<Browser> browser;
};

// What the page is asked to be, as a script that returns a list of what is wrong.
extern const char* const kAccessibilityCheck;

}  // namespace oam::test
