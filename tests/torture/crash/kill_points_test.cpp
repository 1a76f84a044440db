// SIGKILL before every system call of everything that changes files: nothing is lost, nothing is
// mixed, and one restart suffices.
#include <gtest/gtest.h>

#include "operation.h"
#include "points.h"
#include "traced_child.h"

namespace oam::torture {
namespace {

constexpr int kObjects = 50;
constexpr std::size_t kQuickPoints = 30;

std::size_t countCalls(Host& host, const Operation& operation) {
    std::size_t calls = 0;
    host.Renew();
    RunTraced([&] { return Perform(host, operation); },
              [&](const SystemCall&) {
                  ++calls;
                  return Decision{};
              });
    return calls;
}

void killAt(Host& host, const Operation& operation, std::size_t point) {
    std::size_t call = 0;
    host.Renew();
    // Another thread's calls come and go: the last points may lie behind the end.
    RunTraced([&] { return Perform(host, operation); },
              [&](const SystemCall&) {
                  return call++ == point ? Decision{Decision::Kind::kKill, 0} : Decision{};
              });
}

class Killed : public testing::TestWithParam<Operation> {};

TEST_P(Killed, BeforeAnyCallLeavesTheOldStateOrTheNew) {
    const Operation& operation = GetParam();
    Host host(kObjects);
    const States states = StatesOf(host, operation);
    const std::size_t calls = countCalls(host, operation);
    const auto points = ChosenPoints(calls, kQuickPoints);
    std::size_t old = 0;
    for (const std::size_t point : points) {
        SCOPED_TRACE("killed before call " + std::to_string(point) + " of " +
                     std::to_string(calls));
        killAt(host, operation, point);
        const Look look = host.LookAt();
        ASSERT_TRUE(look.isStarted) << look.digest;
        ASSERT_TRUE(look.digest == states.before || look.digest == states.after)
            << "before:\n" << states.before << "after:\n" << states.after << "found:\n"
            << look.digest;
        ASSERT_EQ(look.strays, operation.leaves);
        if (look.digest == states.before) ++old;
    }
    TellFigures(std::string("kill points, ") + operation.name,
                std::to_string(points.size()) + " of " + std::to_string(calls) + " calls, " +
                    std::to_string(old) + " old, " + std::to_string(points.size() - old) +
                    " new, 0 lost");
}

INSTANTIATE_TEST_SUITE_P(Each, Killed, testing::ValuesIn(Operations()), [](const auto& row) {
    return NameOf(row.param);
});

}  // namespace
}  // namespace oam::torture
