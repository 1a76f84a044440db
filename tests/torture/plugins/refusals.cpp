#include "refusals.h"

#include <algorithm>
#include <string_view>

namespace oam::torture {

namespace {

// Where a row holds.
using Holds = bool (*)(const Situation&);

bool isUnderTheManagerLock(const Situation& situation) { return situation.isManagerHeld; }

bool isInALifecycleCall(const Situation& situation) {
    return situation.phase == Phase::kStarting || situation.phase == Phase::kStopping;
}

bool isInTheMiddle(const Situation& situation) {
    return isUnderTheManagerLock(situation) || isInALifecycleCall(situation);
}

bool isLent(const Situation& situation) { return situation.isHandleLent; }

bool isInDestroyBoard(const Situation& situation) {
    return situation.entry == std::string_view("DestroyBoard");
}

struct Row {
    std::vector<std::string_view> functions;
    std::string_view what;  // of the call; empty: all rows of the functions
    Holds holds;
    Refusal refusal;
};

constexpr char kStack[] = "what it would take away is in use further up the thread's own stack";

const std::vector<Row>& rows() {
    static const std::vector<Row> kRows = {
        {{"_oamExit", "_oamShutdown", "_oamRestart"}, "", &isInTheMiddle, {kDenied, kStack}},
        {{"_oamInit"},
         "",
         &isInALifecycleCall,
         {kDenied, "a start inside a start or stop would find its data files in use"}},
        {{"_oamConfigImport"},
         "",
         [](const Situation& situation) {
             return isUnderTheManagerLock(situation) && !isInALifecycleCall(situation);
         },
         {kDenied, kStack}},
        {{"_oamConfigImport", "_oamConfigExport", "_oamCreateBoard", "_oamDeleteBoard",
          "_oamAddDetectedBoard", "_oamOpenObject", "_oamDetectBoards", "_oamSendBuffer",
          "_oamBoardGetStatus", "_oamBoardEnum", "_oamClientInit", "_oamClientExit"},
         "",
         &isInALifecycleCall,
         {kNotRunning, "before a start has succeeded, and from the beginning of a stop on"}},
        {{"_oamCloseObject", "_oamCloseObject_WOAN", "_oamDbCloseObject"},
         "the one that it has",
         [](const Situation& situation) {
             return isLent(situation) && !isInALifecycleCall(situation);
         },
         {kDenied, "the handle is lent: the service uses it behind the entry"}},
        {{"_oamDeleteBoard"},
         "its own",
         &isInDestroyBoard,
         {kDenied, "it is being deleted; the entry would be called again and again"}},
    };
    return kRows;
}

bool isOf(const Row& row, const InsideCall& call) {
    const bool isFunction =
        std::find(row.functions.begin(), row.functions.end(), call.function) != row.functions.end();
    return isFunction && (row.what.empty() || row.what == call.what);
}

}  // namespace

const Refusal* RefusalOf(const InsideCall& call, const Situation& situation) {
    for (const Row& row : rows())
        if (isOf(row, call) && row.holds(situation)) return &row.refusal;
    return nullptr;
}

}  // namespace oam::torture
