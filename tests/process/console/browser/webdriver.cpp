#include "browser/webdriver.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <thread>

#include "mirror/base64.h"

namespace oam::test {
namespace {

using nlohmann::json;

constexpr const char* kElement = "element-6066-11e4-a52e-4f735466cecf";
constexpr auto kLimit = std::chrono::seconds(60);
constexpr auto kBetweenLooks = std::chrono::milliseconds(25);
constexpr const char* kBrowserPath = "/usr/bin/chromium";
constexpr const char* kDriverPath = "/usr/bin/chromedriver";

json capabilities(const std::string& directory) {
    json arguments = {"--headless=new",
                      "--disable-gpu",
                      "--disable-dev-shm-usage",
                      "--no-first-run",
                      "--disable-background-networking",
                      "--disable-component-update",
                      "--disable-extensions",
                      "--disable-sync",
                      "--hide-scrollbars",
                      "--force-color-profile=srgb",
                      "--user-data-dir=" + directory};
    // The sandbox needs a user of its own.
    if (geteuid() == 0) arguments.push_back("--no-sandbox");
    return {{"capabilities",
             {{"alwaysMatch",
               {{"browserName", "chrome"},
                {"goog:loggingPrefs", {{"browser", "ALL"}, {"performance", "ALL"}}},
                {"goog:chromeOptions", {{"binary", kBrowserPath}, {"args", arguments}}}}}}}};
}

}  // namespace

bool IsBrowserThere() { return access(kBrowserPath, X_OK) == 0 && access(kDriverPath, X_OK) == 0; }

Browser::Browser(const std::string& directory) {
    const std::string before = "successfully on port ";
    // It takes a port that is free for one version of the Internet's protocol, and ends when it is
    // not for the other.
    constexpr int kAttempts = 10;
    for (int attempt = 1; attempt <= kAttempts; ++attempt) {
        driver_ = std::make_unique<ChildProcess>(std::vector<std::string>{kDriverPath, "--port=0"},
                                                 directory);
        if (driver_->Says(before)) break;
    }
    const std::string said = driver_->Output();
    const int port = std::stoi(said.substr(said.find(before) + before.size()));
    client_ = std::make_unique<httplib::Client>("127.0.0.1", port);
    client_->set_read_timeout(120);
    session_ =
        "/session/" + Ask("POST", "/session", capabilities(directory + "/browser"))["sessionId"]
                          .get<std::string>();
}

Browser::~Browser() {
    if (!session_.empty()) (void)client_->Delete(session_);
    driver_->Signal(SIGTERM);
    (void)driver_->Finish();
}

json Browser::Ask(const std::string& method, const std::string& path, const json& body) {
    const auto answer = method == "GET"
                            ? client_->Get(session_ + path)
                            : client_->Post(session_ + path, body.dump(), "application/json");
    if (!answer) throw std::runtime_error("the driver does not answer to " + path);
    const json value = json::parse(answer->body)["value"];
    if (answer->status != 200)
        throw std::runtime_error(path + ": " + value.value("error", "") + ": " +
                                 value.value("message", ""));
    return value;
}

void Browser::Command(const std::string& name, const json& parameters) {
    Ask("POST", "/goog/cdp/execute", {{"cmd", name}, {"params", parameters}});
}

void Browser::Open(const std::string& address) { Ask("POST", "/url", {{"url", address}}); }

// What the page sees, also narrower than any window.
void Browser::Resize(int width, int height) {
    Command("Emulation.setDeviceMetricsOverride",
            {{"width", width}, {"height", height}, {"deviceScaleFactor", 1}, {"mobile", false}});
}

void Browser::PreferDark(bool isDark) {
    Command("Emulation.setEmulatedMedia",
            {{"features", json::array({{{"name", "prefers-color-scheme"},
                                        {"value", isDark ? "dark" : "light"}}})}});
}

json Browser::Run(const std::string& script, const json& arguments) {
    return Ask("POST", "/execute/sync", {{"script", script}, {"args", arguments}});
}

json Browser::Await(const std::string& script, const json& arguments) {
    const auto limit = std::chrono::steady_clock::now() + kLimit;
    for (;;) {
        const json value = Run(script, arguments);
        if (value.is_boolean() ? value.get<bool>() : !value.is_null()) return value;
        if (std::chrono::steady_clock::now() > limit)
            throw std::runtime_error("never came: " + script + ' ' + arguments.dump() +
                                     "\nthe page: " + Text("body"));
        std::this_thread::sleep_for(kBetweenLooks);
    }
}

void Browser::AwaitText(const std::string& selector, const std::string& text) {
    Await(
        "return [...document.querySelectorAll(arguments[0])]"
        ".some((e) => e.checkVisibility() && e.textContent.includes(arguments[1]))",
        {selector, text});
}

std::string Browser::Find(const std::string& selector) {
    Await("return document.querySelector(arguments[0]) !== null", {selector});
    return "/element/" +
           Ask("POST", "/element", {{"using", "css selector"}, {"value", selector}})[kElement]
               .get<std::string>();
}

// A view that is drawn anew in between takes its elements along; then it is looked for again.
void Browser::Click(const std::string& selector) {
    for (int attempt = 0;; ++attempt) try {
            Run("document.querySelector(arguments[0])?.scrollIntoView({block: 'center'})",
                {selector});
            Ask("POST", Find(selector) + "/click");
            return;
        } catch (const std::runtime_error& error) {
            if (attempt == 20 || std::string(error.what()).find("never came") == 0) throw;
            std::this_thread::sleep_for(kBetweenLooks);
        }
}

void Browser::Type(const std::string& selector, const std::string& text) {
    const std::string element = Find(selector);
    Ask("POST", element + "/clear");
    Ask("POST", element + "/value", {{"text", text}});
}

void Browser::Choose(const std::string& selector, const std::string& path) {
    Ask("POST", Find(selector) + "/value", {{"text", path}});
}

void Browser::Press(const std::string& keys) {
    json actions = json::array();
    // Each key is one character, beyond ASCII too.
    for (std::size_t at = 0; at < keys.size();) {
        std::size_t size = 1;
        while (at + size < keys.size() && (keys[at + size] & 0xc0) == 0x80) ++size;
        const std::string key = keys.substr(at, size);
        actions.push_back({{"type", "keyDown"}, {"value", key}});
        actions.push_back({{"type", "keyUp"}, {"value", key}});
        at += size;
    }
    Ask("POST", "/actions",
        {{"actions", json::array({{{"type", "key"}, {"id", "keys"}, {"actions", actions}}})}});
}

std::string Browser::Text(const std::string& selector) {
    return Run("return document.querySelector(arguments[0])?.innerText ?? ''", {selector});
}

std::string Browser::Picture() {
    return console::FromBase64(Ask("GET", "/screenshot").get<std::string>()).value_or("");
}

std::vector<std::string> Browser::ConsoleErrors() {
    std::vector<std::string> errors;
    for (const json& entry : Ask("POST", "/se/log", {{"type", "browser"}}))
        errors.push_back(entry["level"].get<std::string>() + ": " +
                         entry["message"].get<std::string>());
    return errors;
}

std::vector<Browser::Loaded> Browser::Requests() {
    std::map<std::string, Loaded> byId;
    for (const json& entry : Ask("POST", "/se/log", {{"type", "performance"}})) {
        const json message = json::parse(entry["message"].get<std::string>())["message"];
        const json& parameters = message["params"];
        const std::string what = message["method"];
        if (what == "Network.requestWillBeSent")
            byId[parameters["requestId"]].url = parameters["request"]["url"];
        if (what == "Network.loadingFinished")
            byId[parameters["requestId"]].bytes =
                parameters["encodedDataLength"].get<std::size_t>();
    }
    std::vector<Loaded> all;
    for (const auto& [id, loaded] : byId)
        if (loaded.url.starts_with("http") || loaded.url.starts_with("ws")) all.push_back(loaded);
    return all;
}

}  // namespace oam::test
