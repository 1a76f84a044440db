#include "fleet/agent/agent_figures.h"

#include "fleet/version.h"
#include "metrics/exposition.h"
#include "metrics/process_figures.h"

namespace oam::fleet {
namespace {

using server::Exposition;
using Kind = Exposition::Kind;

double asDouble(std::uint64_t count) { return static_cast<double>(count); }

// A number without labels.
void tell(Exposition& text, Kind kind, const char* name, const char* help, double value) {
    text.Family(name, kind, help);
    text.Sample(value);
}

void tellAlerts(Exposition& text, const AgentFigures& figures) {
    tell(text, Kind::kCounter, "oam_fleet_alerts_total", "Alerts that the stream has acknowledged.",
         asDouble(figures.alerts));
    tell(text, Kind::kCounter, "oam_fleet_alerts_known_total",
         "Of them, those that the stream had already.", asDouble(figures.alertsThere));
    tell(text, Kind::kCounter, "oam_fleet_alert_gaps_total",
         "Gaps in the host's alerts, told to the stream.", asDouble(figures.gaps));
    tell(text, Kind::kCounter, "oam_fleet_alert_lookups_total",
         "How often the stream was asked for its last alert of this host.",
         asDouble(figures.lookedAgain));
    const std::uint64_t newest = figures.newest, published = figures.published;
    tell(text, Kind::kGauge, "oam_fleet_alert_lag",
         "How many numbers the stream is behind the host.",
         newest > published ? asDouble(newest - published) : 0);
}

void tellCommands(Exposition& text, const AgentFigures& figures) {
    constexpr const char* kEnds[] = {"done", "refused", "no_daemon"};
    text.Family("oam_fleet_commands_total", Kind::kCounter,
                "Requests from the fleet, by their end.");
    for (std::size_t i = 0; i < figures.commands.size(); ++i)
        text.Sample({{"end", kEnds[i]}}, asDouble(figures.commands.at(i)));
    tell(text, Kind::kGauge, "oam_fleet_commands_running", "Requests that have no answer yet.",
         asDouble(figures.commandsRunning));
}

void tellProcess(Exposition& text) {
    const auto process = server::ReadProcessFigures();
    tell(text, Kind::kCounter, "process_cpu_seconds_total", "CPU time used.", process.cpuSeconds);
    tell(text, Kind::kGauge, "process_resident_memory_bytes", "Memory in use.",
         process.residentBytes);
    tell(text, Kind::kGauge, "process_open_fds", "Open descriptors.",
         static_cast<double>(process.descriptors));
    tell(text, Kind::kGauge, "process_threads", "Threads.", static_cast<double>(process.threads));
}

}  // namespace

std::string AgentMetrics(const AgentFigures& figures, const std::string& host) {
    Exposition text;
    text.Family("oam_fleet_info", Kind::kGauge, "The agent, and the host's name in the fleet.");
    text.Sample({{"version", kVersion}, {"host", host}}, 1);
    tell(text, Kind::kGauge, "oam_fleet_linked", "1 while a server of the engine is connected.",
         figures.isLinked ? 1 : 0);
    tell(text, Kind::kCounter, "oam_fleet_links_total", "Connections made.",
         asDouble(figures.links));
    tell(text, Kind::kCounter, "oam_fleet_link_failures_total", "Tries that made no connection.",
         asDouble(figures.linkFailures));
    tell(text, Kind::kCounter, "oam_fleet_servers_refused_total",
         "Servers that let anyone in, or let hosts command hosts.",
         asDouble(figures.serversRefused));
    tell(text, Kind::kGauge, "oam_fleet_daemon_answering", "1 while the host's daemon answers.",
         figures.daemon == static_cast<int>(Beat::Daemon::kAnswering) ? 1 : 0);
    tell(text, Kind::kCounter, "oam_fleet_beats_total", "Heartbeats sent.",
         asDouble(figures.beats));
    text.Family("oam_fleet_records_total", Kind::kCounter, "Records put into the buckets.");
    text.Sample({{"bucket", "hosts"}}, asDouble(figures.hostsPut));
    text.Sample({{"bucket", "boards"}}, asDouble(figures.boardsPut));
    tellAlerts(text, figures);
    tellCommands(text, figures);
    tellProcess(text);
    return text.Text();
}

}  // namespace oam::fleet
