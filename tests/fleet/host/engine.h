// One server of the engine for the tests of a single host: on the loopback, with users and
// passwords, everything kept once. Clusters and certificates are the business of the fleet's rig.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "child_process.h"

namespace oam::test {

class Engine {
  public:
    enum class Rights {
        kEach,       // as a fleet needs them
        kNone,       // users, and each may do everything
        kStrangers,  // users, and one for those who say nothing
        kOpen,       // no users at all
    };
    explicit Engine(const std::string& directory) : directory_(directory) {}
    ~Engine();

    // At the port that it had before, when it had one.
    void Start(Rights rights = Rights::kEach);
    void Stop();

    std::string Url() const { return "nats://127.0.0.1:" + std::to_string(port_); }
    // The options of a client of this name: host-1, keeper, or a role.
    std::vector<std::string> OptionsOf(const std::string& user) const;

  private:
    std::string Settings(Rights rights) const;

    const std::string directory_;
    int port_ = -1;
    std::unique_ptr<ChildProcess> server_;
};

// The one host of these tests.
inline constexpr const char* kHostName = "h.1";

}  // namespace oam::test
