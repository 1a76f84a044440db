// What the check found. In the judged child findings go through a pipe to the parent, at once: the
// child may not live to tell them later.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "module_kind.h"
#include "rules.h"

namespace oam::check {

struct Finding {
    Rule rule;
    std::string entry;  // or "" for the file as a whole
    std::string seen;

    bool operator==(const Finding&) const = default;
};

// The child's end. Any thread may tell; each finding is told once, and at most a few of one rule
// and entry.
class FindingSender {
  public:
    static void Open(int descriptor);
    static bool HasToldAny();
};

void Tell(Rule rule, std::string_view entry, std::string_view seen);
void Tell(Rule rule, Entry entry, std::string_view seen);

// The parent's end: what came through the pipe, line by line.
class FindingReceiver {
  public:
    void Take(std::string_view bytes);
    const std::vector<Finding>& Findings() const { return findings_; }

  private:
    std::string rest_;
    std::vector<Finding> findings_;
};

}  // namespace oam::check
