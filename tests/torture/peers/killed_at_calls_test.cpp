// A process of the board shadow dies before any of its system calls: the next one goes on, and so
// does one that was there all the while. Each sees a change whole or not at all, no lock stays
// held, and nothing is left lying about.
#include "killed_peers.h"
#include "torture/crash/points.h"
#include "torture/crash/traced_child.h"

namespace oam::torture {
namespace {

class KilledAtCalls : public KilledPeers {
  protected:
    std::size_t CountCalls() {
        std::size_t calls = 0;
        Run([&](const SystemCall&) {
            ++calls;
            return Decision{};
        });
        return calls;
    }
    void KillBefore(std::size_t point) {
        std::size_t call = 0;
        Run([&](const SystemCall&) {
            return call++ == point ? Decision{Decision::Kind::kKill, 0} : Decision{};
        });
    }

  private:
    static void Run(const Decide& decide) {
        GetParam().leave();
        const auto body = [] {
            GetParam().prepare();
            TraceFromHere();
            GetParam().work();
            TraceUntilHere();
            return 0;
        };
        RunTraced(body, decide);
    }
};

TEST_P(KilledAtCalls, HinderNobody) {
    const std::size_t calls = CountCalls();
    for (std::size_t point = 0; point < calls; ++point) {
        SCOPED_TRACE("killed before call " + std::to_string(point) + " of " +
                     std::to_string(calls));
        ASSERT_NO_FATAL_FAILURE(KillBefore(point));
        ASSERT_NO_FATAL_FAILURE(LookAtSurvivors());
    }
    TellFigures(std::string("shadow peer, ") + GetParam().name,
                std::to_string(Deaths()) + " deaths before " + std::to_string(calls) +
                    " calls, 0 half, 0 stuck");
}

INSTANTIATE_TEST_SUITE_P(Each, KilledAtCalls, testing::ValuesIn(Scenarios()),
                         [](const auto& row) { return NameOf(row.param); });

}  // namespace
}  // namespace oam::torture
