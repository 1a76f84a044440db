#include "remote/remote_daemon.h"

#include "remote/remote_alert.h"

namespace oam {
namespace {

HostFacts factsOf(const v1::HostInfo& info) {
    HostFacts facts;
    facts.version = info.version();
    facts.directory = info.directory();
    facts.process = info.process();
    facts.isRunning = info.running();
    if (info.code() != 0)
        facts.code = info.code_name().empty() ? HexText(info.code()) : info.code_name();
    facts.newestAlert = info.newest_alert();
    facts.user = info.user();
    facts.role = info.role();
    return facts;
}

const char* severityText(v1::Finding::Severity severity) {
    switch (severity) {
        case v1::Finding::SEVERITY_NOTE:
            return "note";
        case v1::Finding::SEVERITY_WARNING:
            return "warning";
        default:
            return "error";
    }
}

const char* kindText(v1::ObjectDifference::Kind kind) {
    switch (kind) {
        case v1::ObjectDifference::KIND_CREATED:
            return "created";
        case v1::ObjectDifference::KIND_DELETED:
            return "deleted";
        default:
            return "changed";
    }
}

template <class Changes>
std::vector<ValueChange> changesOf(const Changes& told) {
    std::vector<ValueChange> changes;
    for (const auto& change : told) {
        ValueChange& one = changes.emplace_back();
        one.keyword = change.keyword();
        if (change.has_old_value()) one.before = change.old_value();
        if (change.has_new_value()) one.after = change.new_value();
    }
    return changes;
}

template <class Differences>
std::vector<ObjectDifferences> differencesOf(const Differences& told) {
    std::vector<ObjectDifferences> all;
    for (const auto& difference : told)
        all.push_back(
            {difference.object(), kindText(difference.kind()), changesOf(difference.changes())});
    return all;
}

}  // namespace

HostFacts RemoteDaemon::Host() {
    return factsOf(Ask(*stubs_.host, &v1::Host::Stub::GetHost, v1::GetHostRequest()));
}

HostFacts RemoteDaemon::Control(Life life) {
    switch (life) {
        case Life::kStart:
            return factsOf(
                Ask(*stubs_.host, &v1::Host::Stub::StartService, v1::StartServiceRequest()));
        case Life::kStop:
            return factsOf(
                Ask(*stubs_.host, &v1::Host::Stub::StopService, v1::StopServiceRequest()));
        case Life::kRestart:
            break;
    }
    return factsOf(Ask(*stubs_.host, &v1::Host::Stub::RestartService, v1::RestartServiceRequest()));
}

std::vector<DoctorFinding> RemoteDaemon::Diagnose() {
    std::vector<DoctorFinding> findings;
    const auto answer = Ask(*stubs_.host, &v1::Host::Stub::Diagnose, v1::DiagnoseRequest());
    for (const auto& finding : answer.findings())
        findings.push_back({severityText(finding.severity()), finding.subject(), finding.text(),
                            finding.remedy()});
    return findings;
}

std::vector<HistoryLine> RemoteDaemon::History(const std::string& object, unsigned limit) {
    v1::ListHistoryRequest request;
    request.set_object(object);
    request.set_limit(limit);
    std::vector<HistoryLine> lines;
    const auto answer = Ask(*stubs_.configuration, &v1::Configuration::Stub::ListHistory, request);
    for (const auto& entry : answer.entries())
        lines.push_back({entry.generation(), TimeOf(entry.time()), entry.user(), entry.action(),
                         entry.object(), changesOf(entry.changes())});
    return lines;
}

std::vector<ObjectDifferences> RemoteDaemon::Diff(std::uint64_t from, std::uint64_t to,
                                                  const std::string& object) {
    v1::DiffConfigurationRequest request;
    request.set_from(from);
    request.set_to(to);
    request.set_object(object);
    return differencesOf(
        Ask(*stubs_.configuration, &v1::Configuration::Stub::DiffConfiguration, request)
            .differences());
}

std::vector<ObjectDifferences> RemoteDaemon::RollBack(std::uint64_t generation,
                                                      const std::string& object) {
    v1::RollBackRequest request;
    request.set_generation(generation);
    request.set_object(object);
    return differencesOf(
        Ask(*stubs_.configuration, &v1::Configuration::Stub::RollBack, request).differences());
}

}  // namespace oam
