// A forked child that dies before any one of its instructions.
//
// A death between two system calls leaves memory that others share half written. So the child goes
// through its work in single steps, which the processor reports to the child itself: no tracer has
// to be woken for each. x86-64 Linux.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace oam::torture {

struct StepCount {
    std::size_t all = 0;
    // After how many of them the watched files had changed, and those of it in the first file.
    std::vector<std::size_t> changes;
    std::vector<std::size_t> changesOfFirst;
};

// Calls `prepare`, then `work` in steps, in a child that ends behind the last one. Watches files of
// which both processes may have mappings; those that are not there yet are left out.
StepCount CountSteps(const std::function<void()>& prepare, const std::function<void()>& work,
                     const std::vector<std::string>& watched);

// The same, but the child is killed after that many instructions, or behind the last one.
void KillAfterSteps(const std::function<void()>& prepare, const std::function<void()>& work,
                    std::size_t steps);

}  // namespace oam::torture
