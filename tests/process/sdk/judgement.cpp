#include "judgement.h"

#include <cstdlib>

#include "package.h"
#include "program.h"
#include "support/installation.h"

namespace oam::test {

std::set<std::string> Judgement::Broken() const {
    std::set<std::string> rules;
    for (const auto& finding : report["findings"])
        if (finding["severity"] != "note") rules.insert(finding["rule"]);
    return rules;
}

std::vector<std::string> Judgement::Seen(const std::string& rule, const std::string& entry) const {
    std::vector<std::string> seen;
    for (const auto& finding : report["findings"])
        if (finding["rule"] == rule && finding["entry"] == entry) seen.push_back(finding["seen"]);
    return seen;
}

Judgement Judge(const std::filesystem::path& file, const std::vector<std::string>& options) {
    const Installation home(Layout::kBare);
    // Crashes are for the check to find, not for a sanitizer's run-time library.
    setenv("ASAN_OPTIONS", "handle_segv=0:handle_abort=0", 1);
    setenv("TSAN_OPTIONS", "handle_segv=0:handle_abort=0", 1);
    std::vector<std::string> arguments = {PackageProgram("oam-plugin-check"), file, "--json"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const auto outcome = RunProgram(arguments, home.Root());
    return {outcome.status, nlohmann::json::parse(outcome.out, nullptr, false)};
}

}  // namespace oam::test
