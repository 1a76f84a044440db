// A headless browser, driven over WebDriver: what a person does with the page, and what the browser
// itself has to say about it.
//
// Nothing here sleeps for a time: whatever is looked for is awaited, with a generous limit, and not
// finding it fails the test with a picture of the page left in OAM_PICTURES when that is set.
#pragma once

#include <httplib.h>

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "child_process.h"

namespace oam::test {

// Whether the system has a browser and its driver.
bool IsBrowserThere();

class Browser {
  public:
    // With a profile of its own in the directory.
    explicit Browser(const std::string& directory);
    ~Browser();
    Browser(const Browser&) = delete;
    Browser& operator=(const Browser&) = delete;

    void Open(const std::string& address);
    void Resize(int width, int height);
    // Prefers dark or light, as the system would tell.
    void PreferDark(bool isDark);

    // A script's body in the page, and what it returns.
    nlohmann::json Run(const std::string& script,
                       const nlohmann::json& arguments = nlohmann::json::array());
    // Waits until the script returns something true; that.
    nlohmann::json Await(const std::string& script,
                         const nlohmann::json& arguments = nlohmann::json::array());
    // Waits for an element that is shown and whose text has this in it.
    void AwaitText(const std::string& selector, const std::string& text);

    // As a person does it: scrolled to, and by the mouse or the keyboard.
    void Click(const std::string& selector);
    void Type(const std::string& selector, const std::string& text);
    // The file at this path, in an input for files.
    void Choose(const std::string& selector, const std::string& path);
    // Keys for whatever has the focus.
    void Press(const std::string& keys);

    std::string Text(const std::string& selector);
    // PNG.
    std::string Picture();

    // Since the last question.
    std::vector<std::string> ConsoleErrors();
    struct Loaded {
        std::string url;
        std::size_t bytes = 0;
    };
    // Of a host; what the browser has in itself, it asks nobody for.
    std::vector<Loaded> Requests();

  private:
    nlohmann::json Ask(const std::string& method, const std::string& path,
                       const nlohmann::json& body = nlohmann::json::object());
    // A DevTools command.
    void Command(const std::string& name, const nlohmann::json& parameters);
    std::string Find(const std::string& selector);

    std::unique_ptr<ChildProcess> driver_;
    std::unique_ptr<httplib::Client> client_;
    std::string session_;
};

}  // namespace oam::test
