// The three board operations as rows: what differs between a start, a stop and a test.
#pragma once

#include "board_table.h"

enum class AutomaticCheck { kNone, kBeforeState, kAfterState };

struct Operation {
    const char* worker;  // in traces
    const char* entry;   // of the plug-in, in traces
    BoardState state;    // while it runs
    unsigned doneEvent;
    AutomaticCheck automatic;
    bool maySynchronize;
    bool announcesItself;  // 150 ms ahead, with OAMEVN_STOPBOARD_REQ
    bool tracesStates;
    const char* synchronizedTrace;
    const char* noThread;
    const char* failed;
    const char* succeeded;
    // Refusals by the state that was found: being started, stopped, tested, and any other.
    const char* refusals[4];
    oam_result (*run)(const PluginEntries& entries, const char* board, unsigned value) noexcept;
    // Both the Supervisor's setting and the board's.
    bool (*isMarked)(const CBoardID& board) noexcept;

    const char* Refusal(unsigned state) const noexcept;
};

extern const Operation kStart;
extern const Operation kStop;
extern const Operation kTest;

// Whether an automatic start or stop acts on the board now.
bool isAutoStarted(const CBoardID& board) noexcept;
bool isAutoStopped(const CBoardID& board) noexcept;
