// oam fleet init, forget: for the fleet's keeper.
#include "arguments.h"
#include "cli/fleet/fleet_command.h"
#include "console.h"
#include "fleet/link/bucket.h"
#include "fleet/link/setup.h"
#include "fleet/names.h"

namespace oam::fleet {
namespace {

class InitCommand : public FleetCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Number("--replicas", &replicas_, {1, 5},
                         "How many servers have each record (default 3)");
        arguments.Number("--alert-days", &alertDays_, {0, 36500},
                         "For how many days alerts are kept, 0: as long as there is room "
                         "(default 30)");
        arguments.Number("--alert-megabytes", &alertMegabytes_, {1, 0xffffffff},
                         "In how many megabytes (default: as the servers allow)");
        arguments.Number("--presence-minutes", &presenceMinutes_, {1, 100000},
                         "After how long a silent host is gone (default 10)");
    }

    ExitStatus Run(FleetContext& context) override {
        FleetPlan plan;
        plan.replicas = replicas_.value_or(plan.replicas);
        if (alertDays_) plan.alertAge = std::chrono::hours(24) * *alertDays_;
        plan.alertBytes = std::int64_t{alertMegabytes_.value_or(0)} << 20;
        if (presenceMinutes_) plan.presenceAge = std::chrono::minutes(*presenceMinutes_);
        const auto link = Connect(context.options);
        Table table{{{"stream", "STREAM"}, {"isNew", "MADE"}}, {}};
        for (const MadeStream& made : MakeFleet(*link, plan))
            table.rows.push_back({made.name, Cell(made.isNew, made.isNew ? "now" : "was there")});
        context.console.Show("streams", table);
        return kDone;
    }

  private:
    std::optional<unsigned> replicas_, alertDays_, alertMegabytes_, presenceMinutes_;
};

class ForgetCommand : public FleetCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Required("HOST", &hosts_, "The names of hosts that are no more");
    }

    ExitStatus Run(FleetContext& context) override {
        const auto link = Connect(context.options);
        Json forgotten = Json::array();
        for (const std::string& host : hosts_) {
            const std::string key = TokenOf(host);
            if (!Bucket(*link, kHostBucket).Get(key) && !Bucket(*link, kBoardBucket).Get(key) &&
                !Bucket(*link, kPresenceBucket).Get(key))
                throw Failure("the fleet knows no host " + Quoted(host), "", kNotFound);
            for (const char* const bucket : {kPresenceBucket, kBoardBucket, kHostBucket})
                Bucket(*link, bucket).Remove(key);
            forgotten.push_back(host);
            context.console.Say("forgotten: " + Quoted(host));
        }
        if (context.console.IsJson()) context.console.ShowJson({{"forgotten", forgotten}});
        return kDone;
    }

  private:
    std::vector<std::string> hosts_;
};

constexpr FleetRow kRows[] = {
    {"init", "Make the fleet's stream and buckets, or change how they are kept",
     "oam fleet init\noam fleet init --replicas 3 --alert-days 90", MakeFleetCommand<InitCommand>},
    {"forget", "Drop hosts that are no more from the inventory; their alerts stay",
     "oam fleet forget rack-7-1", MakeFleetCommand<ForgetCommand>},
};

}  // namespace

std::span<const FleetRow> KeeperCommands() { return kRows; }

}  // namespace oam::fleet
