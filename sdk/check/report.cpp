#include "report.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <tuple>

namespace oam::check {
namespace {

using Json = nlohmann::ordered_json;

const char* kindText(ModuleKind kind) {
    return kind == ModuleKind::Plugin ? "board plug-in" : "component";
}

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(width, text.size()), ' ');
    return text + "  ";
}

std::string counted(std::size_t count, const std::string& thing) {
    return std::to_string(count) + ' ' + thing + (count == 1 ? "" : "s");
}

std::size_t longestName() {
    std::size_t longest = 0;
    for (const RuleRow& row : kRules) longest = std::max(longest, std::string(row.name).size());
    return longest;
}

constexpr std::size_t kSeverityWidth = 7;  // "warning"

std::string ruleLine(const RuleRow& row) {
    return padded(NameOf(row.severity), kSeverityWidth) + padded(row.name, longestName()) +
           row.sentence + '\n';
}

}  // namespace

Verdict::Verdict(std::string checked, ModuleKind of, std::vector<Finding> all)
    : file(std::move(checked)), kind(of) {
    for (auto& finding : all)
        if (std::find(findings.begin(), findings.end(), finding) == findings.end())
            findings.push_back(std::move(finding));
    std::stable_sort(findings.begin(), findings.end(), [](const auto& left, const auto& right) {
        return std::tuple(RowOf(left.rule).severity, left.rule) <
               std::tuple(RowOf(right.rule).severity, right.rule);
    });
}

std::size_t Verdict::Count(Severity severity) const {
    return static_cast<std::size_t>(std::count_if(
        findings.begin(), findings.end(),
        [&](const Finding& finding) { return RowOf(finding.rule).severity == severity; }));
}

std::string AsText(const Verdict& verdict) {
    std::string text = verdict.file + ", a " + kindText(verdict.kind) + "\n\n";
    const Finding* last = nullptr;
    for (const Finding& finding : verdict.findings) {
        if (last == nullptr || last->rule != finding.rule) text += ruleLine(RowOf(finding.rule));
        const std::string indent(kSeverityWidth + 2, ' ');
        text += indent + padded(finding.entry, longestName()) + finding.seen + '\n';
        last = &finding;
    }
    if (last != nullptr) text += '\n';
    return text + counted(verdict.Count(Severity::Error), "error") + ", " +
           counted(verdict.Count(Severity::Warning), "warning") + ", " +
           counted(verdict.Count(Severity::Note), "note") + '\n';
}

std::string AsJson(const Verdict& verdict) {
    Json findings = Json::array();
    for (const Finding& finding : verdict.findings) {
        const RuleRow& row = RowOf(finding.rule);
        findings.push_back({{"severity", NameOf(row.severity)},
                            {"rule", row.name},
                            {"entry", finding.entry.empty() ? Json() : Json(finding.entry)},
                            {"sentence", row.sentence},
                            {"seen", finding.seen}});
    }
    const Json object{{"schema", 1},
                      {"file", verdict.file},
                      {"kind", kindText(verdict.kind)},
                      {"passed", verdict.IsPassed()},
                      {"errors", verdict.Count(Severity::Error)},
                      {"warnings", verdict.Count(Severity::Warning)},
                      {"notes", verdict.Count(Severity::Note)},
                      {"findings", findings}};
    return object.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

std::string RulesAsText() {
    std::string text;
    for (const RuleRow& row : kRules) text += ruleLine(row);
    return text;
}

}  // namespace oam::check
