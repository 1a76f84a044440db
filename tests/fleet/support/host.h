// A host of a fleet: a real daemon with the simulated chassis, and its agent.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "lasting_child.h"
#include "oam/v1/alerts.grpc.pb.h"
#include "oam/v1/host.grpc.pb.h"
#include "reserved_port.h"
#include "site.h"

namespace oam::test {

// What every host begins with: made once, since detecting and adding boards takes longer than a
// start.
class HostModel {
  public:
    // With so many boards, "Sim 0" and on; `roles` are lines of the daemon's rules besides that for
    // who runs the test.
    HostModel(const Site& site, int boards, const std::string& roles = {});

    const std::string& Directory() const { return directory_; }

  private:
    std::string directory_;
};

class Host {
  public:
    // `name` in the fleet; its certificate is "<name>.example.net".
    Host(Site& site, const HostModel& model, const std::string& name);

    // Where its agent goes: the hub's servers, or a leaf.
    void SetHub(const std::string& urls) { hub_ = urls; }

    const std::string& Name() const { return name_; }
    std::string Certificate() const { return name_ + ".example.net"; }

    // How many its daemon keeps, from its next start on.
    void KeepAlerts(int count) { alertsKept_ = count; }

    void StartDaemon();
    void StartAgent();
    ChildProcess& Daemon() { return *daemon_; }
    ChildProcess& Agent() { return *agent_; }
    // In good order.
    void EndDaemon();
    void KillDaemon() { Kill(&daemon_); }
    void KillAgent() { Kill(&agent_); }

    // Raises an alert; false when the daemon did not take it.
    bool Raise(const std::string& text);
    // All that the daemon keeps, in order.
    std::vector<v1::Alert> Ring();
    std::uint64_t Newest();
    std::string AgentLog() const;
    // In Prometheus's text; empty while nobody answers.
    std::string DaemonMetrics() const;
    std::string AgentMetrics() const;

  private:
    void Connect();
    static void Kill(std::unique_ptr<ChildProcess>* process);

    std::string name_;
    std::string hub_;
    Papers papers_;
    std::string directory_;
    ReservedPort daemonMetrics_, agentMetrics_;
    int alertsKept_ = 100'000;
    std::unique_ptr<ChildProcess> daemon_, agent_;
    std::unique_ptr<v1::Alerts::Stub> alerts_;
    std::unique_ptr<v1::Host::Stub> service_;
};

}  // namespace oam::test
