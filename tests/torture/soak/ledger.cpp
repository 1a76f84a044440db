#include "ledger.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "client.h"

namespace oam::torture {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kStorySteps = 8;

std::string content(const fs::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace

void SoakFigures::Add(const SoakFigures& other) {
    kills += other.kills;
    acknowledged += other.acknowledged;
    underWay += other.underWay;
    imports += other.imports;
    longestRestart = std::max(longestRestart, other.longestRestart);
}

std::string SoakFigures::Text() const {
    return std::to_string(kills) + " kills, " + std::to_string(acknowledged) +
           " acknowledged operations: 0 lost, " + std::to_string(underWay) + " were under way, " +
           std::to_string(imports) + " imports, longest restart " + std::to_string(longestRestart) +
           " ms";
}

std::string Ledger::Settle() {
    CheckReport();
    const Steps steps = StepsOf(oracle_);
    ReadExports(steps);
    JudgeSteps(steps);
    DropOldSaves();
    TellStory();
    return fault_;
}

void Ledger::CheckReport() {
    const Found found = FromDigest(oracle_.report);
    fault_ += found.fault;
    const bool isFirst = possible_.empty();
    if (!isFirst && std::count(possible_.begin(), possible_.end(), found.configuration) == 0) {
        fault_ += "found\n" + TextOf(found.configuration) + "expected one of\n";
        for (const Configuration& one : possible_) fault_ += TextOf(one);
    }
    for (const auto& [what, rest] : found.rest) {
        const auto& known = rest_.try_emplace(what, rest).first->second;
        if (known != rest) fault_ += what + " was\n" + known + "and is\n" + rest;
    }
    possible_ = {found.configuration};
}

void Ledger::ReadExports(const Steps& steps) {
    const fs::path over = fs::path(directory_) / kExportFile;
    if (fs::exists(over)) fault_ += FromExport(content(over)).fault;
    for (const Step* step : steps) {
        const std::string file = step->object;
        if (step->verb != Verb::kExport || step->code != 0 || file == kExportFile) continue;
        const Found found = FromExport(content(fs::path(directory_) / file));
        fault_ += found.fault;
        saves_[file] = found.configuration;
    }
}

void Ledger::JudgeSteps(const Steps& steps) {
    Verdict verdict = Judge(possible_, steps, saves_);
    possible_ = std::move(verdict.possible);
    fault_ += verdict.fault;
    figures.acknowledged += verdict.acknowledged;
    figures.underWay += verdict.underWay;
    figures.imports +=
        static_cast<std::size_t>(std::count_if(steps.begin(), steps.end(), [](const Step* step) {
            return step->verb == Verb::kImport && step->place != 0;
        }));
}

void Ledger::DropOldSaves() {
    Saves kept;
    for (const auto& stamp : oracle_.saves) {
        const auto found = saves_.find(kSaveFile + std::to_string(stamp));
        if (found != saves_.end()) kept.insert(*found);
    }
    saves_ = std::move(kept);
    for (const auto& entry : fs::directory_iterator(directory_)) {
        const std::string file = entry.path().filename();
        if (file.starts_with(kSaveFile) && saves_.count(file) == 0) fs::remove(entry);
    }
}

void Ledger::TellStory() {
    story_ = "the last steps of each client:\n";
    for (const Lane& lane : oracle_.lanes) {
        const std::size_t count = lane.Count();
        for (std::size_t i = count - std::min(count, kStorySteps); i < count; ++i)
            story_ += TextOf(lane.At(i)) + '\n';
        story_ += '\n';
    }
}

}  // namespace oam::torture
