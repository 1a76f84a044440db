#include "trial.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <thread>

#include "figures.h"
#include "oam/codes.h"

namespace oam::torture {

namespace {

class Stay {
  public:
    explicit Stay(std::atomic<int>* count) : count_(count) { ++*count_; }
    ~Stay() { --*count_; }

  private:
    std::atomic<int>* const count_;
};

void tryHere(const test::Installation& home, const Situation& situation, const MakeAct& makeAct,
             std::optional<unsigned> expected, const Watched& watched) {
    World world(home);
    if (situation.phase != Phase::kStarting) {
        watched.Doing("a start without hostility");
        world.Start();
    }
    if (situation.prepare != nullptr) situation.prepare(world);
    const World::Act act = makeAct(world, watched);
    std::atomic<int> calls{0};
    std::atomic<int> inside{0};
    world.Arm(situation.modules, situation.entry, [&](const test::RecordedCall& call) {
        const Stay stay(&inside);
        ++calls;
        return act(call);
    });
    watched.Doing("what leads to the entry");
    const unsigned result = situation.happen(world);
    // On a worker: what it is in the middle of must not meet the look around.
    while (inside != 0) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_GT(calls, 0) << "the entry was not called";
    if (expected) {
        EXPECT_EQ(NameOfCode(result), NameOfCode(*expected));
    } else {
        const bool isTold = situation.fate == Fate::kTold;
        EXPECT_TRUE(IsDocumented(result) || isTold) << NameOfCode(result);
    }
    watched.Doing("a look around afterwards");
    world.ExpectStanding();
}

}  // namespace

void TryIn(const Situation& situation, const std::string& what, const MakeAct& makeAct,
           std::optional<unsigned> expected) {
    TryCase(situation.name + (": " + what), &FurnishWorld,
            [&](const test::Installation& home, const Watched& watched) {
                tryHere(home, situation, makeAct, expected, watched);
            });
}

void TryCase(const std::string& name, const std::function<void(const test::Installation&)>& furnish,
             const std::function<void(const test::Installation&, const Watched&)>& body) {
    const char* wanted = std::getenv("OAM_TORTURE_CASE");
    if (wanted != nullptr && name.find(wanted) == std::string::npos) return;
    const test::Installation home;
    furnish(home);
    Count(RunWatched(name, [&](const Watched& watched) {
        SCOPED_TRACE(name);
        body(home, watched);
    }));
}

bool IsDocumented(unsigned code) {
    switch (code) {
        case OAM_SUCCESS:
#define OAM_CODE(name, value) case value:
#include "oam/codes.def"
#undef OAM_CODE
            return true;
        default:
            return false;
    }
}

std::string NameOfCode(unsigned code) {
    switch (code) {
        case OAM_SUCCESS:
            return "success";
#define OAM_CODE(name, value) \
    case value:               \
        return #name;
#include "oam/codes.def"
#undef OAM_CODE
        default:
            break;
    }
    char number[16];
    std::snprintf(number, sizeof number, "0x%x", code);
    return number;
}

std::vector<std::size_t> ShareOf(std::size_t count, std::size_t oneIn, std::size_t shift) {
    const std::size_t step = IsFull() ? 1 : oneIn;
    std::vector<std::size_t> share;
    for (std::size_t i = shift % step; i < count; i += step) share.push_back(i);
    return share;
}

}  // namespace oam::torture
