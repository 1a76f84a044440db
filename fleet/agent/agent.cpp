#include "fleet/agent/agent.h"

#include <algorithm>
#include <random>
#include <thread>
#include <vector>

#include "fleet/agent/alert_relay.h"
#include "fleet/agent/command_server.h"
#include "fleet/agent/inventory.h"
#include "fleet/agent/presence.h"
#include "fleet/agent/stop.h"
#include "installation.h"
#include "wire/local_socket.h"

namespace oam::fleet {
namespace {

constexpr auto kFirstPause = std::chrono::milliseconds(250);
constexpr auto kLongestPause = std::chrono::milliseconds(8000);
constexpr auto kLook = std::chrono::milliseconds(100);
constexpr auto kCommandsLimit = std::chrono::seconds(5);

std::string socketOf(const AgentSettings& settings) {
    if (!settings.socketPath.empty()) return settings.socketPath;
    const auto place = Installation::Locate(
        settings.directory.empty() ? std::nullopt : std::optional(settings.directory));
    return wire::SocketPath(place.Directory());
}

// When a server comes back, its hosts do not all come at one moment.
std::chrono::milliseconds jittered(std::chrono::milliseconds pause) {
    static thread_local std::mt19937 random{std::random_device{}()};
    return pause / 2 + std::chrono::milliseconds(random() % static_cast<unsigned>(pause.count()));
}

}  // namespace

class Agent::Parts {
  public:
    explicit Parts(AgentSettings given)
        : settings_(std::move(given)),
          client_(NameOfClient(settings_.link)),
          daemon_(socketOf(settings_)),
          watch_(daemon_, std::chrono::milliseconds(settings_.beatMillis), figures_,
                 [this] { bell_.Ring(); }),
          states_(daemon_, [this] { bell_.Ring(); }),
          relay_(daemon_, settings_.host, figures_, alertsMatter_),
          presence_(watch_, settings_.host, std::chrono::milliseconds(settings_.beatMillis),
                    figures_),
          commands_(daemon_, watch_, settings_.host, figures_),
          inventory_({daemon_, watch_, states_, bell_, figures_,
                      [this] { return relay_.Reached(); }, inventoryMatter_, settings_.host,
                      std::chrono::seconds(settings_.inventorySeconds)}) {}

    bool Run(const std::stop_token& end) {
        auto pause = kFirstPause;
        while (!end.stop_requested()) {
            if (const auto link = Connect()) {
                pause = kFirstPause;
                Session(link, end);
                link->Close();
                figures_.isLinked = false;
                if (end.stop_requested()) break;
                linkMatter_.IsBad("the link to the fleet is lost");
            }
            (void)WaitForStop(end, jittered(pause));
            pause = std::min(pause * 2, kLongestPause);
        }
        return commands_.Finish(kCommandsLimit);
    }

    std::string Metrics() const { return AgentMetrics(figures_, settings_.host); }

  private:
    std::shared_ptr<Link> Connect() {
        try {
            auto link = std::make_shared<Link>(settings_.link, client_);
            if (CommandServer::LetsHostsAsk(*link, settings_.host))
                throw Failure(
                    link->Server() + " lets a host command hosts: it asks nobody for rights",
                    "give its users the rights of docs/fleet.md", kNotPermitted);
            ++figures_.links;
            figures_.isLinked = true;
            linkMatter_.IsWell("linked to the fleet at " + link->Server());
            return link;
        } catch (const Failure& failure) {
            ++figures_.linkFailures;
            if (failure.Status() == kNotPermitted) ++figures_.serversRefused;
            linkMatter_.IsBad(std::string("no link to the fleet: ") + failure.what());
        } catch (const std::exception& error) {
            ++figures_.linkFailures;
            linkMatter_.IsBad(std::string("no link to the fleet: ") + error.what());
        }
        return nullptr;
    }

    void Session(const std::shared_ptr<Link>& link, const std::stop_token& end) {
        std::stop_source over;
        const std::stop_token stop = over.get_token();
        const std::stop_callback passOn(end, [&] { over.request_stop(); });
        std::vector<std::jthread> threads;
        threads.emplace_back([&] { presence_.Serve(*link, stop, end); });
        threads.emplace_back([&] { relay_.Serve(*link, stop); });
        threads.emplace_back([&] { inventory_.Serve(*link, stop); });
        threads.emplace_back([&] { Serve(link, stop); });
        while (link->IsUp() && !WaitForStop(end, kLook))
            for (const std::string& denial : link->TakeDenials())
                if (!CommandServer::IsOfThatQuestion(denial))
                    rightsMatter_.IsBad("the server denies something: " + denial);
        over.request_stop();
    }

    void Serve(const std::shared_ptr<Link>& link, const std::stop_token& stop) {
        try {
            commands_.Serve(link, stop);
        } catch (const std::exception& error) {
            if (link->IsUp()) Say(std::string("no requests from the fleet: ") + error.what());
        }
    }

    const AgentSettings settings_;
    const std::string client_;
    AgentFigures figures_;
    Matter linkMatter_, rightsMatter_, alertsMatter_, inventoryMatter_;
    InventoryBell bell_;
    console::DaemonConnection daemon_;
    DaemonWatch watch_;
    BoardStates states_;
    AlertRelay relay_;
    Presence presence_;
    CommandServer commands_;
    Inventory inventory_;
};

Agent::Agent(AgentSettings settings) : parts_(std::make_unique<Parts>(std::move(settings))) {}

Agent::~Agent() = default;

bool Agent::Run(const std::stop_token& end) { return parts_->Run(end); }

std::string Agent::Metrics() const { return parts_->Metrics(); }

}  // namespace oam::fleet
