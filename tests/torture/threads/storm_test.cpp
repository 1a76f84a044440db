// Every exported function, called by several threads at once: documented codes, nothing hangs, and
// the service is sound behind it.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <thread>

#include "caller.h"
#include "crash/points.h"
#include "oam/entry.h"
#include "oam/shadow.h"
#include "soundness.h"
#include "support/resources.h"
#include "support/short_waits.h"
#include "support/watchdog.h"
#include "words.h"

namespace oam::torture {
namespace {

constexpr int kThreads = 6;
constexpr int kBoards = 6;

// These run alone, says their description.
const std::set<std::string> kLifecycle = {"_oamInit", "_oamExit", "_oamRestart", "_oamShutdown"};

unsigned numberFrom(const char* variable, unsigned usual) {
    const char* text = std::getenv(variable);
    return text != nullptr ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : usual;
}

struct Totals {
    unsigned long calls = 0;
    unsigned long fromReceivers = 0;
    std::map<std::string, unsigned long> successes;  // of each function
    unsigned long undocumented = 0;
};

void addEchoes(const SimSite& site) {
    site.home.AddModule("echo.bpi", kEcho);
    site.home.AddModule("echo.emc", kEar);
    site.home.MakeDirectory("out");
    site.home.Write("out/spoiled.oam", "<OAM><Obj><Na");
}

// But those of shadow views: one that is replaced is not released, says its description.
std::vector<std::string> openFiles() {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        const std::string file = std::filesystem::read_symlink(entry.path(), gone);
        if (file.find("OAM_BoardIDsShadow") == std::string::npos) files.push_back(file);
    }
    std::sort(files.begin(), files.end());
    return files;
}

// What the library makes at its first use is made before there are several threads: a race detector
// that does not see the atomics of the language takes it for a race.
void callOnce(Storm& storm) {
    Caller caller(storm, storm.Seed(), Caller::Where::kOnItsOwn);
    for (const Row& row : AllRows()) row.make(caller);
}

void runCallers(Storm& storm, unsigned calls) {
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < kThreads; ++i) {
        threads.emplace_back([&storm, calls, i] {
            Caller caller(storm, storm.Seed() * 1000 + i, Caller::Where::kOnItsOwn);
            for (unsigned call = 0; call < calls; ++call) caller.MakeOne();
        });
    }
    for (std::thread& thread : threads) thread.join();
}

// One storm over a fresh installation.
void storm(unsigned seed, unsigned calls, Totals* totals) {
    SCOPED_TRACE("OAM_TORTURE_SEED=" + std::to_string(seed));
    const SimSite site(kBoards, 1);
    addEchoes(site);
    const int threads = LookAtResources().threads;
    const auto files = openFiles();
    ASSERT_TRUE(site.StartWithBoards()) << site.home.Read("oam/log/startup.log");
    ASSERT_EQ(_oamConfigExport(site.home.Path("out/first.oam").c_str()), OAM_SUCCESS);
    {
        // Not on this stack: a race detector that does not see that nobody looks at it any more
        // takes what is put there next for a race.
        const auto storm = std::make_unique<Storm>(site, seed);
        callOnce(*storm);
        runCallers(*storm, calls);
        storm->Rest();
        ExpectSoundService(site, threads + SimSite::kOwnThreads);
        for (const auto& [function, tally] : storm->Tallies()) {
            totals->successes[function] += tally.successes;
        }
        totals->calls += storm->Calls();
        totals->fromReceivers += storm->FromReceivers();
        totals->undocumented += storm->Undocumented();
    }
    EXPECT_EQ(_oamShutdown(), OAM_SUCCESS);
    if (!AwaitThreads(threads)) Watchdog::GiveUp("the service's threads do not end");
    EXPECT_EQ(openFiles(), files);
}

class ThreadStorm : public testing::Test {
  protected:
    // A sanitizer starts a thread of its own with the first one.
    ThreadStorm() {
        UseShortWaits();
        std::thread([] {}).join();
    }
};

// Another chance with OAM_TORTURE_SEED; one storm of so many calls a thread with OAM_TORTURE_CALLS.
TEST_F(ThreadStorm, GetsDocumentedCodesAndLeavesASoundService) {
    const unsigned first = static_cast<unsigned>(Seed());
    const unsigned wanted = numberFrom("OAM_TORTURE_CALLS", 0);
    const unsigned calls = wanted != 0 ? wanted : IsFull() ? 50000 : 5000;
    const unsigned storms = wanted != 0 ? 1 : IsFull() ? 20 : 2;
    Totals totals;
    for (unsigned i = 0; i < storms && !HasFailure(); ++i) {
        const Watchdog watchdog;
        storm(first + i, calls, &totals);
    }
    for (const auto& [function, successes] : totals.successes) {
        EXPECT_TRUE(successes != 0 || wanted != 0) << function << " never succeeded";
    }
    TellFigures("threads", std::to_string(kThreads) + " threads, " + Grouped(totals.calls) +
                               " calls, " + Grouped(totals.fromReceivers) +
                               " of them by receivers, " +
                               Grouped(totals.successes["_oamConfigImport"]) + " imports, " +
                               Grouped(totals.undocumented) + " undocumented, 0 hung");
}

TEST_F(ThreadStorm, HasEveryExportedFunction) {
    std::ifstream map(OAM_EXPORTS_MAP);
    ASSERT_TRUE(map.is_open());
    std::set<std::string> exported;
    for (std::string word; map >> word;) {
        const bool isName = word.ends_with(';') && word != "*;" && word != "};";
        if (isName) exported.insert(word.substr(0, word.size() - 1));
    }
    ASSERT_EQ(exported.erase("g_bOamIsRunning"), 1u) << "the one variable";
    std::set<std::string> called = kLifecycle;
    for (const Row& row : AllRows()) called.insert(row.name);
    EXPECT_EQ(called, exported);
}

// The library is built for this rig with the check that a release leaves out.
TEST_F(ThreadStorm, IsHeldAgainstTheOrderOfTheLocks) {
    Dl_info library;
    ASSERT_NE(dladdr(reinterpret_cast<void*>(&_oamHello), &library), 0);
    std::ifstream file(library.dli_fname, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    EXPECT_NE(bytes.find("lock order: the manager lock is asked for"), std::string::npos)
        << library.dli_fname;
}

}  // namespace
}  // namespace oam::torture
