// oam board start, stop, test: three rows of one frame.
#include <algorithm>

#include "arguments.h"
#include "board_facts.h"
#include "board_selection.h"
#include "command.h"
#include "console.h"
#include "foreign_text.h"
#include "oam/entry.h"
#include "outcome_waiter.h"
#include "session.h"
#include "zol/zol.h"

namespace oam {
namespace {

struct Operation {
    const char* verb;
    OutcomeEvent event;
    oam_result (*request)(const char* board, unsigned value);
};

constexpr Operation kStart = {
    "start",
    {OAMEVN_STARTBOARD_DONE, "Board is currently being started."},
    _oamStartBoard,
};
constexpr Operation kStop = {
    "stop",
    {OAMEVN_STOPBOARD_DONE, "Board is currently being stopped."},
    _oamStopBoard,
};
constexpr Operation kTest = {
    "test",
    {OAMEVN_TESTBOARD_DONE, "Board is currently being tested."},
    _oamTestBoard,
};

// What became of each board, told as it becomes known.
class OutcomeReport {
  public:
    OutcomeReport(Console& console, const Operation& operation)
        : console_(console), operation_(operation) {}

    void Add(const std::string& board, const char* outcome, bool isGood, std::string text) {
        text.erase(text.find_last_not_of(" \n") + 1);
        rows_.push_back({{"board", board}, {"outcome", outcome}, {"text", text}});
        const std::string line = std::string(operation_.verb) + ' ' + Quoted(board) + ": " +
                                 outcome + (text.empty() ? "" : ": " + Shown(text));
        if (!isGood)
            console_.Note(line);
        else if (!console_.IsJson())
            console_.Stream(line);
        allGood_ = allGood_ && isGood;
    }

    ExitStatus Finish() {
        if (console_.IsJson())
            console_.ShowJson({{"operation", operation_.verb}, {"boards", rows_}});
        else if (rows_.empty())
            console_.Say("there are no boards");
        return allGood_ ? kDone : kFailed;
    }

  private:
    Console& console_;
    const Operation& operation_;
    Json rows_ = Json::array();
    bool allGood_ = true;
};

class OperationCommand : public SessionCommand {
  public:
    explicit OperationCommand(const Operation& operation) : operation_(operation) {}

    void DeclareArguments(Arguments& arguments) override {
        selection_.Declare(arguments, "Boards");
        arguments.Flag("--no-wait", &noWait_, "Only hand the requests over; see the manual");
        arguments.Number("--timeout", &timeout_, {1, 86400},
                         "How many seconds to wait for the outcomes (default 60)");
    }

    void CheckArguments() override { selection_.Check(); }

  protected:
    ExitStatus Work(Session& session, Console& console) override {
        OutcomeReport report(console, operation_);
        OutcomeWaiter waiter(session, operation_.event);
        const auto boards = selection_.Resolve();
        for (const std::string& board : boards) {
            if (session.Interrupted().IsRequested()) {
                report.Add(board, "not requested", false, "interrupted");
                continue;
            }
            waiter.Expect(board);
            if (const unsigned code = operation_.request(board.c_str(), value_.value_or(0))) {
                waiter.Forget(board);
                report.Add(board, "refused", false, CodeText(code));
            }
        }
        Wait(session, waiter, report);
        Settle(boards);
        return report.Finish();
    }

    std::optional<unsigned> value_;

  private:
    void Wait(Session& session, OutcomeWaiter& waiter, OutcomeReport& report) {
        const unsigned limit = noWait_ ? 0 : timeout_.value_or(60);
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(limit);
        while (const auto alert = waiter.Next(deadline)) {
            const bool isGood = alert->severity == OAM_INFORMATION;
            report.Add(alert->source, isGood ? "done" : "failed", isGood, alert->text);
        }
        for (const auto& [board, refusal] : waiter.Expected()) {
            if (session.Interrupted().IsRequested())
                report.Add(board, "outcome unknown", false, "interrupted");
            else if (noWait_)
                report.Add(board, "requested", true, "");
            else
                report.Add(board, "outcome unknown", false,
                           "nothing after " + std::to_string(limit) + " s" +
                               (refusal.empty() ? "" : "; " + refusal));
        }
    }

    // A worker tells the outcome a moment before it gives its board free, and there is no question
    // for that. A board that the service stops at its end must be free by then.
    static void Settle(const std::vector<std::string>& boards) {
        constexpr unsigned kMoment = 50;
        if (std::any_of(boards.begin(), boards.end(), IsStoppedAtExit)) zolSleepMs(kMoment);
    }

    const Operation& operation_;
    BoardSelection selection_;
    bool noWait_ = false;
    std::optional<unsigned> timeout_;
};

class StartCommand : public OperationCommand {
  public:
    StartCommand() : OperationCommand(kStart) {}
};

class StopCommand : public OperationCommand {
  public:
    StopCommand() : OperationCommand(kStop) {}
};

class TestCommand : public OperationCommand {
  public:
    TestCommand() : OperationCommand(kTest) {}

    void DeclareArguments(Arguments& arguments) override {
        OperationCommand::DeclareArguments(arguments);
        arguments.Number("--value", &value_, {},
                         "What to test, a number that the plug-in explains");
    }
};

constexpr CommandRow kRows[] = {
    {"board", "start", "Start boards and wait for the outcome",
     "oam board start \"Sim E1 left\"\noam board start --all --timeout 120", Make<StartCommand>},
    {"board", "stop", "Stop boards and wait for the outcome", "oam board stop \"Sim E1 left\"",
     Make<StopCommand>},
    {"board", "test", "Test boards and wait for the outcome",
     "oam board test \"Sim E1 left\" --value 1", Make<TestCommand>},
};

}  // namespace

std::span<const CommandRow> BoardOperationCommands() { return kRows; }

}  // namespace oam
