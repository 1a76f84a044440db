// Every entry calls every exported function from inside itself, each time that it is called: the
// service neither hangs nor crashes, and answers a documented code.
//
// The entry does not look whether it is already inside: what comes back to it calls again. So each
// case is also the question how the service ends what a module would go on with for ever.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <set>

#include "figures.h"
#include "inside_call.h"
#include "refusals.h"
#include "support/exported_functions.h"
#include "trial.h"

namespace oam::torture {
namespace {

constexpr std::size_t kQuickOneIn = 5;

// More than the service lets one call lead to. Where each call makes the service call again later,
// on a thread of its own, there is no end but the module's.
constexpr int kMostCalls = 20000;
constexpr int kMostEchoes = 64;

class Caller {
  public:
    Caller(World& world, const Watched& watched, const Situation& situation, const InsideCall& call)
        : world_(world), watched_(watched), situation_(situation), call_(call) {}

    void CallFrom(const test::RecordedCall& entry) {
        const bool isEchoed = call_.echo == Echo::kLater;
        const int number = calls_++;
        if (number >= (isEchoed ? kMostEchoes : kMostCalls)) {
            EXPECT_TRUE(isEchoed || number > kMostCalls) << "one call leads to others without end";
            return;
        }
        if (number == 0) watched_.Doing(NameOf(call_) + " inside " + situation_.entry);
        Inside inside{world_, entry.handle};
        const unsigned code = call_.call(inside);
        const auto& codes = call_.codes;
        const bool isDocumented =
            code == OAM_SUCCESS || std::find(codes.begin(), codes.end(), code) != codes.end();
        EXPECT_TRUE(isDocumented) << NameOf(call_) << " answers " << NameOfCode(code);
        if (number != 0) return;
        if (const Refusal* refusal = RefusalOf(call_, situation_)) {
            EXPECT_EQ(NameOfCode(code), NameOfCode(refusal->code)) << refusal->reason;
        }
    }

  private:
    World& world_;
    const Watched& watched_;
    const Situation& situation_;
    const InsideCall& call_;
    std::atomic<int> calls_{0};
};

class CallingEntry : public testing::TestWithParam<Situation> {};

TEST_P(CallingEntry, IsAnsweredWhateverItCalls) {
    const Situation& situation = GetParam();
    const std::vector<InsideCall> calls = AllInsideCalls();
    CountPoints(calls.size());
    for (const std::size_t i : ShareOf(calls.size(), kQuickOneIn, IndexOf(situation))) {
        const InsideCall& call = calls[i];
        TryIn(
            situation, "calls " + NameOf(call),
            [&](World& world, const Watched& watched) -> World::Act {
                auto caller = std::make_shared<Caller>(world, watched, situation, call);
                return [caller](const test::RecordedCall& entry) -> std::optional<unsigned> {
                    caller->CallFrom(entry);
                    return std::nullopt;
                };
            },
            std::nullopt);
    }
}

INSTANTIATE_TEST_SUITE_P(Of, CallingEntry, testing::ValuesIn(AllSituations()),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(InsideCalls, HaveEveryExportedFunction) {
    std::set<std::string> called;
    for (const InsideCall& call : AllInsideCalls()) called.insert(call.function);
    EXPECT_EQ(called, test::ExportedFunctions());
}

TEST(Situations, HaveEveryEntryOfBothKinds) {
    std::set<std::string> plugin;
    for (const Situation& situation : PluginSituations()) plugin.insert(situation.entry);
    EXPECT_EQ(plugin.size(), 17u);
    std::set<std::string> component;
    for (const Situation& situation : ComponentSituations()) component.insert(situation.entry);
    EXPECT_EQ(component.size(), 9u);
}

}  // namespace
}  // namespace oam::torture
