// The stages of the check, each run in a child of its own with an installation of its own.
//
// A crash, a hang or an exit ends the child and is a finding; the stage then goes on behind the
// step in which it happened, in a new child.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "bench.h"
#include "finding.h"

namespace oam::check {

enum class Meaning { Further, Condition };

struct Stage {
    // When a condition is not met, nothing further can be judged.
    Meaning meaning;
    bool forComponents;
    void (*run)(Bench& bench);
};

// Whether the module can be loaded at all; without the service.
extern const Stage kLoadingStage;
// In the order in which they are run.
std::span<const Stage> RunningStages();

// One module under judgement, through all stages.
class Judge {
  public:
    Judge(std::filesystem::path module, ModuleKind kind, std::chrono::milliseconds limit)
        : module_(std::move(module)), kind_(kind), limit_(limit) {}

    // False when nothing further can be judged.
    bool Run(const Stage& stage);

    ModuleKind Kind() const { return kind_; }
    std::vector<Finding> TakeFindings() { return std::move(findings_); }

  private:
    // Whether a stage goes on behind a death: one that is known well enough is not worth the time.
    bool IsWorthMore(const Finding& death);

    std::filesystem::path module_;
    ModuleKind kind_;
    std::chrono::milliseconds limit_;
    std::vector<Finding> findings_;
    std::map<std::pair<Rule, std::string>, int> deaths_;
};

}  // namespace oam::check
