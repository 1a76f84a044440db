// oam monitor: the service runs in the foreground, its alerts go to standard output.
#include <ctime>

#include "arguments.h"
#include "command.h"
#include "console.h"
#include "foreign_text.h"
#include "oam/entry.h"
#include "service.h"

namespace oam {
namespace {

std::string timeText(std::chrono::system_clock::time_point time) {
    const time_t seconds = std::chrono::system_clock::to_time_t(time);
    tm local{};
    char text[32];
    localtime_r(&seconds, &local);
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S%z", &local);
    return text;
}

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

std::string nameOf(unsigned code) {
    const char* name = _oamGetText(code);
    return name ? name : HexText(code);
}

void print(Console& console, const Alert& alert) {
    if (console.IsJson())
        return console.StreamJson({{"time", timeText(alert.time)},
                                   {"severity", severityText(alert.severity)},
                                   {"code", alert.code},
                                   {"event", nameOf(alert.code)},
                                   {"source", alert.source},
                                   {"text", alert.text}});
    std::string text = alert.text;
    text.erase(text.find_last_not_of(" \n") + 1);
    std::string severity = severityText(alert.severity);
    severity.resize(sizeof "warning" - 1, ' ');
    console.Stream(timeText(alert.time) + "  " + severity + "  " + Shown(nameOf(alert.code)) +
                   "  " + Quoted(alert.source) + "  " + Shown(text));
}

class MonitorCommand : public ServiceCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Number("--count", &count_, {1, 0xffffffff}, "End after N alerts");
        arguments.Number("--for", &seconds_, {1, 100000000}, "End after N seconds");
    }

  protected:
    ExitStatus Work(Service& service, Console& console) override {
        const auto alerts = service.Watch();
        AlertInbox::Deadline deadline;
        if (seconds_) deadline = std::chrono::steady_clock::now() + std::chrono::seconds(*seconds_);
        for (unsigned seen = 0; !count_ || seen < *count_; ++seen) {
            const auto alert = alerts->Next(deadline);
            if (!alert) return IsInterrupted() ? kInterrupted : kDone;
            print(console, *alert);
            if (const size_t lost = alerts->TakeLost())
                console.Note(std::to_string(lost) + " alerts came too fast and are lost");
        }
        return kDone;
    }

  private:
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
