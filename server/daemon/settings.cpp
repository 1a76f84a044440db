#include "daemon/settings.h"

#include <CLI/CLI.hpp>

#include "version.h"

namespace oam::server {
namespace {

constexpr const char* kSummary =
    "Runs the OA&M service of one installation and serves it to its clients: local ones at a unix\n"
    "socket, remote ones with mutual TLS. It stays in the foreground; SIGTERM and SIGINT end it,\n"
    "SIGHUP makes it read its roles again.";

constexpr const char* kFooter =
    "\nExamples:\n"
    "  oamd --dir /opt/oam\n"
    "  oamd --dir /opt/oam --listen 0.0.0.0:7310 --certificate host.pem --key host.key \\\n"
    "       --client-authorities clients.pem\n"
    "\nEvery option but --config may stand in the file as NAME = VALUE.";

}  // namespace

std::optional<Settings> ReadSettings(int argc, char** argv, int* status) {
    Settings settings;
    CLI::App app(kSummary, "oamd");
    app.footer(kFooter);
    app.set_version_flag("--version", std::string("oamd ") + kVersion);
    app.add_option("--dir", settings.directory,
                   "The installation (default: KOR_DIR, else the built-in)");
    app.add_option("--socket", settings.socketPath,
                   "The local socket (default: oam/oamd.sock of the installation)");
    app.add_option("--roles", settings.rolesFile,
                   "Who may do what (default: oam/roles.conf of the installation)");
    auto* const listen =
        app.add_option("--listen", settings.tcpAddress, "Serve remote clients at HOST:PORT");
    auto* const certificate =
        app.add_option("--certificate", settings.tls.certificate, "The daemon's own, PEM");
    auto* const key = app.add_option("--key", settings.tls.key, "Its key, PEM");
    auto* const authorities = app.add_option("--client-authorities", settings.tls.clientAuthorities,
                                             "Who signs the clients' certificates, PEM");
    listen->needs(certificate)->needs(key)->needs(authorities);
    app.add_option("--metrics", settings.metricsAddress,
                   "Serve metrics for Prometheus at PORT of the loopback, or at HOST:PORT");
    app.add_option("--alerts-kept", settings.alertsKept, "How many alerts are kept on disk")
        ->check(CLI::Range(1000U, 100000000U))
        ->capture_default_str();
    app.set_config("--config", "", "Read settings from this file");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        constexpr int kUsage = 2;
        *status = app.exit(error) == 0 ? 0 : kUsage;
        return std::nullopt;
    }
    return settings;
}

}  // namespace oam::server
