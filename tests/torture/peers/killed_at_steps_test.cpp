// A process of the board shadow dies between any two of its instructions, where shared memory is
// half written and the lock is half taken: those that live on see a change whole or not at all.
#include <algorithm>
#include <set>

#include "killed_peers.h"
#include "stepped_child.h"
#include "torture/crash/points.h"

namespace oam::torture {
namespace {

// Instructions of each scenario, spread evenly, and of those at which shared memory changes.
constexpr std::size_t kQuickSteps = 6;
constexpr std::size_t kFullSteps = 200;
constexpr std::size_t kQuickChanges = 10;
// The steps around a change of the lock, where the system is told who holds it.
constexpr std::size_t kAroundLock = 12;

class KilledAtSteps : public KilledPeers {
  protected:
    StepCount Count() {
        GetParam().leave();
        return CountSteps(
            GetParam().prepare, GetParam().work,
            {SharedPath(kLockFile), SharedPath(kSegmentFile), SharedPath(kJournalFile)});
    }
    void KillAfter(std::size_t steps) {
        GetParam().leave();
        KillAfterSteps(GetParam().prepare, GetParam().work, steps);
    }
};

void insert(std::set<std::size_t>* points, const std::vector<std::size_t>& from) {
    const std::size_t most = IsFull() ? from.size() : kQuickChanges;
    for (const std::size_t index : ChosenPoints(from.size(), most)) points->insert(from[index]);
}

// Every one at which shared memory has just changed, those around a change of the lock, and others
// spread evenly over all.
std::set<std::size_t> stepsToTry(const StepCount& count) {
    std::set<std::size_t> points;
    insert(&points, count.changes);
    std::vector<std::size_t> around;
    for (const std::size_t change : count.changesOfFirst)
        for (std::size_t step = change - std::min(change, kAroundLock);
             step <= change + kAroundLock; ++step)
            around.push_back(step);
    insert(&points, around);
    const std::size_t spread = std::min(count.all, IsFull() ? kFullSteps : kQuickSteps);
    for (std::size_t i = 0; i < spread; ++i) points.insert(i * count.all / spread);
    return points;
}

TEST_P(KilledAtSteps, HinderNobody) {
    const StepCount count = Count();
    for (const std::size_t steps : stepsToTry(count)) {
        SCOPED_TRACE("killed after " + std::to_string(steps) + " of " + std::to_string(count.all) +
                     " instructions");
        ASSERT_NO_FATAL_FAILURE(KillAfter(steps));
        ASSERT_NO_FATAL_FAILURE(LookAtSurvivors());
    }
    TellFigures(std::string("shadow peer, ") + GetParam().name,
                std::to_string(Deaths()) + " deaths in " + std::to_string(count.all) +
                    " instructions that change shared memory " +
                    std::to_string(count.changes.size()) + " times, 0 half, 0 stuck");
}

INSTANTIATE_TEST_SUITE_P(Each, KilledAtSteps, testing::ValuesIn(Scenarios()),
                         [](const auto& row) { return NameOf(row.param); });

}  // namespace
}  // namespace oam::torture
