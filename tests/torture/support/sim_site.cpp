#include "sim_site.h"

#include <sys/vfs.h>

#include <filesystem>

#include "oam/entry.h"
#include "support/objects.h"

namespace oam::torture {

namespace fs = std::filesystem;

namespace {

constexpr const char* kMemory = "/dev/shm";
constexpr long kTmpfs = 0x01021994;

constexpr const char* kTimes = "start-time: 1ms\nstop-time: 0\ntest-time: 1ms\n";
constexpr const char* kUnreliable =
    "start: ok, fail, hang 2ms, ok, code 0x50001234, ok\n"
    "stop: ok, fail, ok\n"
    "test: fail, ok\n"
    "temperature: 350, 720 after 3ms, 900 after 6ms, 300 after 9ms\n"
    "fan: 3000, 900 after 4ms, 3000 after 8ms\n";

std::string chassis(int boards, int unreliable) {
    std::string text;
    for (int i = 0; i < boards; ++i) {
        const std::string slot = std::to_string(1 + i);
        text += "board: " + SimSite::BoardName(i) + '\n';
        text += std::string("product: ") + (i % 2 == 0 ? "SIM-E1" : "SIM-IP") + '\n';
        text += "bus: 1\nslot: " + slot + "\nserial: S" + slot + '\n';
        text += "mac: 02:00:53:00:00:" + std::to_string(10 + i) + '\n';
        text += kTimes;
        if (i < unreliable) text += kUnreliable;
        text += '\n';
    }
    return text;
}

}  // namespace

bool SimSite::IsInMemory() {
    struct statfs status;
    return statfs(kMemory, &status) == 0 && status.f_type == kTmpfs;
}

SimSite::SimSite(int boards, int unreliable)
    : home(test::Layout::kComplete, IsInMemory() ? kMemory : "/tmp"), boards_(boards) {
    fs::copy_file(SIM_PLUGIN, home.Path("lib/sim.bpi"));
    fs::copy_file(WATCH_COMPONENT, home.Path("lib/watch.emc"));
    home.Write("oam/cfg/sim.chassis", chassis(boards, unreliable));
}

bool SimSite::StartWithBoards() const {
    return _oamInit() == OAM_SUCCESS && _oamDetectBoards() == OAM_SUCCESS &&
           _oamAddDetectedBoard(nullptr) == OAM_SUCCESS;
}

bool ChangeSettings(const char* object,
                    std::initializer_list<std::pair<const char*, const char*>> settings) {
    unsigned long handle = 0;
    if (_oamOpenObject(test::kClient, object, &handle, OAM_OPEN_WRITE) != OAM_SUCCESS) return false;
    bool isSet = true;
    for (const auto& [keyword, value] : settings) {
        isSet = _oamSetKeyword(handle, keyword, value) == OAM_SUCCESS && isSet;
    }
    return _oamCloseObject(handle) == OAM_SUCCESS && isSet;
}

}  // namespace oam::torture
