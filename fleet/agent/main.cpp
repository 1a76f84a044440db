// oam-fleetd: one host's part in a fleet.
#include <cstdlib>
#include <memory>
#include <thread>

#include "daemon/signals.h"
#include "fleet/agent/agent.h"
#include "fleet/agent/say.h"
#include "metrics/metrics_listener.h"

namespace oam::fleet {
namespace {

constexpr auto kLook = std::chrono::hours(1);

void run(const AgentSettings& settings, const server::Signals& signals) {
    Agent agent(settings);
    std::unique_ptr<server::MetricsListener> metrics;
    if (!settings.metricsAddress.empty()) {
        metrics = std::make_unique<server::MetricsListener>(
            server::ListenAddress::Parse(settings.metricsAddress),
            [&agent] { return agent.Metrics(); });
        Say("serves metrics at " + metrics->Address());
    }
    bool isIdle = false;
    std::jthread work([&](const std::stop_token& end) { isIdle = agent.Run(end); });
    Say("host " + settings.host);
    // A reload needs nothing: certificates are read again with each link.
    while (signals.Next(kLook) != server::Signal::kEnd) continue;
    work.request_stop();
    work.join();
    // What a hung plug-in holds is the daemon's, and nobody here waits for it.
    if (!isIdle) std::quick_exit(EXIT_SUCCESS);
}

}  // namespace
}  // namespace oam::fleet

int main(int argc, char** argv) {
    int status = 0;
    const auto settings = oam::fleet::ReadAgentSettings(argc, argv, &status);
    if (!settings) return status;
    const oam::server::Signals signals;
    try {
        oam::fleet::run(*settings, signals);
    } catch (const std::exception& error) {
        oam::fleet::Say(error.what());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
