#include "busy_service.h"

#include <atomic>
#include <random>
#include <string>
#include <thread>

#include "oam/entry.h"
#include "oam/shadow.h"
#include "support/alert_log.h"
#include "support/objects.h"
#include "support/sim_site.h"

namespace oam::torture {

namespace {

constexpr unsigned kThreads = 3;
constexpr int kBoards = 4;

std::atomic<bool> isResting{false};
std::atomic<unsigned> resting{0};
std::atomic<void (*)()> atOutcome{nullptr};

unsigned receive(unsigned long, const oam_msg_tag* message) {
    unsigned number = 0;
    (void)_oamBoardGetNumber(oamMessageSource(message), &number);
    if (message->code != OAMEVN_STARTBOARD_DONE) return 0;
    if (void (*function)() = atOutcome.exchange(nullptr)) function();
    return 0;
}

// What the modules keep for the whole process is used too: rules, texts, tables.
void readModules() {
    for (const char* module : {"watch.emc", "sim.bpi"}) {
        unsigned long handle = 0;
        if (_oamOpenObject(test::kClient, module, &handle, OAM_OPEN_WRITE) != OAM_SUCCESS) continue;
        char text[128];
        (void)_oamGetQualifier(handle, "", "Keywords.Count", text, sizeof text);
        (void)_oamGetKeyword(handle, "Boards.Count", text, sizeof text);
        (void)_oamSetKeyword(handle, "Threshold.Failures", "2");
        (void)_oamSetKeyword(handle, "Timing.StartMs", "1");
        (void)_oamCloseObject(handle);
    }
    (void)_oamGetText(0x50000001);
}

void makeRequest(std::mt19937& random) {
    const std::string board = SimSite::BoardName(static_cast<int>(random() % kBoards));
    const char* name = random() % 4 == 0 ? nullptr : board.c_str();
    char text[128];
    switch (random() % 8) {
        case 0:
            (void)_oamStartBoard(name, 0);
            break;
        case 1:
            (void)_oamStopBoard(name, 0);
            break;
        case 2:
            (void)_oamTestBoard(name, 0);
            break;
        case 3:
            (void)test::Change(board, "Driver.BoardId", std::to_string(random() % 100));
            break;
        case 4:
            (void)test::Raise(OAMEVN_ALERT, OAM_WARNING, board, "text");
            break;
        case 5:
            (void)_oamDetectBoards();
            break;
        case 6:
            (void)oamShadowBoardEnum(0, 0, text, sizeof text);
            break;
        default:
            readModules();
    }
}

void makeRequests(unsigned seed) {
    std::mt19937 random(seed);
    while (!isResting) makeRequest(random);
    for (++resting;;) std::this_thread::sleep_for(std::chrono::hours(1));
}

}  // namespace

bool StartBusyService(unsigned seed) {
    (void)_oamAlertRegisterCallback(&receive);
    if (_oamInit() != OAM_SUCCESS) return false;
    (void)_oamAlertRegister(1);
    (void)_oamStartBoard(nullptr, 0);
    for (unsigned i = 0; i < kThreads; ++i) std::thread(&makeRequests, seed * 10 + i).detach();
    return true;
}

void StopRequests() {
    isResting = true;
    while (resting < kThreads) std::this_thread::yield();
}

void AtNextOutcome(void (*function)()) { atOutcome = function; }

}  // namespace oam::torture
