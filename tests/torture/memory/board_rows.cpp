// Operations on boards. The workers that a request starts run behind it, with memory.
#include <gtest/gtest.h>

#include "held_threads.h"
#include "row.h"

namespace oam::torture {

namespace {

const std::vector<unsigned> kRequestFailures = {kNoMemory, OAMERR_CANT_CREATE_THREAD};

// A board that was left busy refuses the next operation.
void expectIdle(World& world) {
    world.alerts.Clear();
    {
        const HeldThreads hold;
        EXPECT_EQ(_oamTestBoard(kBoard, 0), OAM_SUCCESS);
    }
    RunHeldThreads();
    const auto heard = world.alerts.Heard(OAMEVN_TESTBOARD_DONE);
    EXPECT_TRUE(heard.size() == 1 && heard.front().severity == OAM_INFORMATION) << "it is busy";
}

template <oam_result (*Request)(const char*, unsigned) noexcept, bool kAll, unsigned kValue>
unsigned request(World&) {
    return Request(kAll ? nullptr : kBoard, kValue);
}

Row row(const char* name, const char* what, unsigned (*call)(World&), bool isVital = false) {
    return {.name = name,
            .what = what,
            .call = call,
            .failures = kRequestFailures,
            .undo = &expectIdle,
            .isVital = isVital};
}

// Kept: what could not be read or kept of a detection is not told, and a failure empties the
// products. The boards that are configured stay what they are.
bool keepsBoards(World&, const Outcome& outcome) {
    const auto boards = [](const std::string& digest) {
        return digest.substr(digest.find("\nboard "));
    };
    return boards(outcome.found) == boards(outcome.after);
}

}  // namespace

std::vector<Row> BoardRows() {
    return {
        row("_oamStartBoard", "one", &request<_oamStartBoard, false, 0>, true),
        row("_oamStartBoard", "one, synchronized",
            &request<_oamStartBoard, false, OAM_SYNCHRONIZED>),
        row("_oamStartBoard", "all", &request<_oamStartBoard, true, 0>),
        row("_oamStartBoard", "all, synchronized",
            &request<_oamStartBoard, true, OAM_SYNCHRONIZED>),
        row("_oamStopBoard", "one", &request<_oamStopBoard, false, 0>, true),
        row("_oamStopBoard", "one, synchronized", &request<_oamStopBoard, false, OAM_SYNCHRONIZED>),
        row("_oamStopBoard", "all", &request<_oamStopBoard, true, 0>),
        row("_oamStopBoard", "all, synchronized", &request<_oamStopBoard, true, OAM_SYNCHRONIZED>),
        row("_oamTestBoard", "one", &request<_oamTestBoard, false, 7>, true),
        row("_oamTestBoard", "all", &request<_oamTestBoard, true, 7>),
        {.name = "_oamSendBuffer",
         .what = "",
         .call = [](World&) { return unsigned{_oamSendBuffer(kBoard, "bytes", 5)}; },
         .undo = &expectIdle},
        {"_oamBoardGetStatus", "",
         [](World&) {
             int status = 0;
             return unsigned{_oamBoardGetStatus(kBoard, 1, &status)};
         }},
        {.name = "_oamDetectBoards",
         .what = "one more",
         .call = [](World&) { return unsigned{_oamDetectBoards()}; },
         .failures = {kNoMemory, OAMERR_FILE_READ_ERROR},
         .prepare = [](World& world) { world.ScriptDetected(world.Count() + 1); },
         .undo = [](World& world) { world.StartAnew(); },
         .accepts = &keepsBoards,
         .isVital = true},
    };
}

}  // namespace oam::torture
