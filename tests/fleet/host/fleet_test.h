// The fixture: one engine, one host with a real daemon and its agent, and the tool.
#pragma once

#include <nlohmann/json.hpp>

#include "await.h"
#include "daemon_test.h"
#include "engine.h"
#include "fleet/link/link.h"
#include "fleet/records.h"

namespace oam::test {

using Json = nlohmann::ordered_json;

class FleetTest : public DaemonTest {
  protected:
    FleetTest();
    void TearDown() override;

    // Engine, streams, daemon with one board of each kind of start, agent.
    void StartAll();
    void MakeStreams();
    void StartAgent();
    void EndAgent();
    void KillAgent();

    // `oam fleet` as this user.
    Finished Fleet(const std::string& user, const std::vector<std::string>& words) const;
    // The same with --json; it must end so.
    Json FleetJson(const std::string& user, const std::vector<std::string>& words,
                   int status = 0) const;
    // The presence of the one host, as the tool tells it.
    std::string Presence() const;
    bool AwaitPresence(const std::string& wanted, std::chrono::milliseconds limit) const;

    // Through the daemon.
    void Raise(const std::string& text, int times = 1);
    std::uint64_t Newest();

    std::unique_ptr<fleet::Link> LinkOf(const std::string& user) const;
    // The stream's records, in its order.
    std::vector<fleet::AlertRecord> Records() const;
    // Waits until the stream has the host's alert with this number.
    bool AwaitInStream(std::uint64_t sequence) const;

    Engine engine;
    std::unique_ptr<ChildProcess> agent;
    std::vector<std::string> agentOptions;
};

// Each number once, in order, from the first to the last; what gaps tell counts.
void ExpectGapless(const std::vector<fleet::AlertRecord>& records, std::uint64_t last);

}  // namespace oam::test
