#include "running_service.h"

#include "fuzz_target.h"
#include "oam/entry.h"

namespace oam::fuzz {

namespace fs = std::filesystem;

RunningService& RunningService::Get() {
    static RunningService service;
    return service;
}

RunningService::RunningService() {
    for (const fs::path module : {SIM_PLUGIN_FILE, WATCH_COMPONENT_FILE})
        fs::create_symlink(module, home_.Path("lib") / module.filename());
    Require(_oamInit() == OAM_SUCCESS, "the service starts");
    Require(_oamDetectBoards() == OAM_SUCCESS, "the chassis is looked at");
    Require(_oamAddDetectedBoard(nullptr) == OAM_SUCCESS, "the detected boards are configured");
}

RunningService::~RunningService() {
    (void)_oamAlertRegisterCallback(nullptr);
    (void)_oamExit();
}

}  // namespace oam::fuzz
