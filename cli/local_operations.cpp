#include "local_operations.h"

#include <algorithm>

#include "failure.h"
#include "local_service.h"
#include "oam/entry.h"
#include "zol/zol.h"

namespace oam {

struct OperationRow {
    unsigned event;
    const char* sameRunning;  // the text of that refusal
    oam_result (*request)(const char* board, unsigned value);
};

namespace {

// In the order of OperationKind.
constexpr OperationRow kRows[] = {
    {OAMEVN_STARTBOARD_DONE, "Board is currently being started.", _oamStartBoard},
    {OAMEVN_STOPBOARD_DONE, "Board is currently being stopped.", _oamStopBoard},
    {OAMEVN_TESTBOARD_DONE, "Board is currently being tested.", _oamTestBoard},
};

}  // namespace

LocalOperations::LocalOperations(LocalService& service, OperationKind kind)
    : service_(service), row_(kRows[static_cast<int>(kind)]) {
    service.ReportAlerts();
    service.Listen([code = row_.event](const Alert& alert) { return alert.code == code; });
}

std::optional<OperationOutcome> LocalOperations::Request(const std::string& board, unsigned value) {
    expected_.emplace(board, "");
    const unsigned code = row_.request(board.c_str(), value);
    if (code == OAM_SUCCESS) return std::nullopt;
    expected_.erase(board);
    return OperationOutcome{board, OperationOutcome::Kind::kRefused, CodeText(code)};
}

std::optional<OperationOutcome> LocalOperations::Next(const AlertInbox::Deadline& deadline) {
    using Kind = OperationOutcome::Kind;
    while (!expected_.empty()) {
        const auto alert = service_.Wait(deadline);
        if (!alert) break;
        const auto board = expected_.find(alert->source);
        if (alert->code != row_.event || board == expected_.end()) {
            service_.Report(*alert);
        } else if (alert->text == row_.sameRunning) {
            board->second = alert->text;
        } else {
            expected_.erase(board);
            const bool isGood = alert->severity == OAM_INFORMATION;
            return OperationOutcome{alert->source, isGood ? Kind::kDone : Kind::kFailed,
                                    alert->text};
        }
    }
    return std::nullopt;
}

// A worker tells the outcome a moment before it gives its board free, and there is no question for
// that. A board that the service stops at its end must be free by then.
void LocalOperations::Settle(const std::vector<std::string>& boards) {
    constexpr unsigned kMoment = 50;
    if (std::any_of(boards.begin(), boards.end(), IsStoppedAtExit)) zolSleepMs(kMoment);
}

}  // namespace oam
