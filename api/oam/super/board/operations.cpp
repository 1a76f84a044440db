#include "operations.h"

#include "base/flags.h"

namespace {

oam_result runStart(const PluginEntries& entries, const char* board, unsigned) noexcept {
    return entries.StartBoard(board);
}

oam_result runStop(const PluginEntries& entries, const char* board, unsigned) noexcept {
    return entries.StopBoard(board);
}

oam_result runTest(const PluginEntries& entries, const char* board, unsigned value) noexcept {
    return entries.TestBoard(board, value);
}

}  // namespace

bool isAutoStarted(const CBoardID& board) noexcept {
    return g_bAutoStartEnabled && board.values.autoStart;
}

bool isAutoStopped(const CBoardID& board) noexcept {
    return g_bAutoStopEnabled && board.values.autoStop;
}

const char* Operation::Refusal(unsigned found) const noexcept {
    const bool known = found >= BOARD_STATE_BEING_STARTED && found <= BOARD_STATE_BEING_TESTED;
    return refusals[known ? found - 1 : 3];
}

const Operation kStart = {
    .worker = "startBoardThread",
    .entry = "StartBoard",
    .state = BOARD_STATE_BEING_STARTED,
    .doneEvent = OAMEVN_STARTBOARD_DONE,
    .automatic = AutomaticCheck::kBeforeState,
    .maySynchronize = true,
    .announcesItself = false,
    .tracesStates = true,
    .synchronizedTrace = "Perform Synchronized Start\n",
    .noThread = "Can't create thread to start board.",
    .failed = "Failed to start board.\n",
    .succeeded = "Board is started.\n",
    .refusals =
        {"Board is currently being started.",
         "Board is currently being stopped. Wait for the OAMEVN_STOPBOARD_DONE before restarting "
         "it",
         "Board is currently being tested. Wait for the OAMEVN_TESTBOARD_DONE before starting it",
         "Board is currently is a transition state. Wait before starting the board"},
    .run = &runStart,
    .isMarked = &isAutoStarted,
};

const Operation kStop = {
    .worker = "stopBoardThread",
    .entry = "StopBoard",
    .state = BOARD_STATE_BEING_STOPPED,
    .doneEvent = OAMEVN_STOPBOARD_DONE,
    .automatic = AutomaticCheck::kAfterState,
    .maySynchronize = true,
    .announcesItself = true,
    .tracesStates = false,
    .synchronizedTrace = "Perform Synchronized Stop\n",
    .noThread = "Can't create thread to stop board.",
    .failed = "Failed to stop board.",
    .succeeded = "Board is stopped.",
    .refusals =
        {"Board is currently being started. Wait for the OAMEVN_STARTBOARD_DONE before stopping it",
         "Board is currently being stopped.",
         "Board is currently being tested. Wait for the OAMEVN_TESTBOARD_DONE before stopping it",
         "Board is currently is a transition state. Wait before stopping the board"},
    .run = &runStop,
    .isMarked = &isAutoStopped,
};

const Operation kTest = {
    .worker = "testBoardThread",
    .entry = "TestBoard",
    .state = BOARD_STATE_BEING_TESTED,
    .doneEvent = OAMEVN_TESTBOARD_DONE,
    .automatic = AutomaticCheck::kNone,
    .maySynchronize = false,
    .announcesItself = false,
    .tracesStates = false,
    .synchronizedTrace = "",
    .noThread = "Can't create thread to start board.",  // Kept: the start's wording.
    .failed = "Test of board failed.",
    .succeeded = "Test of board was successful.",
    .refusals =
        {"Board is currently being started. Wait for the OAMEVN_STARTBOARD_DONE before testing it",
         "Board is currently being stopped. Wait for the OAMEVN_STOPBOARD_DONE before testing it",
         "Board is currently being tested.",
         "Board is currently is a transition state. Wait before testing the board"},
    .run = &runTest,
    .isMarked = nullptr,
};
