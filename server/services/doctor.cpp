#include "services/doctor.h"

#include <sys/statvfs.h>

#include "config_check.h"
#include "failure.h"
#include "installation.h"

namespace oam::server {
namespace {

using Severity = Complaint::Severity;

// Longer than any call that waits for nothing but a disk.
constexpr auto kLong = std::chrono::seconds(5);
constexpr double kLittleRoom = 0.05;

void examineCalls(const Core& core, std::vector<Complaint>* found) {
    const auto now = std::chrono::steady_clock::now();
    for (const Lanes::Running& call : core.lanes.Runs()) {
        if (now - call.since < kLong) continue;
        const auto seconds =
            std::chrono::duration_cast<std::chrono::seconds>(now - call.since).count();
        found->push_back({Severity::kError, "call",
                          call.what + (call.lane.empty() ? "" : " of " + Quoted(call.lane)) +
                              " has not returned for " + std::to_string(seconds) + " s",
                          "its plug-in hangs; other boards are served, and a restart of the daemon "
                          "ends it"});
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
    examineCalls(core, &found);
    examineFiles(core, &found);
    examineDisk(core, &found);
    return found;
}

}  // namespace oam::server
