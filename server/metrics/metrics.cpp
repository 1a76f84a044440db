#include "metrics/metrics.h"

#include <map>
#include <utility>

#include "failure.h"
#include "library/foreign_calls.h"
#include "library/own_codes.h"
#include "metrics/exposition.h"
#include "metrics/process_figures.h"
#include "oam/message.h"

namespace oam::server {
namespace {

using Kind = Exposition::Kind;

// The shadow holds the first ones only (oam/shadow.h).
constexpr std::size_t kShadowBoards = 31;

constexpr const char* kOperations[] = {"start", "stop", "test"};
constexpr const char* kOutcomes[] = {"running", "done", "failed", "refused", "unknown"};

double secondsOf(std::chrono::nanoseconds time) {
    return std::chrono::duration<double>(time).count();
}

double numberOf(std::uint64_t count) { return static_cast<double>(count); }

const char* severityName(std::uint32_t severity) {
    switch (severity) {
        case OAM_INFORMATION:
            return "information";
        case OAM_WARNING:
            return "warning";
        default:
            return "error";
    }
}

void tellOperations(const OperationBook& operations, Exposition* out) {
    const OperationTotals totals = operations.Totals();
    out->Family("oam_board_operations_total", Kind::kCounter,
                "Starts, stops and tests of boards that have ended, by outcome.");
    for (std::size_t kind = 0; kind < kOperationKinds; ++kind)
        for (std::size_t state = 1; state < kOperationStates; ++state)
            out->Sample({{"operation", kOperations[kind]}, {"outcome", kOutcomes[state]}},
                        numberOf(totals.ended[kind][state]));
    out->Family("oam_board_operation_duration_seconds", Kind::kHistogram,
                "From the request to the outcome, of operations that were done or failed.");
    for (std::size_t kind = 0; kind < kOperationKinds; ++kind)
        out->Sample({{"operation", kOperations[kind]}}, totals.durations[kind]);
    out->Family("oam_board_operations_running", Kind::kGauge,
                "Operations that were accepted and have no outcome yet.");
    out->Sample(numberOf(totals.running));
}

void tellAlerts(const MetricsSources& sources, Exposition* out) {
    out->Family("oam_alerts_total", Kind::kCounter, "Alerts by code and severity.");
    // Errors of several numbers are one severity.
    std::map<std::pair<std::string, std::string>, std::uint64_t> alerts;
    for (const AlertCounts::Kind& kind : sources.alerts.All()) {
        const char* const name = OwnCodeName(kind.code);
        alerts[{name ? name : HexText(kind.code), severityName(kind.severity)}] += kind.alerts;
    }
    if (sources.alerts.Others() != 0) alerts[{"other", "other"}] = sources.alerts.Others();
    for (const auto& [kind, count] : alerts)
        out->Sample({{"code", kind.first}, {"severity", kind.second}}, numberOf(count));

    const std::uint64_t given = sources.ring.Given();
    const std::uint64_t written = std::min(given, sources.writer.Written());
    out->Family("oam_alert_newest_number", Kind::kGauge, "The number of the newest alert.");
    out->Sample(numberOf(given));
    out->Family("oam_alert_ring_lag", Kind::kGauge, "Alerts that are not in the book on disk yet.");
    out->Sample(numberOf(given - written));
    const WatcherFigures watchers = sources.watchers();
    out->Family("oam_alert_watchers", Kind::kGauge, "Clients that watch alerts.");
    out->Sample(numberOf(watchers.watchers));
    out->Family("oam_alert_watcher_lag", Kind::kGauge,
                "How many alerts the slowest watcher is behind.");
    out->Sample(numberOf(watchers.longestLag));
}

void tellForeignCalls(Exposition* out) {
    out->Family(
        "oam_plugin_call_duration_seconds", Kind::kSummary,
        "Calls into plug-ins and components; each to the nearest tick of the clock, the sum "
        "of many is right.");
    const auto uses = ForeignEntryUses();
    for (const ForeignEntryUse& use : uses)
        out->Sample({{"plugin", use.module}, {"entry", use.entry}}, use.calls, secondsOf(use.sum));

    out->Family("oam_plugin_call_in_flight", Kind::kGauge,
                "Calls into plug-ins and components that have not returned.");
    for (const ForeignEntryUse& use : uses)
        out->Sample({{"plugin", use.module}, {"entry", use.entry}}, numberOf(use.underWay));
    out->Family("oam_plugin_call_oldest_seconds", Kind::kGauge,
                "For how long the oldest of them has not returned.");
    for (const ForeignEntryUse& use : uses)
        out->Sample({{"plugin", use.module}, {"entry", use.entry}}, secondsOf(use.oldest));
}

void tellRequests(const RequestCounts& requests, Exposition* out) {
    const auto methods = requests.All();
    out->Family("oam_requests_total", Kind::kCounter,
                "Requests that have ended, by method and gRPC status.");
    for (const auto& [name, method] : methods)
        for (std::size_t result = 0; result < RequestCounts::kResults; ++result)
            if (method.results[result] != 0)
                out->Sample({{"method", name}, {"code", RequestCounts::ResultName(result)}},
                            numberOf(method.results[result]));
    out->Family("oam_request_duration_seconds", Kind::kSummary, "How long they took.");
    for (const auto& [name, method] : methods) {
        std::uint64_t ended = 0;
        for (const std::uint64_t count : method.results) ended += count;
        out->Sample({{"method", name}}, ended, method.seconds);
    }
    out->Family("oam_requests_in_flight", Kind::kGauge, "Requests that have not ended.");
    for (const auto& [name, method] : methods)
        out->Sample({{"method", name}}, numberOf(method.underWay));
}

void tellDaemon(const MetricsSources& sources, Exposition* out) {
    out->Family("oam_build_info", Kind::kGauge, "1, with the version as its label.");
    out->Sample({{"version", sources.version}}, 1);
    out->Family("oam_service_running", Kind::kGauge, "Whether the service runs in the daemon.");
    out->Sample(sources.isServiceRunning() ? 1 : 0);
    out->Family("oam_sessions", Kind::kGauge, "Sessions with handles.");
    out->Sample(numberOf(sources.sessions()));
    out->Family("oam_lanes_busy", Kind::kGauge, "Threads that serve a call.");
    out->Sample(numberOf(sources.lanes.Runs().size()));
    out->Family("oam_lanes_threads", Kind::kGauge, "How many there may be.");
    out->Sample(numberOf(sources.lanes.Threads()));
    out->Family("oam_lanes_waiting", Kind::kGauge, "Calls that wait for a thread.");
    out->Sample(numberOf(sources.lanes.Waiting()));

    const ProcessFigures process = ReadProcessFigures();
    out->Family("process_cpu_seconds_total", Kind::kCounter, "Time of all processors.");
    out->Sample(process.cpuSeconds);
    out->Family("process_resident_memory_bytes", Kind::kGauge, "Memory in use.");
    out->Sample(process.residentBytes);
    out->Family("process_open_fds", Kind::kGauge, "Open descriptors.");
    out->Sample(numberOf(process.descriptors));
    out->Family("process_threads", Kind::kGauge, "Threads.");
    out->Sample(numberOf(process.threads));
}

void tellBoards(std::optional<std::size_t> boards, Exposition* out) {
    if (!boards) return;
    out->Family("oam_boards", Kind::kGauge, "Boards of the configuration.");
    out->Sample(numberOf(*boards));
    out->Family("oam_shadow_overflow_boards", Kind::kGauge,
                "Boards that the shared-memory shadow has no room for.");
    out->Sample(numberOf(*boards > kShadowBoards ? *boards - kShadowBoards : 0));
}

}  // namespace

std::string Metrics::Text() {
    Exposition out;
    tellDaemon(sources_, &out);
    tellBoards(boards_.Get(), &out);
    tellOperations(sources_.operations, &out);
    tellAlerts(sources_, &out);
    tellForeignCalls(&out);
    tellRequests(sources_.requests, &out);
    return out.Text();
}

}  // namespace oam::server
