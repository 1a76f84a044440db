#include "fleet/link/link_settings.h"

#include <algorithm>

namespace oam::fleet {
namespace {

bool isTlsAddress(const std::string& server) { return server.starts_with("tls://"); }

// "127.0.0.1" of "nats://user@127.0.0.1:4222".
std::string hostIn(std::string server) {
    if (const auto scheme = server.find("://"); scheme != server.npos) server.erase(0, scheme + 3);
    if (const auto at = server.rfind('@'); at != server.npos) server.erase(0, at + 1);
    if (server.starts_with('[')) return server.substr(0, server.find(']') + 1);
    return server.substr(0, server.find(':'));
}

bool isThisMachine(const std::string& server) {
    const std::string host = hostIn(server);
    return host == "localhost" || host == "[::1]" ||
           (host.starts_with("127.") && host.find_first_not_of("0123456789.") == host.npos);
}

}  // namespace

bool WantsTls(const LinkSettings& settings) {
    return !settings.authorities.empty() || !settings.certificate.empty() ||
           std::any_of(settings.servers.begin(), settings.servers.end(), isTlsAddress);
}

std::string WhyNotAllowed(const LinkSettings& settings) {
    if (settings.servers.empty()) return "no server is named: --server tls://HOST:PORT";
    for (const std::string& server : settings.servers)
        if (server.find('@') != server.npos)
            return "a server's address holds no user: --user and --password-file tell it";
    if (settings.certificate.empty() != settings.key.empty())
        return "--certificate and --key go together";
    if (settings.user.empty() != settings.passwordFile.empty())
        return "--user and --password-file go together";
    if (settings.certificate.empty() && settings.user.empty() && settings.credentials.empty())
        return "nothing tells the server who this is: --certificate and --key, --credentials, or "
               "--user and --password-file";
    if (WantsTls(settings)) {
        if (settings.authorities.empty())
            return "TLS needs --authorities: who signs the servers' certificates";
        return {};
    }
    for (const std::string& server : settings.servers)
        if (!isThisMachine(server))
            return server + " is not on this machine: that needs TLS (tls:// and --authorities)";
    return {};
}

}  // namespace oam::fleet
