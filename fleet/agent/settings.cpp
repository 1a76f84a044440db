#include "fleet/agent/settings.h"

#include <unistd.h>

#include <CLI/CLI.hpp>

#include "fleet/link/link_options.h"
#include "fleet/version.h"

namespace oam::fleet {
namespace {

constexpr const char* kSummary =
    "Brings one host into a fleet: its inventory, alerts and heartbeat go to the servers of the\n"
    "engine, and requests for the host come from there. It is a client of the host's oamd, which\n"
    "decides what is done. It stays in the foreground; SIGTERM and SIGINT end it.";

constexpr const char* kFooter =
    "\nExamples:\n"
    "  oam-fleetd --dir /opt/oam --server tls://hub1.example.net:4222 \\\n"
    "             --certificate host.pem --key host.key --authorities fleet.pem\n"
    "\nEvery option but --config may stand in the file as NAME = VALUE.";

constexpr int kUsage = 2;

std::string ownName() {
    char name[256] = {};
    return gethostname(name, sizeof name - 1) == 0 ? name : "";
}

}  // namespace

std::optional<AgentSettings> ReadAgentSettings(int argc, char** argv, int* status) {
    AgentSettings settings;
    settings.host = ownName();
    CLI::App app(kSummary, "oam-fleetd");
    app.footer(kFooter);
    app.set_version_flag("--version", std::string("oam-fleetd ") + kVersion);
    app.add_option("--dir", settings.directory,
                   "The installation (default: KOR_DIR, else the built-in)");
    app.add_option("--socket", settings.socketPath,
                   "The daemon's socket (default: oam/oamd.sock of the installation)");
    app.add_option("--name", settings.host, "The host's name in the fleet")->capture_default_str();
    AddLinkOptions(app, &settings.link);
    app.add_option("--beat", settings.beatMillis, "Milliseconds from one heartbeat to the next")
        ->check(CLI::Range(100U, 60000U))
        ->capture_default_str();
    app.add_option("--inventory", settings.inventorySeconds,
                   "Look at the boards after so many seconds at the latest")
        ->check(CLI::Range(1U, 86400U))
        ->capture_default_str();
    app.add_option("--metrics", settings.metricsAddress,
                   "Serve metrics for Prometheus at PORT of the loopback, or at HOST:PORT");
    app.set_config("--config", "", "Read settings from this file");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        *status = app.exit(error) == 0 ? 0 : kUsage;
        return std::nullopt;
    }
    settings.link.name = "oam-fleetd " + settings.host;
    std::string why = WhyNotAllowed(settings.link);
    if (settings.host.empty()) why = "--name must not be empty";
    if (why.empty()) return settings;
    std::fprintf(stderr, "oam-fleetd: %s\n", why.c_str());
    *status = kUsage;
    return std::nullopt;
}

}  // namespace oam::fleet
