// What the gateway is told on its command line, and whether it may start so.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace oam::console {

struct TlsFiles {
    std::string certificate;
    std::string key;
    std::string clientAuthorities;  // empty: clients need no certificate
};

struct Settings {
    std::optional<std::string> directory;  // of the installation
    std::string socketPath;                // empty: the installation's
    std::string listen = "127.0.0.1:7311";
    std::string host;  // of `listen`: a numeric address
    int port = 0;
    bool isLoopback = true;
    TlsFiles tls;
    bool withPasswords = false;
    std::string pamService = "oam-console";
    std::string pamDirectory;
    std::vector<std::string> names;  // by which browsers know this host
    std::string tokenFile;
    unsigned streams = 128;
    bool onlyDescribes = false;  // print the OpenAPI file and end

    bool HasTls() const { return !tls.certificate.empty(); }
    bool HasLogin() const { return withPasswords || !tls.clientAuthorities.empty(); }
};

// Nothing when the program is to end at once, with this status (help, a mistake; both are told).
std::optional<Settings> ReadSettings(int argc, char** argv, int* status);

// Why a gateway must not start so; empty: it may. Beyond this machine there is none without TLS and
// a login.
std::string WhyNotAllowed(const Settings& settings);

// Takes `listen` apart. What is no numeric address with a port is told.
std::string WhyNoAddress(Settings* settings);

}  // namespace oam::console
