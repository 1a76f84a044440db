// An error at every system call of everything that changes files, and every write cut short: a code
// that is documented, and no object lost, in the living service or at the next start.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstring>
#include <filesystem>

#include "operation.h"
#include "points.h"
#include "system_errors.h"
#include "traced_child.h"

namespace oam::torture {
namespace {

constexpr int kObjects = 20;
constexpr std::size_t kQuickPoints = 60;

struct Point {
    std::size_t call;  // counted over all calls
    long number;
    Decision failure;
};

std::vector<Point> pointsOf(Host& host, const Operation& operation) {
    std::vector<Point> points;
    std::size_t call = 0;
    host.Renew();
    RunTraced([&] { return Perform(host, operation); },
              [&](const SystemCall& made) {
                  for (const Decision& failure : FailuresOf(made.number))
                      points.push_back({call, made.number, failure});
                  ++call;
                  return Decision{};
              });
    return points;
}

std::string textOf(const Point& point) {
    const bool isShort = point.failure.kind == Decision::Kind::kShorten;
    return std::string(CallName(point.number)) + " (call " + std::to_string(point.call) +
           "): " + (isShort ? "half written" : strerrorname_np(point.failure.error));
}

// The state of a service that has no data files: objects stand in order, the plug-in's last, which
// is made anew at each start.
std::string pluginsAlone(const std::string& state) {
    const std::size_t begin = state.rfind("\nx.bpi\n");
    return begin == std::string::npos ? "" : state.substr(begin + 1);
}

class Disturbed : public testing::TestWithParam<Operation> {
  protected:
    void Disturb(Host& host, const Point& point) {
        std::size_t call = 0;
        bool isDone = false;
        host.Renew();
        // With threads the calls of another run stand in another order: the next one of the kind.
        const int status = RunTraced([&] { return Perform(host, GetParam()); },
                                     [&](const SystemCall& made) {
                                         const bool isBehind = call++ >= point.call;
                                         if (isDone || !isBehind || made.number != point.number)
                                             return Decision{};
                                         isDone = true;
                                         return point.failure;
                                     });
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
    }

    void CheckCode(const Outcome& outcome, const States& states) {
        if (outcome.code == OAM_SUCCESS) {
            if (!GetParam().mayRunEmpty || outcome.digest != pluginsAlone(states.after)) {
                EXPECT_EQ(outcome.digest, states.after);
            }
            ++succeeded_;
        } else {
            EXPECT_EQ(GetParam().failures.count(outcome.code), 1u)
                << "an undocumented code: 0x" << std::hex << outcome.code;
        }
    }

    // Whole at the next start, or (after an import that was refused) kept aside.
    void CheckRestart(const Host& host, const Outcome& outcome, const States& states) {
        const Look look = host.LookAt();
        ASSERT_TRUE(look.isStarted) << look.digest;
        if (outcome.code == OAM_SUCCESS) {
            const bool isBack = GetParam().mayComeBack && look.digest == states.before;
            if (!isBack) {
                EXPECT_EQ(look.digest, states.after);
            }
            EXPECT_EQ(look.strays, GetParam().leaves);
            return;
        }
        const bool isWhole = look.digest == states.before || look.digest == states.after;
        const bool isAside = std::filesystem::exists(host.Path("oam/cfg/import-refused"));
        EXPECT_TRUE(isWhole || isAside) << "found:\n" << look.digest;
    }

    std::size_t succeeded_ = 0;
};

TEST_P(Disturbed, AtAnyCallAnswersADocumentedCodeAndLosesNothing) {
    Host host(kObjects);
    const States states = StatesOf(host, GetParam());
    const auto all = pointsOf(host, GetParam());
    const auto chosen = ChosenPoints(all.size(), kQuickPoints);
    for (const std::size_t index : chosen) {
        SCOPED_TRACE(textOf(all[index]));
        ASSERT_NO_FATAL_FAILURE(Disturb(host, all[index]));
        const Outcome outcome = ToldOutcome(host);
        CheckCode(outcome, states);
        ASSERT_NO_FATAL_FAILURE(CheckRestart(host, outcome, states));
    }
    TellFigures(std::string("I/O errors, ") + GetParam().name,
                std::to_string(chosen.size()) + " of " + std::to_string(all.size()) + " points, " +
                    std::to_string(succeeded_) + " overcome, " +
                    std::to_string(chosen.size() - succeeded_) + " refused with a code");
}

INSTANTIATE_TEST_SUITE_P(Each, Disturbed, testing::ValuesIn(Operations()),
                         [](const auto& row) { return NameOf(row.param); });

}  // namespace
}  // namespace oam::torture
