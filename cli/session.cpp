#include "session.h"

#include <unistd.h>

#include <ctime>
#include <set>

#include "board_facts.h"
#include "console.h"
#include "failure.h"
#include "foreign_text.h"
#include "oam/entry.h"
#include "object_kind.h"
#include "startup_log.h"
#include "zol/zol.h"

namespace oam {
namespace {

// What _oamInit answers when a plug-in or component cannot be loaded at all.
constexpr unsigned kCannotLoad = 0xf0027;

struct StartAdvice {
    unsigned code;
    const char* advice;
};

constexpr StartAdvice kStartAdvice[] = {
    {OAMERR_NOT_ENOUGH_MEMORY, "a path is longer than 127 characters; `oam check` names it"},
    {OAMERR_FILE_READ_ERROR, "a data file cannot be opened; `oam check` names it"},
    {OAMERR_FILE_WRITE_ERROR, "oam/cfg cannot be written: look at its owner and free space"},
    {OAMERR_ALREADY_EXISTS,
     "two boards with one number, or two plug-ins with one product; `oam check` finds the boards"},
    {kCannotLoad, "the library named above cannot be loaded; `ldd` tells what it lacks"},
    {ZOL_NO_SYMBOL, "the library named above is no complete plug-in or component; take it out"},
};

std::string startAdvice(unsigned code) {
    for (const StartAdvice& row : kStartAdvice)
        if (row.code == code) return row.advice;
    return "`oam check` looks for the reason; the whole start-up log is oam/log/startup.log";
}

const Installation& ready(const Installation& place) {
    place.RequireReady(R_OK | W_OK | X_OK);
    return place;
}

unsigned int receive(unsigned long client, const oam_msg_tag* message) {
    if (client == OAM_INTERNAL_CLIENT) AlertInbox::Instance().Put(*message);
    return OAM_SUCCESS;
}

}  // namespace

Session::Session(const Installation& place, const std::string& command, Console& console)
    : place_(place), console_(console), lock_(ready(place), command) {
    Listen([](const Alert&) { return false; });
    (void)_oamAlertRegisterCallback(receive);
    const time_t before = time(nullptr);
    const unsigned code = _oamInit();
    if (code) FailStart(code, before);
    ReportAlerts();
}

// The service asks every board to stop and tells when one is busy, also of boards that it would not
// have stopped; only what it tells of marked ones matters.
Session::~Session() {
    std::set<std::string, NameLess> marked;
    for (const std::string& board : BoardNames())
        if (IsStoppedAtExit(board)) marked.insert(board);
    ReportAlerts();
    Inbox().Listen([marked](const Alert& alert) {
        return alert.severity != OAM_INFORMATION &&
               (alert.code != OAMEVN_STOPBOARD_DONE || marked.contains(alert.source));
    });
    (void)_oamExit();
    ReportAlerts();
    (void)_oamAlertRegisterCallback(nullptr);
}

void Session::Listen(AlertInbox::Wanted wanted) {
    Inbox().Listen([wanted = std::move(wanted)](const Alert& alert) {
        return alert.severity != OAM_INFORMATION || wanted(alert);
    });
}

void Session::ReportAlerts() {
    while (const auto alert = Inbox().Take()) Report(*alert);
    if (const size_t lost = Inbox().TakeLost())
        console_.Note(std::to_string(lost) + " alerts came too fast and are lost");
}

void Session::Report(const Alert& alert) {
    std::string text = alert.text;
    text.erase(text.find_last_not_of(" \n") + 1);
    console_.Note(Shown(alert.source) + ": " + Shown(text));
}

void Session::FailStart(unsigned code, time_t before) {
    const auto lines = StartupErrors(place_.Path(kStartupLog), before);
    for (const std::string& line : lines) console_.Note("start-up log: " + Shown(line));
    if (lines.empty()) ReportAlerts();
    const Failure failure(code, "the service does not start", startAdvice(code));
    (void)_oamExit();
    (void)_oamAlertRegisterCallback(nullptr);
    throw failure;
}

}  // namespace oam
