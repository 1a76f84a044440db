// The first call of a thread, while there is no memory at all: it is answered, and the process
// lives on. What the system sets up for a thread by itself must not be needed then.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <thread>
#include <vector>

#include "memory_fuse.h"
#include "oam/entry.h"
#include "oam/shadow.h"
#include "world.h"

namespace oam::torture {
namespace {

struct Call {
    const char* name;
    unsigned (*run)();
    std::vector<unsigned> answers;  // any of them
};

void PrintTo(const Call& call, std::ostream* out) { *out << call.name; }

class FreshThread : public ::testing::TestWithParam<Call> {};

int runInFreshThread(const Call& call) {
    unsigned code = 0;
    std::thread([&] {
        const MemoryFuse fuse(1, Failing::kFromThereOn);
        code = call.run();
    }).join();
    return std::count(call.answers.begin(), call.answers.end(), code) == 1 ? 0 : 1;
}

TEST_P(FreshThread, IsAnsweredWithoutMemory) {
    const World world(1);
    EXPECT_EXIT(_exit(runInFreshThread(GetParam())), ::testing::ExitedWithCode(0), "");
}

INSTANTIATE_TEST_SUITE_P(
    Each, FreshThread,
    ::testing::Values(Call{"Query",
                           [] {
                               char name[128];
                               return unsigned{_oamBoardEnum(0, name, sizeof name)};
                           },
                           {OAM_SUCCESS}},
                      Call{"Opening",
                           [] {
                               unsigned long handle;
                               return unsigned{_oamOpenObject(kOpener, kBoard, &handle, 0)};
                           },
                           {OAMERR_FILE_READ_ERROR, OAMERR_NOT_ENOUGH_MEMORY}},
                      Call{"Registration",
                           [] { return unsigned{_oamAlertRegister(kOpener)}; },
                           {OAMERR_NOT_ENOUGH_MEMORY}},
                      Call{"Shadow",
                           [] {
                               char name[128];
                               return unsigned{oamShadowBoardEnum(0, 0, name, sizeof name)};
                           },
                           {OAM_SUCCESS}}),
    [](const auto& call) { return std::string(call.param.name); });

}  // namespace
}  // namespace oam::torture
