// A fleet on this machine: a hub of three servers and hosts that are real daemons with the
// simulated chassis, each with its agent.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "child_process.h"
#include "host.h"
#include "hub.h"
#include "observer.h"
#include "site.h"

namespace oam::torture {

inline constexpr const char* kViewer = "noc.example.net";
inline constexpr const char* kOperator = "alice.example.net";

class Fleet {
  public:
    // "h001" and on, each with so many boards.
    explicit Fleet(int hosts, int boards = 2);

    // The hub with its stream and buckets, then every host; waits until each is known to the fleet.
    void Start();
    // The stream and the buckets alone, on a hub that runs.
    void Init();
    // More hosts, in the same way.
    void Grow(int hosts);

    test::Site& Site() { return site_; }
    test::Hub& Hub() { return *hub_; }
    std::size_t Size() const { return hosts_.size(); }
    test::Host& At(std::size_t index) { return *hosts_.at(index); }

    // `oam fleet ...` as this one; it must succeed.
    std::string Tool(const std::vector<std::string>& arguments, const std::string& as = kViewer);
    test::Finished TryTool(const std::vector<std::string>& arguments,
                           const std::string& as = kViewer);

    test::Observer Keeper() { return test::Observer(hub_->Urls(), site_.PapersOf(test::kKeeper)); }

  private:
    void Add(int hosts);
    void StartHosts(std::size_t first);

    test::Site site_;
    const test::HostModel model_;
    std::unique_ptr<test::Hub> hub_;
    std::vector<std::unique_ptr<test::Host>> hosts_;
    std::vector<std::unique_ptr<test::ChildProcess>> ended_;
};

}  // namespace oam::torture
