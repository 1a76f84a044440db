#include "settings.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <CLI/CLI.hpp>
#include <charconv>

namespace oam::console {
namespace {

constexpr const char* kSummary =
    "Serves a page and a JSON interface to the daemon of one installation. It serves this machine\n"
    "alone unless told otherwise, and stays in the foreground until SIGTERM or SIGINT.";

constexpr const char* kFooter =
    "\nExamples:\n"
    "  oam-console --dir /opt/oam\n"
    "  oam-console --dir /opt/oam --listen 0.0.0.0:7311 --certificate host.pem --key host.key \\\n"
    "              --pam --client-authorities clients.pem\n"
    "\nEvery option but --config may stand in the file as NAME = VALUE.";

constexpr int kUsage = 2;

bool isLoopback(const in_addr& address) { return ntohl(address.s_addr) >> 24 == 127; }

int ended(const std::string& why) {
    std::fprintf(stderr, "oam-console: %s\n", why.c_str());
    return kUsage;
}

}  // namespace

std::string WhyNoAddress(Settings* settings) {
    constexpr const char* kWanted =
        "--listen needs a numeric address and a port, as 127.0.0.1:7311 or [::1]:7311";
    const std::string& text = settings->listen;
    const auto colon = text.rfind(':');
    if (colon == text.npos) return kWanted;
    std::string host = text.substr(0, colon);
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data() + colon + 1, end, settings->port);
    if (error != std::errc() || rest != end || settings->port < 0 || settings->port > 65535)
        return kWanted;
    in_addr four{};
    in6_addr six{};
    if (inet_pton(AF_INET, host.c_str(), &four) == 1) {
        settings->isLoopback = isLoopback(four);
    } else if (host.size() > 2 && host.front() == '[' && host.back() == ']' &&
               inet_pton(AF_INET6, (host = host.substr(1, host.size() - 2)).c_str(), &six) == 1) {
        settings->isLoopback = IN6_IS_ADDR_LOOPBACK(&six);
    } else {
        return kWanted;
    }
    settings->host = host;
    return {};
}

std::string WhyNotAllowed(const Settings& settings) {
    if (settings.tls.certificate.empty() != settings.tls.key.empty())
        return "--certificate and --key go together";
    if (!settings.tls.clientAuthorities.empty() && !settings.HasTls())
        return "--client-authorities needs --certificate and --key";
    if (settings.isLoopback) return {};
    const std::string beyond = settings.listen + " can be reached from other machines: ";
    if (!settings.HasTls())
        return beyond +
               "that needs TLS (--certificate and --key), and a login (--pam or "
               "--client-authorities)";
    if (!settings.HasLogin()) return beyond + "that needs a login (--pam or --client-authorities)";
    return {};
}

std::optional<Settings> ReadSettings(int argc, char** argv, int* status) {
    Settings settings;
    CLI::App app(kSummary, "oam-console");
    app.footer(kFooter);
    std::string directory;
    auto* const dir = app.add_option("--dir", directory,
                                     "The installation (default: KOR_DIR, else the built-in)");
    app.add_option("--socket", settings.socketPath,
                   "The daemon's socket (default: oam/oamd.sock of the installation)");
    app.add_option("--listen", settings.listen, "Serve at ADDRESS:PORT; port 0 is a free one")
        ->capture_default_str();
    app.add_option("--certificate", settings.tls.certificate,
                   "The gateway's own, PEM, with those that sign it");
    app.add_option("--key", settings.tls.key, "Its key, PEM");
    app.add_option("--client-authorities", settings.tls.clientAuthorities,
                   "Clients log in with certificates that these sign, PEM");
    app.add_flag("--pam", settings.withPasswords, "Local users log in with their passwords");
    app.add_option("--pam-service", settings.pamService, "The rules in /etc/pam.d")
        ->capture_default_str();
    app.add_option("--pam-directory", settings.pamDirectory, "Instead of /etc/pam.d");
    app.add_option("--name", settings.names,
                   "A name by which browsers reach it, besides those in the certificate");
    app.add_option("--token-file", settings.tokenFile,
                   "Where the token for this machine's user goes, for scripts");
    app.add_option("--streams", settings.streams, "How many event streams at a time")
        ->check(CLI::Range(1U, 1000U))
        ->capture_default_str();
    app.add_flag("--openapi", settings.onlyDescribes, "Print the interface's description and end");
    app.set_config("--config", "", "Read settings from this file");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        *status = app.exit(error) == 0 ? 0 : kUsage;
        return std::nullopt;
    }
    if (dir->count() > 0) settings.directory = directory;
    for (const std::string& why : {WhyNoAddress(&settings), WhyNotAllowed(settings)}) {
        if (why.empty()) continue;
        *status = ended(why);
        return std::nullopt;
    }
    return settings;
}

}  // namespace oam::console
