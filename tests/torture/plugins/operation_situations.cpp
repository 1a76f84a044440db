// What a plug-in does with its boards: the operations, on workers and on the caller's thread, and
// the two entries that are passed on.
#include <gtest/gtest.h>

#include <chrono>

#include "oam/entry.h"
#include "situation.h"
#include "support/objects.h"

namespace oam::torture {

namespace {

using std::chrono::milliseconds;

// The severity with which the outcome of an operation on the board was told.
unsigned outcomeOf(World& world, unsigned event) {
    const auto isIt = [event](const test::Alert& alert) {
        return alert.code == event && alert.source == kBoard && alert.client == test::kServer;
    };
    unsigned severity = kNoOutcome;
    const auto isTold = [&](const std::vector<test::Alert>& all) {
        for (const test::Alert& alert : all) {
            if (!isIt(alert)) continue;
            severity = alert.severity;
            return true;
        }
        return false;
    };
    constexpr int kTries = 1500;  // of 20 milliseconds
    for (int i = 0; i < kTries; ++i) {
        if (world.alerts.WaitFor(isTold, milliseconds(20))) return severity;
        if (_oamClientInit(0) != OAM_SUCCESS) return kNoOutcome;
    }
    ADD_FAILURE() << "no outcome was told";
    return kNoOutcome;
}

template <oam_result (*Request)(const char*, unsigned) noexcept, unsigned kEvent, bool kAll,
          unsigned kValue>
unsigned operate(World& world) {
    world.alerts.Clear();
    EXPECT_EQ(Request(kAll ? nullptr : kBoard, kValue), OAM_SUCCESS);
    return outcomeOf(world, kEvent);
}

// For the alerts on the way, whatever the outcome.
template <unsigned (*Operate)(World&)>
unsigned quietly(World& world) {
    (void)Operate(world);
    return OAM_SUCCESS;
}

void synchronize(World&) {
    EXPECT_EQ(test::Change("Supervisor", "SynchronizeEnabled", "Yes"), OAM_SUCCESS);
}

unsigned sendBuffer(World&) { return _oamSendBuffer(kBoard, "bytes", 5); }

unsigned askStatus(World&) {
    int status = 0;
    return _oamBoardGetStatus(kBoard, 1, &status);
}

const std::vector<std::string> kHostile = {kPlugin};

}  // namespace

std::vector<Situation> OperationSituations() {
    return {
        {"AlertReceiveOfAStart", "AlertReceive", kHostile,
         &quietly<operate<_oamStartBoard, OAMEVN_STARTBOARD_DONE, false, 0>>, Fate::kIgnored},
        {"StartBoard", "StartBoard", kHostile,
         &operate<_oamStartBoard, OAMEVN_STARTBOARD_DONE, false, 0>, Fate::kTold},
        {"StartBoardSynchronized", "StartBoard", kHostile,
         &operate<_oamStartBoard, OAMEVN_STARTBOARD_DONE, false, 0>, Fate::kTold, Phase::kRunning,
         false, false, &synchronize},
        {"StartEveryBoard", "StartBoard", kHostile,
         &operate<_oamStartBoard, OAMEVN_STARTBOARD_DONE, true, OAM_SYNCHRONIZED>, Fate::kTold,
         Phase::kRunning, true},
        {"StopBoard", "StopBoard", kHostile,
         &operate<_oamStopBoard, OAMEVN_STOPBOARD_DONE, false, 0>, Fate::kTold},
        {"StopEveryBoard", "StopBoard", kHostile,
         &operate<_oamStopBoard, OAMEVN_STOPBOARD_DONE, true, OAM_SYNCHRONIZED>, Fate::kTold,
         Phase::kRunning, true},
        {"StopBoardAtStop", "StopBoard", kHostile, &StopService, Fate::kIgnored, Phase::kStopping,
         true},
        {"StopBoardInImport", "StopBoard", kHostile, &ImportAll, Fate::kIgnored, Phase::kImporting,
         true},
        {"TestBoard", "TestBoard", kHostile,
         &operate<_oamTestBoard, OAMEVN_TESTBOARD_DONE, false, 7>, Fate::kTold},
        {"SendBuffer", "SendBuffer", kHostile, &sendBuffer},
        {"GetBoardStatus", "GetBoardStatus", kHostile, &askStatus},
    };
}

}  // namespace oam::torture
