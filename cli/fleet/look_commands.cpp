// oam fleet hosts, boards: what the fleet knows, without asking any host.
#include "cli/fleet/fleet_command.h"
#include "cli/fleet/sight.h"
#include "console.h"
#include "fleet/link/bucket.h"
#include "fleet/names.h"

namespace oam::fleet {
namespace {

Cell orNone(const std::string& text) { return text.empty() ? Cell(nullptr) : Cell(Json(text)); }

class HostsCommand : public FleetCommand {
  public:
    ExitStatus Run(FleetContext& context) override {
        const auto link = Connect(context.options);
        Table table{{{"host", "HOST"},
                     {"presence", "PRESENCE"},
                     {"since", "SINCE"},
                     {"boards", "BOARDS", true},
                     {"running", "SERVICE"},
                     {"version", "VERSION"},
                     {"started", "STARTED"},
                     {"directory", "DIRECTORY"},
                     {"why", "REMARK"}},
                    {}};
        for (const Sight& sight : LookAtHosts(*link, HostPattern(context.options.hosts))) {
            std::vector<Cell> row{sight.host, PresenceText(sight.presence), orNone(sight.since)};
            if (const auto& record = sight.record) {
                row.insert(
                    row.end(),
                    {record->boards, Cell(record->running, record->running ? "runs" : "is stopped"),
                     orNone(record->version), orNone(record->started), orNone(record->directory)});
            } else {
                row.insert(row.end(), {Cell(nullptr), Cell(nullptr), Cell(nullptr), Cell(nullptr),
                                       Cell(nullptr)});
            }
            row.push_back(orNone(sight.why));
            table.rows.push_back(std::move(row));
        }
        context.console.Show("hosts", table);
        return kDone;
    }
};

Cell outcomeCell(const std::optional<BoardOutcome>& outcome) {
    if (!outcome) return Cell(nullptr);
    return Cell(Json{{"kind", outcome->kind},
                     {"state", outcome->state},
                     {"time", outcome->time},
                     {"text", outcome->text}},
                outcome->kind + ' ' + outcome->state +
                    (outcome->state == "done" ? "" : ": " + outcome->text));
}

Cell placeCell(const BoardPlaceOf& place, const char* first) {
    return Cell(Json{{first, place.first}, {"slot", place.slot}},
                std::to_string(place.first) + ':' + std::to_string(place.slot));
}

class BoardsCommand : public FleetCommand {
  public:
    ExitStatus Run(FleetContext& context) override {
        const auto link = Connect(context.options);
        const HostPattern pattern(context.options.hosts);
        Table table{{{"host", "HOST"},
                     {"number", "NUMBER", true},
                     {"name", "NAME"},
                     {"product", "PRODUCT"},
                     {"pci", "BUS:SLOT"},
                     {"compactPci", "SHELF:SLOT"},
                     {"serialNumber", "SERIAL"},
                     {"state", "STATE"},
                     {"outcome", "LAST REQUEST"},
                     {"presence", "HOST IS"}},
                    {}};
        std::map<std::string, std::string> presence;
        for (const Sight& sight : LookAtHosts(*link, pattern))
            presence[sight.host] = PresenceText(sight.presence);
        Bucket bucket(*link, kBoardBucket);
        std::map<std::string, BoardsRecord> hosts;
        for (const Stored& stored : bucket.ReadAll().values) {
            const auto name = NameOf(bucket.KeyOf(stored));
            if (!name || !pattern.Matches(*name)) continue;
            try {
                hosts[*name] = ReadBoards(stored.data);
            } catch (const BadRecord& error) {
                context.console.Note("the boards of " + Quoted(*name) +
                                     " cannot be read: " + error.what());
            }
        }
        for (const auto& [host, record] : hosts)
            for (const BoardRecord& board : record.boards)
                table.rows.push_back(
                    {host, board.number, board.name, board.product, placeCell(board.pci, "bus"),
                     board.shelf ? placeCell(*board.shelf, "shelf") : Cell(nullptr),
                     board.serialNumber, board.state, outcomeCell(board.outcome),
                     presence.count(host) != 0 ? presence[host] : "gone"});
        context.console.Show("boards", table);
        return kDone;
    }
};

constexpr FleetRow kRows[] = {
    {"hosts", "All hosts: alive, stale or gone, and what they are",
     "oam fleet hosts\noam fleet hosts --host 'rack-7-*' --json", MakeFleetCommand<HostsCommand>},
    {"boards", "The boards of all hosts, as they were told last",
     "oam fleet boards\noam fleet boards --host rack-7-1", MakeFleetCommand<BoardsCommand>},
};

}  // namespace

std::span<const FleetRow> LookCommands() { return kRows; }

}  // namespace oam::fleet
