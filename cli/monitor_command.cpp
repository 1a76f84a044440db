// oam monitor: the service runs in the foreground, its alerts go to standard output.
#include <charconv>

#include "arguments.h"
#include "command.h"
#include "console.h"
#include "foreign_text.h"
#include "oam/entry.h"
#include "service.h"
#include "time_text.h"

namespace oam {
namespace {

const char* severityText(unsigned severity) {
    switch (severity) {
        case OAM_INFORMATION:
            return "info";
        case OAM_WARNING:
            return "warning";
        default:
            return "error";
    }
}

std::string nameOf(const Alert& alert) {
    if (!alert.codeName.empty()) return alert.codeName;
    const char* const name = _oamGetText(alert.code);
    return name ? name : HexText(alert.code);
}

void print(Console& console, const Alert& alert) {
    if (console.IsJson())
        return console.StreamJson({{"sequence", alert.sequence ? Json(alert.sequence) : Json()},
                                   {"time", TimeText(alert.time)},
                                   {"severity", severityText(alert.severity)},
                                   {"code", alert.code},
                                   {"event", nameOf(alert)},
                                   {"source", alert.source},
                                   {"text", alert.text}});
    std::string text = alert.text;
    text.erase(text.find_last_not_of(" \n") + 1);
    std::string severity = severityText(alert.severity);
    severity.resize(sizeof "warning" - 1, ' ');
    console.Stream(TimeText(alert.time) + "  " + severity + "  " + Shown(nameOf(alert)) + "  " +
                   Quoted(alert.source) + "  " + Shown(text));
}

class MonitorCommand : public ServiceCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Optional("--after", &afterText_,
                           "Begin with the alerts behind number N; a daemon keeps them", "N");
        arguments.Number("--count", &count_, {1, 0xffffffff}, "End after N alerts");
        arguments.Number("--for", &seconds_, {1, 100000000}, "End after N seconds");
    }

    void CheckArguments() override {
        if (!afterText_) return;
        std::uint64_t number = 0;
        const char* const end = afterText_->data() + afterText_->size();
        const auto [rest, error] = std::from_chars(afterText_->data(), end, number);
        if (error != std::errc() || rest != end)
            throw UsageError("not a number: " + Quoted(*afterText_));
        after_ = number;
    }

  protected:
    ExitStatus Work(Service& service, Console& console) override {
        const auto alerts = service.Watch(after_);
        AlertInbox::Deadline deadline;
        if (seconds_) deadline = std::chrono::steady_clock::now() + std::chrono::seconds(*seconds_);
        for (unsigned seen = 0; !count_ || seen < *count_; ++seen) {
            const auto alert = alerts->Next(deadline);
            if (!alert) return IsInterrupted() ? kInterrupted : kDone;
            if (const std::string gap = alerts->TakeGap(); !gap.empty()) console.Note(gap);
            print(console, *alert);
        }
        return kDone;
    }

  private:
    std::optional<std::string> afterText_;
    std::optional<std::uint64_t> after_;
    std::optional<unsigned> count_;
    std::optional<unsigned> seconds_;
};

constexpr CommandRow kRows[] = {
    {nullptr, "monitor", "Run the service and print its alerts as they come",
     "oam monitor --for 2\noam monitor --for 2 --json", Make<MonitorCommand>},
};

}  // namespace

std::span<const CommandRow> MonitorCommands() { return kRows; }

}  // namespace oam
