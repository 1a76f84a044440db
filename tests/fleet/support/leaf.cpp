#include "leaf.h"

namespace oam::test {
namespace {

// "a,b" as a list of the configuration.
std::string listOf(const std::string& urls) {
    std::string list = "[\"";
    for (const char c : urls) list += c == ',' ? std::string("\", \"") : std::string(1, c);
    return list + "\"]";
}

std::string settings(Site& site, const std::string& name, const std::string& certificate,
                     const std::string& hubs, const ReservedPort& clients) {
    const Papers papers = site.PapersOf(certificate);
    return Setting("OAM_SERVER", name) + Setting("OAM_CLIENTS", clients.Address()) +
           "OAM_HUBS: " + listOf(hubs) + "\n" + Setting("OAM_CERTIFICATE", papers.certificate) +
           Setting("OAM_KEY", papers.key) + Setting("OAM_AUTHORITIES", papers.authorities) +
           Setting("OAM_HOST_CERTIFICATE", certificate);
}

}  // namespace

Leaf::Leaf(Site& site, const std::string& name, const std::string& certificate,
           const std::string& hubs)
    : server_(site, "leaf-" + name, "leaf.conf",
              settings(site, name, certificate, hubs, clients_)) {}

}  // namespace oam::test
