#include "cli/fleet/host_verbs.h"

#include <algorithm>
#include <atomic>
#include <set>
#include <string_view>
#include <thread>

#include "cli/fleet/host_calls.h"
#include "cli/fleet/host_pattern.h"
#include "cli/fleet/three_lists.h"
#include "cli/fleet/tunnel.h"
#include "console.h"
#include "fleet/link/bucket.h"
#include "fleet/names.h"
#include "installation.h"
#include "interruption.h"
#include "remote_host.h"

namespace oam::fleet {
namespace {

constexpr std::size_t kMostAtOnce = 64;

// Known hosts that match, and those that are named whether or not anybody knows them.
std::vector<std::string> hostsMeant(Link& link, const std::vector<std::string>& patterns) {
    const HostPattern pattern(patterns);
    const auto names = pattern.Names();
    std::set<std::string> hosts(names.begin(), names.end());
    for (const char* const name : {kHostBucket, kPresenceBucket}) {
        Bucket bucket(link, name);
        for (const Stored& stored : bucket.ReadAll().values)
            if (const auto host = NameOf(bucket.KeyOf(stored)); host && pattern.Matches(*host))
                hosts.insert(*host);
    }
    return {hosts.begin(), hosts.end()};
}

// Runs the command of one host; what it throws becomes its result.
class OneHost {
  public:
    OneHost(HostCalls& calls, const Installation& place, const Interruption& interruption,
            bool isJson, const std::string& title)
        : calls_(calls),
          place_(place),
          interruption_(interruption),
          isJson_(isJson),
          title_(title) {}

    void Run(const MakeVerb& make, HostResult* result) {
        Console console(isJson_, &result->output);
        result->status = console.StatusOf([&] {
            Tunnel tunnel(calls_, result->host);
            const RemoteHost host{result->host, "", "", ""};
            Context context{place_, console, title_, &host, &tunnel, &interruption_};
            const auto command = make(result->host);
            command->CheckArguments();
            return command->Run(context);
        });
    }

  private:
    HostCalls& calls_;
    const Installation& place_;
    const Interruption& interruption_;
    const bool isJson_;
    const std::string& title_;
};

}  // namespace

bool IsHostVerb(const CommandRow& row) {
    // Of these there is one for all hosts at once.
    if (std::string_view(row.name) == "monitor") return false;
    return row.make()->ReachesHosts();
}

ExitStatus RunHostVerb(FleetContext& context, const CommandRow& row, const std::string& title,
                       const MakeVerb& make, bool namesEachHost) {
    if (context.options.hosts.empty())
        throw UsageError("which hosts: --host PATTERN; all of them are --host '*'");
    // What does not fit is the same mistake on every host.
    make("host")->CheckArguments();
    const auto link = Connect(context.options);
    const auto hosts = hostsMeant(*link, context.options.hosts);
    if (hosts.empty())
        throw Failure("the fleet knows no such host", "`oam fleet hosts`", kNotFound);
    if (std::string_view(row.name) == "export" && hosts.size() > 1 && !namesEachHost)
        throw UsageError("several hosts would write one file: put {host} into its name");
    const Interruption interruption;
    const auto place = Installation::Locate(std::nullopt);
    HostCalls calls(*link, context.options.Caller(),
                    std::chrono::seconds(context.options.patience));
    std::vector<HostResult> results;
    for (const std::string& host : hosts) results.push_back({host, kInterrupted, {}});
    std::atomic<std::size_t> next{0};
    {
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < std::min(kMostAtOnce, hosts.size()); ++i)
            threads.emplace_back([&] {
                OneHost one(calls, place, interruption, context.options.json, title);
                for (std::size_t at = next++; at < results.size(); at = next++) {
                    if (!interruption.IsRequested())
                        one.Run(make, &results[at]);
                    else
                        results[at].output.err = "interrupted before it was asked\n";
                }
            });
    }
    Show(context.console, results);
    return interruption.IsRequested() ? kInterrupted : StatusOf(results);
}

}  // namespace oam::fleet
