// oam board start, stop, test: three rows of one frame.
#include "arguments.h"
#include "board_selection.h"
#include "command.h"
#include "console.h"
#include "foreign_text.h"
#include "progress.h"
#include "service.h"

namespace oam {
namespace {

struct Operation {
    const char* verb;
    OperationKind kind;
};

constexpr Operation kStart = {"start", OperationKind::kStart};
constexpr Operation kStop = {"stop", OperationKind::kStop};
constexpr Operation kTest = {"test", OperationKind::kTest};

// What became of each board, told as it becomes known.
class OutcomeReport {
  public:
    OutcomeReport(Console& console, const Operation& operation, size_t boards)
        : console_(console),
          operation_(operation),
          progress_(operation.verb, console.IsCollected() ? 0 : boards) {}

    void Add(const std::string& board, const char* outcome, bool isGood, std::string text) {
        progress_.Clear();
        text.erase(text.find_last_not_of(" \n") + 1);
        rows_.push_back({{"board", board}, {"outcome", outcome}, {"text", text}});
        const std::string line = std::string(operation_.verb) + ' ' + Quoted(board) + ": " +
                                 outcome + (text.empty() ? "" : ": " + Shown(text));
        if (!isGood)
            console_.Note(line);
        else if (!console_.IsJson())
            console_.Stream(line);
        ++(isGood ? good_ : bad_);
        progress_.Show(good_ + bad_);
    }

    void Add(const OperationOutcome& outcome) {
        constexpr const char* kTexts[] = {"done", "failed", "refused"};
        Add(outcome.board, kTexts[static_cast<int>(outcome.kind)],
            outcome.kind == OperationOutcome::Kind::kDone, outcome.text);
    }

    void AddUnknown(const std::string& board, std::string text) {
        Add(board, "outcome unknown", false, std::move(text));
        isUnknown_ = true;
    }

    ExitStatus Finish() {
        progress_.Clear();
        if (console_.IsJson())
            console_.ShowJson({{"operation", operation_.verb}, {"boards", rows_}});
        else if (rows_.empty())
            console_.Say("there are no boards");
        if (bad_ == 0) return kDone;
        if (isUnknown_) return kOutcomeUnknown;
        return good_ != 0 ? kPartlyDone : kFailed;
    }

  private:
    Console& console_;
    const Operation& operation_;
    Progress progress_;
    Json rows_ = Json::array();
    unsigned good_ = 0;
    unsigned bad_ = 0;
    bool isUnknown_ = false;
};

class OperationCommand : public ServiceCommand {
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
    ExitStatus Work(Service& service, Console& console) override {
        const auto operations = service.Operate(operation_.kind);
        const auto boards = selection_.Resolve(service);
        OutcomeReport report(console, operation_, boards.size());
        for (const std::string& board : boards) {
            if (IsInterrupted())
                report.Add(board, "not requested", false, "interrupted");
            else if (const auto refusal = operations->Request(board, value_.value_or(0)))
                report.Add(*refusal);
        }
        Wait(*operations, report);
        operations->Settle(boards);
        return report.Finish();
    }

    std::optional<unsigned> value_;

  private:
    void Wait(Operations& operations, OutcomeReport& report) {
        const unsigned limit = noWait_ ? 0 : timeout_.value_or(60);
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(limit);
        while (const auto outcome = operations.Next(deadline)) report.Add(*outcome);
        for (const auto& [board, remark] : operations.Expected()) {
            if (IsInterrupted())
                report.AddUnknown(board, "interrupted");
            else if (noWait_)
                report.Add(board, "requested", true, "");
            else
                report.AddUnknown(board, "nothing after " + std::to_string(limit) + " s" +
                                             (remark.empty() ? "" : "; " + remark));
        }
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
