#include "hub.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "await.h"
#include "observer.h"

namespace oam::test {
namespace {

std::string nameOf(int index) { return "hub-" + std::to_string(index + 1); }

}  // namespace

Hub::Hub(Site& site) : site_(site) {
    site_.Allow(std::string("keeper ") + kKeeper);
    for (int i = 0; i < kServers; ++i) {
        servers_[static_cast<std::size_t>(i)] =
            std::make_unique<NatsServer>(site_, nameOf(i), "hub.conf", Settings(i));
        PutRights(i);
    }
}

void Hub::Start() {
    for (const auto& server : servers_)
        if (!server->IsRunning()) server->Start();
    EXPECT_TRUE(Await([&] { return CanKeep(); })) << "the hub does not come up";
}

void Hub::Stop() {
    for (const auto& server : servers_)
        if (server->IsRunning()) server->Stop();
}

void Hub::Kill() {
    for (const auto& server : servers_)
        if (server->IsRunning()) server->Kill();
}

void Hub::RenewRights() {
    for (int i = 0; i < kServers; ++i) {
        PutRights(i);
        if (!At(i).IsRunning()) continue;
        At(i).Reload();
        At(i).AwaitLog("Reloaded server configuration");
    }
}

std::string Hub::Url(int index) const {
    return "tls://" + clients_.at(static_cast<std::size_t>(index)).Name();
}

int Hub::MonitorPort(int index) const {
    return monitors_.at(static_cast<std::size_t>(index)).Number();
}

int Hub::LeaderOf(const std::string& stream) {
    int leader = -1;
    const Observer observer(Urls(), site_.PapersOf(kKeeper));
    EXPECT_TRUE(Await([&] {
        const auto facts = observer.Facts(stream);
        for (int i = 0; facts && i < kServers; ++i)
            if (facts->leader == nameOf(i)) leader = i;
        return leader >= 0;
    })) << stream
        << " has no leader";
    return leader;
}

void Hub::AwaitWhole() {
    const Observer observer(Urls(), site_.PapersOf(kKeeper));
    EXPECT_TRUE(Await([&] {
        const auto streams = observer.Streams();
        return std::all_of(streams.begin(), streams.end(), [&](const std::string& stream) {
            const auto facts = observer.Facts(stream);
            return facts && !facts->leader.empty() && facts->isCurrent;
        });
    })) << "not all copies are up to date";
}

std::string Hub::Urls(const Ports& ports) {
    std::string urls;
    for (const ReservedPort& port : ports)
        urls += (urls.empty() ? "tls://" : ",tls://") + port.Name();
    return urls;
}

std::string Hub::Settings(int index) const {
    const auto i = static_cast<std::size_t>(index);
    const Papers papers = site_.PapersOf(nameOf(index) + ".example.net");
    std::string routes;
    for (const ReservedPort& port : routes_) routes += "  \"tls://" + port.Name() + "\"\n";
    return Setting("OAM_SERVER", nameOf(index)) + Setting("OAM_CLIENTS", clients_[i].Address()) +
           Setting("OAM_CLIENTS_ADVERTISED", clients_[i].Name()) +
           Setting("OAM_CLUSTER", routes_[i].Address()) +
           Setting("OAM_CLUSTER_ADVERTISED", routes_[i].Name()) + "OAM_ROUTES: [\n" + routes +
           "]\n" + Setting("OAM_LEAVES", leaves_[i].Address()) +
           Setting("OAM_LEAVES_ADVERTISED", leaves_[i].Name()) +
           Setting("OAM_MONITOR", monitors_[i].Address()) +
           Setting("OAM_CERTIFICATE", papers.certificate) + Setting("OAM_KEY", papers.key) +
           Setting("OAM_AUTHORITIES", papers.authorities) +
           Setting("OAM_SYSTEM_CERTIFICATE", "servers.example.net") +
           Setting("OAM_STORE", site_.Path(nameOf(index) + "/store")) +
           "OAM_MEMORY_STORE: 64MB\nOAM_FILE_STORE: 2GB\n";
}

void Hub::PutRights(int index) const {
    site_.Write(nameOf(index) + "/rights.conf", site_.Rights());
}

bool Hub::CanKeep() const {
    try {
        return Observer(Urls(), site_.PapersOf(kKeeper)).CanKeep();
    } catch (const std::runtime_error&) {
        return false;
    }
}

}  // namespace oam::test
