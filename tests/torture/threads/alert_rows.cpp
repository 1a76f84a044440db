// Registrations, and alerts that clients raise.
#include "caller.h"
#include "oam/entry.h"
#include "plugins/echo/echo.h"
#include "support/alert_log.h"
#include "words.h"

namespace oam::torture {

namespace {

// Few, so that they are found taken and gone.
unsigned long anyClient(Random& random) { return 1 + random.Below(4); }

// Removed for a moment now and then; whoever comes next installs it again.
void registerCallback(Caller& caller) {
    const bool isRemoved = caller.Chance().OneIn(6);
    caller.Call("_oamAlertRegisterCallback", {OAM_SUCCESS}, [&] {
        return unsigned{_oamAlertRegisterCallback(isRemoved ? nullptr : &Storm::Receive)};
    });
}

void registerClient(Caller& caller) {
    caller.Call("_oamAlertRegister", {OAM_SUCCESS, OAMERR_ALREADY_EXISTS, OAMERR_NOT_FOUND},
                [&] { return unsigned{_oamAlertRegister(anyClient(caller.Chance()))}; });
}

void unregisterClient(Caller& caller) {
    caller.Call("_oamAlertUnregister", {OAM_SUCCESS, OAMERR_NOT_FOUND},
                [&] { return unsigned{_oamAlertUnregister(anyClient(caller.Chance()))}; });
}

// The last failure of a receiver; OAMERR_SERVER_NOT_RUNNING is that of a module which an import has
// ended meanwhile.
void notify(Caller& caller) {
    static constexpr unsigned kEvents[] = {
        OAMEVN_ALERT,           OAMEVN_TRACE,           OAMEVN_REPORT, OAMEVN_BOARD_DEAD,
        OAMEVN_FAN_RPM_WARNING, OAMEVN_STARTBOARD_DONE, 0x60000001};
    Random& random = caller.Chance();
    const unsigned event = random.OneOf(kEvents);
    const std::string record = test::MakeRecord(event, random.Below(4), AnyBoard(random),
                                                std::string(random.Below(400), 'x'));
    caller.Call("_oamAlertNotify",
                {OAM_SUCCESS, kReceiverUnwell, echo::kUnwell, OAMERR_SERVER_NOT_RUNNING},
                [&] { return unsigned{_oamAlertNotify(test::AsMessage(record))}; });
}

}  // namespace

std::vector<Row> AlertRows() {
    return {{"_oamAlertRegisterCallback", 2, &registerCallback},
            {"_oamAlertRegister", 4, &registerClient},
            {"_oamAlertUnregister", 4, &unregisterClient},
            {"_oamAlertNotify", 12, &notify}};
}

}  // namespace oam::torture
