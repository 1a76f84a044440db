// Registration of clients, and alerts that clients raise.
#include "row.h"

namespace oam::torture {

namespace {

unsigned raise(const std::string& record) { return _oamAlertNotify(test::AsMessage(record)); }

const std::string& event() {
    static const std::string record = test::MakeRecord(OAMEVN_ALERT, OAM_WARNING, kBoard, "text");
    return record;
}

const std::string& report() {
    static const std::string record = test::MakeRecord(OAMEVN_REPORT, OAM_WARNING, kBoard, "text");
    return record;
}

}  // namespace

std::vector<Row> AlertRows() {
    return {
        {.name = "_oamAlertRegisterCallback",
         .what = "",
         .call = [](World&) { return unsigned{_oamAlertRegisterCallback(nullptr)}; },
         .undo = [](World& world) { world.alerts.Install(); }},
        {.name = "_oamAlertRegister",
         .what = "",
         .call = [](World& world) { return unsigned{_oamAlertRegister(world.LastClient() + 1)}; },
         .failures = {kNoMemory},
         .undo = [](World& world) { (void)_oamAlertUnregister(world.LastClient() + 1); },
         .isVital = true},
        {.name = "_oamAlertUnregister",
         .what = "",
         .call = [](World& world) { return unsigned{_oamAlertUnregister(world.LastClient())}; },
         .failures = {kNoMemory},
         .undo = [](World& world) { (void)_oamAlertRegister(world.LastClient()); },
         .isVital = true},
        {.name = "_oamAlertNotify",
         .what = "event",
         .call = [](World&) { return raise(event()); },
         .failures = {kNoMemory},
         .isVital = true},
        {.name = "_oamAlertNotify",
         .what = "report",
         .call = [](World&) { return raise(report()); },
         .failures = {kNoMemory, OAMERR_FILE_WRITE_ERROR},
         .undo = [](World& world) { world.home.Remove("oam/log/oam.rpt"); }},
    };
}

}  // namespace oam::torture
