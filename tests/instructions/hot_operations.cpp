// The service's most frequent operations, each so many times, for valgrind's callgrind to count: it
// collects only between the marks and writes one file for each operation, named by its trigger.
//
// Before an operation, what it needs is prepared beside the count. An argument names the only one
// to count, for a profile of it.
#include <fcntl.h>
#include <sys/stat.h>
#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstring>
#include <functional>
#include <string>

#include "oam/entry.h"
#include "oam/shadow.h"
#include "operations.h"
#include "site.h"

using namespace oam::bench;

namespace {

bool good = true;
const char* only = nullptr;

void expect(bool succeeded) { good = good && succeeded; }

void count(const char* name, const std::function<void()>& prepare,
           const std::function<void()>& work) {
    if (only != nullptr && std::strcmp(name, only) != 0) return;
    for (int i = 0; i < kWarmUp; ++i) {
        prepare();
        work();
    }
    for (int i = 0; i < kTimes; ++i) {
        prepare();
        CALLGRIND_TOGGLE_COLLECT;
        work();
        CALLGRIND_TOGGLE_COLLECT;
    }
    CALLGRIND_DUMP_STATS_AT(name);
}

void readOnce(const std::string& name) {
    unsigned long handle;
    char value[512];
    expect(_oamOpenObject(7, name.c_str(), &handle, OAM_OPEN_READ) == OAM_SUCCESS);
    expect(_oamGetKeyword(handle, kSomeKeyword, value, sizeof value) == OAM_SUCCESS);
    expect(_oamCloseObject(handle) == OAM_SUCCESS);
}

void commitOnce(const std::string& name) {
    unsigned long handle;
    expect(_oamOpenObject(7, name.c_str(), &handle, OAM_OPEN_WRITE) == OAM_SUCCESS);
    expect(_oamSetKeyword(handle, kSomeKeyword, "12345678") == OAM_SUCCESS);
    expect(_oamCloseObject(handle) == OAM_SUCCESS);
}

void changeTime(const std::string& file) {
    static long tick = 0;
    const timespec times[2] = {{1000000000, 0}, {1000000000, ++tick}};
    expect(utimensat(AT_FDCWD, file.c_str(), times, 0) == 0);
    // Old enough to be known again.
    const timespec pause = {0, 25'000'000};
    (void)nanosleep(&pause, nullptr);
}

unsigned int receive(unsigned long, const oam_msg_tag*) { return 0; }

struct Alert {
    oam_msg_tag header{sizeof(Alert), OAMEVN_ALERT, OAM_WARNING, 24, 24 + 12, 0};
    char source[12] = "Board 00003";
    char text[32] = "Port 3 lost its signal";
};

void traceAlerts() {
    unsigned long handle;
    expect(_oamOpenObject(7, "Supervisor", &handle, OAM_OPEN_WRITE) == OAM_SUCCESS);
    expect(_oamSetKeyword(handle, "OammonLog", "Yes") == OAM_SUCCESS);
    expect(_oamCloseObject(handle) == OAM_SUCCESS);
    (void)_oamAlertRegisterCallback(receive);
    for (unsigned long client = 1; client < 10; ++client) {
        expect(_oamAlertRegister(client) == OAM_SUCCESS);
    }
}

}  // namespace

int main(int arguments, char** words) {
    if (arguments > 1) only = words[1];
    const Site& site = useSite(Shape{.isOnDisk = false});
    const std::string name = boardName(15);
    const std::string file = site.DataFile(15);
    const auto nothing = [] {};
    count(
        kReadChanged, [&] { changeTime(file); }, [&] { readOnce(name); });
    count(kReadUnchanged, nothing, [&] { readOnce(name); });

    unsigned long handle;
    char value[512];
    expect(_oamOpenObject(7, name.c_str(), &handle, OAM_OPEN_READ) == OAM_SUCCESS);
    count(kKeyword, nothing, [&] {
        expect(_oamGetKeyword(handle, kSomeKeyword, value, sizeof value) == OAM_SUCCESS);
    });
    expect(_oamCloseObject(handle) == OAM_SUCCESS);

    count(kCommit, nothing, [&] { commitOnce(name); });

    traceAlerts();
    const Alert alert;
    count(kAlert, nothing, [&] { expect(_oamAlertNotify(&alert.header) == OAM_SUCCESS); });

    count(kShadow, nothing, [&] {
        unsigned number = 0;
        expect(oamShadowBoardGetNumber(0, name.c_str(), &number) == OAM_SUCCESS && number == 15);
    });
    endSites();
    return good ? 0 : 1;
}
