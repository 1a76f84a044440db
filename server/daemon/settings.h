// What the daemon is told: command line first, then the configuration file, then what is usual.
#pragma once

#include <optional>
#include <string>

#include "transport/transport.h"

namespace oam::server {

struct Settings {
    std::string directory;  // of the installation; empty: KOR_DIR, else the compiled-in one
    std::string rolesFile;  // empty: "<directory>/oam/roles.conf" when there is one
    std::string tcpAddress;
    TlsFiles tls;
    std::string metricsAddress;  // empty: none
    unsigned alertsKept = 100000;
    std::string socketPath;  // empty: "<directory>/oam/oamd.sock"
};

// Nothing when the daemon is to end at once, with this status (help, a mistake; both are told).
std::optional<Settings> ReadSettings(int argc, char** argv, int* status);

}  // namespace oam::server
