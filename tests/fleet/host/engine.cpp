#include "engine.h"

#include <signal.h>

#include <filesystem>
#include <fstream>

#include "fleet/names.h"

namespace oam::test {
namespace {

constexpr const char* kRoles[] = {"viewer", "operator", "configurator", "admin"};

std::string quoted(const std::vector<std::string>& subjects) {
    std::string text;
    for (const std::string& subject : subjects)
        text += (text.empty() ? "\"" : ", \"") + subject + '"';
    return "[" + text + "]";
}

std::string userText(const std::string& name, const std::vector<std::string>& publish,
                     std::vector<std::string> subscribe) {
    subscribe.push_back(fleet::InboxPrefix(name) + ".>");
    return "{user: \"" + name + "\", password: \"secret of " + name +
           "\", permissions: {publish: " + quoted(publish) + ", subscribe: " + quoted(subscribe) +
           "}}\n";
}

std::string everyone() {
    const std::string host = fleet::TokenOf(kHostName);
    std::string users = userText(
        "host-1",
        {"oam.alerts." + host, "$KV.*." + host, "_INBOX.>", "$JS.API.STREAM.INFO.OAM_ALERTS",
         "$JS.API.DIRECT.GET.OAM_ALERTS.oam.alerts." + host,
         "$JS.API.DIRECT.GET.KV_oam_hosts.$KV.oam_hosts." + host},
        {"oam.command." + host + ".>"});
    users += userText("keeper", {"$JS.API.>", "$KV.>", "$JS.FC.>", "oam.alerts.*"}, {});
    // Each may what the ones before it may.
    std::vector<std::string> publish = {"$JS.FC.>"};
    for (const char* const stream :
         {"OAM_ALERTS", "KV_oam_hosts", "KV_oam_boards", "KV_oam_presence"})
        for (const char* const api : {"STREAM.INFO.", "CONSUMER.CREATE.", "CONSUMER.INFO.",
                                      "CONSUMER.DELETE.", "DIRECT.GET."}) {
            publish.push_back(std::string("$JS.API.") + api + stream);
            publish.push_back(std::string("$JS.API.") + api + stream + ".>");
        }
    for (const char* const user : kRoles) {
        auto own = publish;
        for (const char* const role : kRoles) {
            own.push_back(std::string("oam.command.*.") + role + '.' + user + ".*");
            if (std::string_view(role) == user) break;
        }
        users += userText(user, own, {});
    }
    return users;
}

}  // namespace

Engine::~Engine() {
    if (server_) server_->Signal(SIGKILL);
}

std::string Engine::Settings(Rights rights) const {
    std::string text = "listen: \"127.0.0.1:" + std::to_string(port_) +
                       "\"\njetstream { store_dir: \"" + directory_ + "/js\" }\n";
    const std::string plain = "{user: \"host-1\", password: \"secret of host-1\"}\n";
    switch (rights) {
        case Rights::kEach:
            return text + "authorization { users: [" + everyone() + "] }\n";
        case Rights::kNone:
            return text + "authorization { users: [" + plain + "] }\n";
        case Rights::kStrangers:
            return text + "authorization { users: [" + plain + "] }\nno_auth_user: \"host-1\"\n";
        case Rights::kOpen:
            break;
    }
    return text;
}

void Engine::Start(Rights rights) {
    std::filesystem::create_directories(directory_);
    std::ofstream(directory_ + "/engine.conf") << Settings(rights);
    server_ = std::make_unique<ChildProcess>(
        std::vector<std::string>{OAM_NATS_SERVER, "-c", directory_ + "/engine.conf"}, directory_);
    const std::string told =
        server_->AwaitErrorLine("Listening for client connections on 127.0.0.1:");
    port_ = std::stoi(told);
    server_->AwaitError("Server is ready");
}

void Engine::Stop() {
    server_->Signal(SIGTERM);
    (void)server_->Finish();
    server_.reset();
}

std::vector<std::string> Engine::OptionsOf(const std::string& user) const {
    const std::string file = directory_ + '/' + user + ".password";
    std::ofstream(file) << "secret of " << user << '\n';
    return {"--server", Url(), "--user", user, "--password-file", file};
}

}  // namespace oam::test
