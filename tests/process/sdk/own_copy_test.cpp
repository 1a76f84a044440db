// Two modules of one source that has functions with a host's names: this program's "Init", and the
// service's DebugOutput. Built with the kit, the module reaches its own; built otherwise, the
// host's.
#include <dlfcn.h>
#include <gtest/gtest.h>

#define OAM_TYPES_ONLY
#include "judgement.h"
#include "oam/plugin.h"
#include "package.h"

using oam::test::BadPlugin;
using oam::test::Judge;

namespace {

int hostInits = 0;

}  // namespace

// Exported, see CMakeLists.txt.
extern "C" __attribute__((visibility("default"))) unsigned int Init(const char*);
extern "C" unsigned int Init(const char*) {
    ++hostInits;
    return OAM_SUCCESS;
}

namespace {

// How many of its two functions the module reached, when it called them.
unsigned int reached(const char* module) {
    void* library = dlopen(BadPlugin(module).c_str(), RTLD_LAZY | RTLD_LOCAL);
    EXPECT_NE(library, nullptr) << dlerror();
    if (library == nullptr) return 0;
    auto* ask = reinterpret_cast<oam_plugin_test_board*>(dlsym(library, "TestBoard"));
    return ask("", 1000);
}

TEST(OwnCopy, IsReachedByAModuleThatIsBuiltWithTheKit) {
    hostInits = 0;
    EXPECT_EQ(reached("own_copy"), 2u);
    EXPECT_EQ(hostInits, 0);
    EXPECT_EQ(Judge(BadPlugin("own_copy")).Broken(), std::set<std::string>());
}

TEST(OwnCopy, IsMissedByAModuleThatIsBuiltWithoutTheKit) {
    hostInits = 0;
    EXPECT_EQ(reached("own_copy_loose"), 0u);
    EXPECT_EQ(hostInits, 1);
}

TEST(OwnCopy, MissedIsFound) {
    const auto judgement = Judge(BadPlugin("own_copy_loose"));
    EXPECT_EQ(judgement.Broken(), (std::set<std::string>{"exports", "own-copies"}))
        << judgement.report.dump(2);
    EXPECT_FALSE(judgement.Seen("own-copies", "Init").empty());
}

}  // namespace
