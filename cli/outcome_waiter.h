// Waiting for what became of requests to start, stop or test boards.
//
// The service accepts a request and tells its outcome later, in one alert with the operation's
// event code and the board's name as source. The waiter listens from its making on, so it is made
// before the first request.
//
// One alert of that kind is no outcome: the refusal of another request for the same operation while
// this one runs ("Board is currently being started.") - the service's automatic start can raise it
// in the middle of ours. The outcome of the operation that runs follows.
#pragma once

#include <map>
#include <string>

#include "alert_inbox.h"
#include "object_kind.h"

namespace oam {

class Session;

struct OutcomeEvent {
    unsigned code;
    const char* sameRunning;  // the text of that refusal
};

class OutcomeWaiter {
  public:
    OutcomeWaiter(Session& session, const OutcomeEvent& event);

    void Expect(const std::string& board);
    void Forget(const std::string& board);

    // The next outcome of an expected board, which is then expected no more. Nothing when none is
    // expected, at the deadline, and after an interruption.
    std::optional<Alert> Next(const AlertInbox::Deadline& deadline);

    // Boards without an outcome, each with the text of the last refusal seen.
    const std::map<std::string, std::string, NameLess>& Expected() const { return expected_; }

  private:
    Session& session_;
    OutcomeEvent event_;
    std::map<std::string, std::string, NameLess> expected_;
};

}  // namespace oam
