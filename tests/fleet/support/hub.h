// The hub of a fleet: three servers with the shipped configuration, everything kept three times.
#pragma once

#include <array>
#include <memory>
#include <string>

#include "nats_server.h"
#include "reserved_port.h"
#include "site.h"

namespace oam::test {

// The one that makes the streams and sees everything.
inline constexpr const char* kKeeper = "keeper.example.net";

class Hub {
  public:
    static constexpr int kServers = 3;

    // With the rights that the site allows by now.
    explicit Hub(Site& site);

    // All three, and waits until they can keep something.
    void Start();
    void Stop();
    void Kill();
    NatsServer& At(int index) { return *servers_.at(static_cast<std::size_t>(index)); }

    // Takes up what the site allows by now, without a restart.
    void RenewRights();

    // "tls://localhost:21001,tls://localhost:21002,..."
    std::string Urls() const { return Urls(clients_); }
    std::string LeafUrls() const { return Urls(leaves_); }
    // The one with this index alone.
    std::string Url(int index) const;
    int MonitorPort(int index) const;

    // Which of the three leads this stream now; waits while there is none.
    int LeaderOf(const std::string& stream);
    // Waits until every stream has a leader and all three copies are up to date.
    void AwaitWhole();

  private:
    using Ports = std::array<ReservedPort, kServers>;
    static std::string Urls(const Ports& ports);
    std::string Settings(int index) const;
    void PutRights(int index) const;
    bool CanKeep() const;

    Site& site_;
    Ports clients_, routes_, leaves_, monitors_;
    std::array<std::unique_ptr<NatsServer>, kServers> servers_;
};

}  // namespace oam::test
