#include "services/doctor.h"

#include <sys/statvfs.h>

#include <algorithm>
#include <ctime>

#include "config_check.h"
#include "failure.h"
#include "installation.h"
#include "library/foreign_calls.h"

namespace oam::server {
namespace {

using Severity = Complaint::Severity;

// Longer than any call that waits for nothing but a disk.
constexpr auto kLong = std::chrono::seconds(5);
// A start, stop or test may take its time; longer than this few do.
constexpr auto kVeryLong = std::chrono::seconds(60);
constexpr double kLittleRoom = 0.05;

std::string forHowLong(std::chrono::nanoseconds age) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(age);
    const std::time_t since =
        std::chrono::system_clock::to_time_t(std::chrono::system_clock::now() - seconds);
    std::tm parts{};
    char text[32] = "";
    if (gmtime_r(&since, &parts) != nullptr) (void)strftime(text, sizeof text, "%FT%TZ", &parts);
    return "for " + std::to_string(seconds.count()) + " s, since " + text;
}

std::string nameOf(const ForeignCall& call) {
    return (call.module.empty() ? "a module" : Quoted(call.module)) + " is in " + call.entry +
           (call.about.empty() ? "" : " of " + Quoted(call.about));
}

// The entries that run without a lock of the service, on a thread of their own.
bool mayTakeLong(const std::string& entry) {
    return entry == "StartBoard" || entry == "StopBoard" || entry == "TestBoard";
}

void examinePlugins(const std::vector<ForeignCall>& calls, std::vector<Complaint>* found) {
    for (const ForeignCall& call : calls) {
        if (call.age < kLong) continue;
        const bool isPatient = mayTakeLong(call.entry);
        found->push_back({!isPatient              ? Severity::kError
                          : call.age >= kVeryLong ? Severity::kWarning
                                                  : Severity::kNote,
                          "plug-in call", nameOf(call) + " " + forHowLong(call.age),
                          isPatient ? "an operation may take its time; other boards are served"
                                    : "the module hangs, and what waits for it with it; a restart "
                                      "of the daemon ends it"});
    }
}

void examineRequests(const Core& core, const std::vector<ForeignCall>& calls,
                     std::vector<Complaint>* found) {
    const auto now = std::chrono::steady_clock::now();
    for (const Lanes::Running& run : core.lanes.Runs()) {
        if (now - run.since < kLong) continue;
        // Oldest first: the last one is the innermost.
        const auto inside =
            std::find_if(calls.rbegin(), calls.rend(),
                         [&](const ForeignCall& call) { return call.thread == run.thread; });
        found->push_back({Severity::kError, "call",
                          run.what + (run.lane.empty() ? "" : " of " + Quoted(run.lane)) +
                              " has not returned " + forHowLong(now - run.since) +
                              (inside == calls.rend() ? "" : ": " + nameOf(*inside)),
                          inside == calls.rend()
                              ? "it waits for another call; other boards are served"
                              : "the plug-in hangs; other boards are served, and a restart of the "
                                "daemon ends it"});
    }
}

void examineService(const Core& core, std::vector<Complaint>* found) {
    if (core.host.IsRunning()) return;
    found->push_back({Severity::kError, "service",
                      core.host.Code() ? "the service does not start: " + CodeText(core.host.Code())
                                       : "the service is stopped",
                      core.host.Code() ? "oam/log/startup.log tells which stage failed"
                                       : "`oam service start` starts it"});
}

void examineFiles(const Core& core, std::vector<Complaint>* found) {
    const CheckResult result = CheckInstallation(Installation::Locate(core.directory));
    for (const Finding& finding : result.findings)
        found->push_back(
            {Severity::kWarning, "configuration", FindingText(finding), "correct the file"});
}

void examineDisk(const Core& core, std::vector<Complaint>* found) {
    struct statvfs facts {};
    if (statvfs(core.directory.c_str(), &facts) != 0 || facts.f_blocks == 0) return;
    const double free = static_cast<double>(facts.f_bavail) / static_cast<double>(facts.f_blocks);
    if (free >= kLittleRoom) return;
    found->push_back({Severity::kWarning, "disk",
                      "less than 5 % of the disk is free at " + core.directory,
                      "make room: changes are refused when it is full"});
}

}  // namespace

std::vector<Complaint> Examine(const Core& core) {
    std::vector<Complaint> found;
    examineService(core, &found);
    const std::vector<ForeignCall> calls = ForeignCallsUnderWay();
    examinePlugins(calls, &found);
    examineRequests(core, calls, &found);
    examineFiles(core, &found);
    examineDisk(core, &found);
    return found;
}

}  // namespace oam::server
