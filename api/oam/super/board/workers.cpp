#include "workers.h"

#include <atomic>
#include <memory>
#include <optional>

#include "base/database_lock.h"
#include "base/flags.h"
#include "base/rounds.h"
#include "doors/alert.h"
#include "start_thread.h"
#include "zol/zol.h"

namespace {

using oam::TableGuard;

constexpr unsigned kNoticeBeforeStop = 150;    // milliseconds
constexpr unsigned kBeforeAutomaticStart = 5;  // seconds

std::atomic<bool> s_bBoardCommIsRunning{false};
// Counts the openings, so that a request can tell that it belongs to an earlier one.
std::atomic<unsigned long> opening{0};

struct BoardRequest {
    const Operation* operation;
    unsigned long opening;
    oam::OwnedText board;  // null: every board
    unsigned value;

    bool IsFor(unsigned flag) const noexcept {
        return operation->maySynchronize && (value & flag) != 0;
    }
};

using OwnedRequest = std::unique_ptr<BoardRequest>;

OwnedRequest makeRequest(const Operation& operation, unsigned long ofOpening, const char* board,
                         unsigned value) noexcept {
    OwnedRequest request(new (std::nothrow) BoardRequest{&operation, ofOpening, {}, value});
    if (request != nullptr && !request->board.Assign(board)) request.reset();
    return request;
}

void carryOut(const BoardRequest& request) noexcept;

void workerThread(void* request) noexcept {
    const OwnedRequest owned(static_cast<BoardRequest*>(request));
    carryOut(*owned);
}

// False when there is no thread for it; the request is freed all the same.
bool startWorker(OwnedRequest request) noexcept {
    if (request == nullptr || startThread(&workerThread, request.get()) != 0) return false;
    (void)request.release();
    return true;
}

void tell(const BoardRequest& request, unsigned event, unsigned severity,
          const char* text) noexcept {
    (void)AlertNotify(event, severity, request.board.Get(), "%s", text);
}

void tellDone(const BoardRequest& request, unsigned severity, const char* text) noexcept {
    tell(request, request.operation->doneEvent, severity, text);
}

// ---- Every board

void forEachBoard(const BoardRequest& request) noexcept {
    const Operation& operation = *request.operation;
    // The manager lock first: a plug-in or a receiver that opens objects while the table is held
    // keeps the one order.
    oam::ManagerGuard holdManager;
    TableGuard holdTable;
    oam::Rounds rounds(boardTable().Count());
    // Those that are made meanwhile are among them, but not one for each without end.
    for (int i = 0; i < boardTable().Count() && rounds.Next(); ++i) {
        OwnedRequest one =
            makeRequest(operation, request.opening, boardTable().At(i)->Name(), request.value);
        if (one != nullptr && one->IsFor(OAM_SYNCHRONIZED)) {
            carryOut(*one);
            if (operation.announcesItself) {
                DebugOutput("stopBoardThread: StopBoard( \"%s\" ); Complete!\n", one->board.Get());
            }
            continue;
        }
        if (startWorker(std::move(one))) continue;
        char name[oam::kNameSize];
        oam::CopyCut(boardTable().At(i)->Name(), name, sizeof name);
        (void)AlertNotify(operation.doneEvent, OAM_ERROR, name, "%s", operation.noThread);
    }
}

// ---- One board

struct Accepted {
    PluginEntries entries;
    bool hasPlugin = false;
    bool isMarked = false;
    unsigned long identity = 0;
};

// Under the table lock: the board's state allows the operation and now says that it runs.
// Otherwise the refusal has been told where one is due.
std::optional<Accepted> accept(const BoardRequest& request) noexcept {
    const Operation& operation = *request.operation;
    unsigned found;
    {
        TableGuard hold;
        CBoardID* board = boardTable().Find(request.board.Get());
        if (board == nullptr || request.opening != opening) return std::nullopt;
        Accepted accepted;
        accepted.isMarked = operation.isMarked != nullptr && operation.isMarked(*board);
        if (operation.automatic == AutomaticCheck::kBeforeState && request.IsFor(OAM_AUTOMATIC) &&
            !accepted.isMarked) {
            return std::nullopt;
        }
        found = board->state;
        if (found == BOARD_STATE_IDLE) {
            board->state = operation.state;
            if (operation.tracesStates) {
                DebugOutput("%s: set Board (%s) state to BOARD_STATE_BEING_STARTED\n",
                            operation.worker, board->Name());
            }
            accepted.hasPlugin = board->plugin != nullptr;
            if (accepted.hasPlugin) accepted.entries = board->plugin->Calls();
            accepted.identity = board->identity;
            return accepted;
        }
    }
    DebugOutput("%s: Board is currently is state %d( \"%s\" );\n", operation.worker,
                static_cast<int>(found), request.board.Get());
    tellDone(request, OAM_ERROR, operation.Refusal(found));
    return std::nullopt;
}

void callPlugin(const BoardRequest& request, const Accepted& accepted) noexcept {
    const Operation& operation = *request.operation;
    const char* board = request.board.Get();
    if (!accepted.hasPlugin) {
        tellDone(request, OAM_ERROR, "Board not found.");
        return;
    }
    if (operation.automatic == AutomaticCheck::kAfterState && request.IsFor(OAM_AUTOMATIC) &&
        !accepted.isMarked) {
        return;
    }
    if (operation.announcesItself) {
        tell(request, OAMEVN_STOPBOARD_REQ, OAM_INFORMATION, "Stop board in 150ms.");
        zolSleepMs(kNoticeBeforeStop);
    }
    if (operation.maySynchronize) {
        DebugOutput("%s: Calling plug-in %s( \"%s\" );\n", operation.worker, operation.entry,
                    board);
    } else {
        DebugOutput("%s: Calling plug-in %s( \"%s, 0x%X\" );\n", operation.worker, operation.entry,
                    board, request.value);
    }
    const bool succeeded = operation.run(accepted.entries, board, request.value) == OAM_SUCCESS;
    tellDone(request, succeeded ? OAM_INFORMATION : OAM_ERROR,
             succeeded ? operation.succeeded : operation.failed);
}

void backToIdle(const Operation& operation, unsigned long identity) noexcept {
    TableGuard hold;
    int index;
    if (!boardTable().FindByIdentity(identity, &index)) return;  // removed meanwhile
    CBoardID* board = boardTable().At(index);
    if (operation.tracesStates) {
        DebugOutput("%s: set Board (%s) state from %d to %d \n", operation.worker, board->Name(),
                    static_cast<int>(board->state), int{BOARD_STATE_IDLE});
    }
    board->state = BOARD_STATE_IDLE;
}

void carryOut(const BoardRequest& request) noexcept {
    if (request.board.IsNull()) {
        forEachBoard(request);
        return;
    }
    const std::optional<Accepted> accepted = accept(request);
    if (!accepted) return;
    callPlugin(request, *accepted);
    backToIdle(*request.operation, accepted->identity);
}

void InitStartBoard(void* ofOpening) noexcept {
    zolSleep(kBeforeAutomaticStart);
    if (reinterpret_cast<unsigned long>(ofOpening) != opening) return;
    (void)_oamStartBoard(nullptr, OAM_AUTOMATIC);
}

bool isConfigured(const char* board) noexcept {
    TableGuard hold;
    return boardTable().Find(board) != nullptr;
}

// The common part of the three entry points; a null name means every board. The value is the flags
// of a start or stop, or the test value.
oam_result requestOperation(const Operation& operation, const char* board,
                            unsigned value) noexcept {
    const unsigned long ofOpening = opening;
    if (!s_bBoardCommIsRunning) return OAMERR_SERVER_NOT_RUNNING;
    if (board != nullptr && !isConfigured(board)) return OAMERR_NOT_FOUND;
    OwnedRequest request = makeRequest(operation, ofOpening, board, value);
    if (request == nullptr) return OAMERR_NOT_ENOUGH_MEMORY;
    if (operation.maySynchronize && g_bSynchronizeEnabled) request->value |= OAM_SYNCHRONIZED;
    if (request->IsFor(OAM_SYNCHRONIZED)) {
        DebugOutput("%s", operation.synchronizedTrace);
        carryOut(*request);
        return OAM_SUCCESS;
    }
    return startWorker(std::move(request)) ? OAM_SUCCESS : OAMERR_CANT_CREATE_THREAD;
}

}  // namespace

void openForRequests() noexcept { s_bBoardCommIsRunning = true; }

void closeForRequests() noexcept {
    s_bBoardCommIsRunning = false;
    ++opening;
}

bool isOpenForRequests() noexcept { return s_bBoardCommIsRunning; }

void startMarkedBoardsLater() noexcept {
    (void)startThread(&InitStartBoard, reinterpret_cast<void*>(opening.load()));
}

oam_result _oamStartBoard(const char* name, unsigned flags) noexcept {
    return requestOperation(kStart, name, flags);
}

oam_result _oamStopBoard(const char* name, unsigned flags) noexcept {
    return requestOperation(kStop, name, flags);
}

oam_result _oamTestBoard(const char* name, unsigned testValue) noexcept {
    return requestOperation(kTest, name, testValue);
}
