#include "outcome_waiter.h"

#include "session.h"

namespace oam {

OutcomeWaiter::OutcomeWaiter(Session& session, const OutcomeEvent& event)
    : session_(session), event_(event) {
    session.ReportAlerts();
    session.Listen([code = event.code](const Alert& alert) { return alert.code == code; });
}

void OutcomeWaiter::Expect(const std::string& board) { expected_.emplace(board, ""); }

void OutcomeWaiter::Forget(const std::string& board) { expected_.erase(board); }

std::optional<Alert> OutcomeWaiter::Next(const AlertInbox::Deadline& deadline) {
    while (!expected_.empty()) {
        auto alert = session_.Inbox().Wait(deadline, session_.Interrupted());
        if (!alert) break;
        const auto board = expected_.find(alert->source);
        if (alert->code != event_.code || board == expected_.end()) {
            session_.Report(*alert);
        } else if (alert->text == event_.sameRunning) {
            board->second = alert->text;
        } else {
            expected_.erase(board);
            return alert;
        }
    }
    return std::nullopt;
}

}  // namespace oam
