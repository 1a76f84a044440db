#include "worker.h"

#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <thread>
#include <vector>

#include "client.h"
#include "configuration.h"
#include "oam/entry.h"
#include "oam/shadow.h"
#include "torture/crash/host.h"

namespace oam::torture {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSharedFiles[] = {"OAM_BoardIDsShadow", "OAM_BoardIDsShadow.journal",
                                        "OAM_BoardIDsShadowCKorSharedMemoryArray"};

std::vector<std::string> namesIn(const std::string& directory) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(directory))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

// Every object has its data file, and nothing else lies there.
void checkFiles(const std::string& root, Oracle& oracle) {
    char name[128];
    std::size_t objects = 0;
    while (_oamDbEnumObjects(static_cast<int>(objects), name, sizeof name) == OAM_SUCCESS)
        ++objects;
    const auto files = namesIn(root + "/oam/cfg");
    for (const std::string& file : files)
        if (!file.ends_with(".xmo")) oracle.Tell(file + " is left over beside the data files");
    if (files.size() != objects)
        oracle.Tell(std::to_string(files.size()) + " data files of " + std::to_string(objects) +
                    " objects");
    for (const std::string& file : namesIn(root + "/shm"))
        if (std::count(std::begin(kSharedFiles), std::end(kSharedFiles), file) == 0)
            oracle.Tell(file + " is left over in the shared memory");
}

// The shadow is what the board table says.
void checkShadow(Oracle& oracle) {
    for (int i = 0;; ++i) {
        char name[128] = "";
        char shadow[129] = "";
        const unsigned listed = _oamBoardEnum(i, name, sizeof name);
        const unsigned shown = oamShadowBoardEnum(0, i, shadow, sizeof shadow);
        if (listed != shown || std::strcmp(name, shadow) != 0)
            return oracle.Tell(std::string("the shadow shows \"") + shadow + "\" where \"" + name +
                               "\" is");
        if (listed != OAM_SUCCESS) return;
        char driver[129] = "";
        char shadowDriver[129] = "";
        char id[129] = "";
        char shadowId[129] = "";
        (void)_oamBoardGetDriverIDs(name, driver, sizeof driver, id, sizeof id);
        (void)oamShadowBoardGetDriverIDs(0, name, shadowDriver, sizeof shadowDriver, shadowId,
                                         sizeof shadowId);
        if (std::strcmp(driver, shadowDriver) != 0 || std::strcmp(id, shadowId) != 0)
            return oracle.Tell(std::string("the shadow shows another driver of ") + name);
    }
}

void report(const std::string& root, Oracle& oracle) {
    const std::string digest = StateDigest();
    if (digest.size() >= sizeof oracle.report) return oracle.Tell("the report is too long");
    std::memcpy(oracle.report, digest.c_str(), digest.size() + 1);
    checkFiles(root, oracle);
    checkShadow(oracle);
}

// One look at every board that the shadow has.
void sweep(Oracle& oracle) {
    char name[129];
    for (int i = 0;; ++i) {
        const unsigned listed = oamShadowBoardEnum(0, i, name, sizeof name);
        if (listed == OAMERR_NOT_FOUND) return;
        char driver[129] = "";
        char id[66] = "";
        const unsigned code =
            listed == OAM_SUCCESS
                ? oamShadowBoardGetDriverIDs(0, name, driver, sizeof driver, id, sizeof id)
                : listed;
        // It may have been deleted or renamed meanwhile.
        if (code == OAMERR_NOT_FOUND) continue;
        if (code != OAM_SUCCESS || std::strcmp(driver, id) != 0)
            oracle.Tell(std::string("another process sees ") + name + " as \"" + driver +
                        "\" and \"" + id + "\", code " + std::to_string(code));
    }
}

}  // namespace

int PrepareInstallation() {
    if (_oamInit() != OAM_SUCCESS) return 1;
    char name[128];
    for (unsigned i = 0; i < kSharedBoards; ++i)
        if (_oamCreateBoard(kSharedProduct, name, sizeof name) != OAM_SUCCESS) return 1;
    return _oamExit() == OAM_SUCCESS ? 0 : 1;
}

int RunWorker(Oracle& oracle, const std::string& root, unsigned long seed, int readyPipe) {
    if (const unsigned failed = _oamInit()) {
        oracle.Tell("the start after a kill answers " + std::to_string(failed));
        return 1;
    }
    report(root, oracle);
    if (write(readyPipe, "r", 1) != 1) return 1;
    std::vector<std::thread> threads;
    for (unsigned lane = 0; lane < Oracle::kLanes; ++lane) {
        threads.emplace_back([&oracle, &root, lane, seed] {
            Client(oracle, lane, seed * Oracle::kLanes + lane, root + '/').Run();
        });
    }
    for (std::thread& thread : threads) thread.join();
    return 1;
}

int RunWatcher(Oracle& oracle) {
    if (oamShadowInit() != OAM_SUCCESS) {
        oracle.Tell("another process cannot attach the shadow");
        return 1;
    }
    for (;;) {
        sweep(oracle);
        ++oracle.sweeps;
        const timespec rest{0, 500000};
        nanosleep(&rest, nullptr);
    }
}

}  // namespace oam::torture
