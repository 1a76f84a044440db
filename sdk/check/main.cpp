// oam-plugin-check: judges one board plug-in or component.
#include <strings.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "file_check.h"
#include "interruption.h"
#include "report.h"
#include "shown.h"
#include "stage.h"

namespace oam::check {
namespace {

enum ExitStatus { kPassed = 0, kFindings = 1, kUsage = 2, kInterrupted = 130 };

constexpr const char* kSummary =
    "Judges a board plug-in (*.bpi) or component (*.emc): its file, and, in a process and an\n"
    "installation of its own, how it behaves through a whole life.";

// Some faults of the file leave nothing to run.
bool canRun(const std::vector<Finding>& findings) {
    return std::none_of(findings.begin(), findings.end(),
                        [](const Finding& finding) { return finding.rule == Rule::Entries; });
}

void runStages(Judge* judge) {
    for (const Stage& stage : RunningStages()) {
        if (judge->Kind() == ModuleKind::Component && !stage.forComponents) continue;
        if (!judge->Run(stage)) return;
    }
}

std::vector<Finding> check(const std::filesystem::path& module, ModuleKind kind,
                           std::chrono::milliseconds limit) {
    std::string reason;
    const auto file = ElfFile::Read(module, &reason);
    if (!file) return {{Rule::SharedObject, "", reason}};
    auto findings = CheckFile(*file, kind);
    Judge judge(module, kind, limit);
    if (judge.Run(kLoadingStage) && canRun(findings)) runStages(&judge);
    const auto more = judge.TakeFindings();
    findings.insert(findings.end(), more.begin(), more.end());
    return findings;
}

int complain(const std::string& what) {
    std::fprintf(stderr, "oam-plugin-check: %s\n", what.c_str());
    return kUsage;
}

int run(const std::string& name, double seconds, bool isJson) {
    const std::filesystem::path module = std::filesystem::absolute(name);
    const std::string extension = module.extension();
    const bool isPlugin = strcasecmp(extension.c_str(), ".bpi") == 0;
    if (!isPlugin && strcasecmp(extension.c_str(), ".emc") != 0)
        return complain(Quoted(name) + " is named neither *.bpi nor *.emc");
    if (!std::filesystem::is_regular_file(module) || !std::ifstream(module))
        return complain(Quoted(name) + " cannot be read");
    const auto kind = isPlugin ? ModuleKind::Plugin : ModuleKind::Component;
    const std::chrono::milliseconds limit(static_cast<long>(seconds * 1000));
    WatchForInterruption();
    const Verdict verdict(name, kind, check(module, kind, limit));
    if (WasInterrupted()) return kInterrupted;
    const std::string text = isJson ? AsJson(verdict) : AsText(verdict);
    if (std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0)
        return complain("cannot write the report");
    return verdict.IsPassed() ? kPassed : kFindings;
}

int execute(int argc, char** argv) {
    CLI::App app(kSummary, "oam-plugin-check");
    std::string file;
    bool isJson = false;
    bool isRules = false;
    double seconds = 15;
    app.add_option("FILE", file, "The plug-in or component");
    app.add_flag("--json", isJson, "Answer in JSON: one object");
    app.add_flag("--rules", isRules, "Show every rule and judge nothing");
    app.add_option("--timeout", seconds, "Seconds that one call may take")
        ->type_name("S")
        ->check(CLI::Range(0.1, 3600.0))
        ->capture_default_str();
    app.footer("\nExit status: 0 no error and no warning, 1 findings, 2 wrong use.");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kPassed : kUsage;
    }
    if (isRules) return std::fputs(RulesAsText().c_str(), stdout) < 0 ? kUsage : kPassed;
    if (file.empty()) return complain("which file? See --help.");
    return run(file, seconds, isJson);
}

}  // namespace
}  // namespace oam::check

int main(int argc, char** argv) {
    try {
        return oam::check::execute(argc, argv);
    } catch (const std::exception& error) {
        return oam::check::complain(error.what());
    }
}
