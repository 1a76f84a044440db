// oam host, doctor, service, config: what only a daemon knows or does.
#include <charconv>

#include "arguments.h"
#include "command.h"
#include "console.h"
#include "daemon.h"
#include "foreign_text.h"
#include "installation.h"
#include "service.h"
#include "time_text.h"

namespace oam {
namespace {

class DaemonCommand : public ServiceCommand {
  protected:
    bool NeedsDaemon() const final { return true; }
    ExitStatus Work(Service& service, Console& console) final {
        return Ask(*service.AsDaemon(), console);
    }
    virtual ExitStatus Ask(Daemon& daemon, Console& console) = 0;
};

void show(Console& console, const HostFacts& host) {
    console.Show(
        Record{{{"version", "version", host.version},
                {"directory", "installation", host.directory},
                {"process", "process", host.process},
                {"running", "service runs", host.isRunning},
                {"code", "start failed with", host.code.empty() ? Json() : Json(host.code)},
                {"newestAlert", "newest alert", host.newestAlert},
                {"user", "you are", host.user},
                {"role", "with the role", host.role}}});
}

class HostCommand : public DaemonCommand {
  protected:
    ExitStatus Ask(Daemon& daemon, Console& console) override {
        show(console, daemon.Host());
        return kDone;
    }
};

template <Daemon::Life kLife>
class LifeCommand : public DaemonCommand {
  protected:
    ExitStatus Ask(Daemon& daemon, Console& console) override {
        show(console, daemon.Control(kLife));
        return kDone;
    }
};

class DoctorCommand : public DaemonCommand {
  protected:
    ExitStatus Ask(Daemon& daemon, Console& console) override {
        Table table{{{"severity", "SEVERITY"},
                     {"subject", "SUBJECT"},
                     {"text", "FINDING"},
                     {"remedy", "WHAT TO DO"}},
                    {}};
        for (const DoctorFinding& finding : daemon.Diagnose())
            table.rows.push_back({finding.severity, finding.subject, finding.text, finding.remedy});
        if (table.rows.empty() && !console.IsJson())
            console.Say("nothing is wrong");
        else
            console.Show("findings", table);
        return table.rows.empty() ? kDone : kFailed;
    }
};

std::uint64_t generationOf(const std::string& text) {
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest != end)
        throw UsageError("no generation: " + Quoted(text) + "; `oam config history` lists them");
    return number;
}

Json orNull(const std::optional<std::string>& value) { return value ? Json(*value) : Json(); }

Json asJson(const std::vector<ValueChange>& changes) {
    Json all = Json::array();
    for (const ValueChange& change : changes)
        all.push_back({{"keyword", change.keyword},
                       {"before", orNull(change.before)},
                       {"after", orNull(change.after)}});
    return all;
}

std::string asText(const ValueChange& change) {
    const auto shown = [](const std::optional<std::string>& value) {
        return value ? Quoted(*value) : std::string("-");
    };
    return Shown(change.keyword) + ": " + shown(change.before) + " -> " + shown(change.after);
}

class HistoryCommand : public DaemonCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Optional("OBJECT", &object_, "Only what changed this object");
        arguments.Number("--limit", &limit_, {1, 1000}, "At most N lines (default 20)");
    }

  protected:
    ExitStatus Ask(Daemon& daemon, Console& console) override {
        constexpr unsigned kUsual = 20;
        const auto lines = daemon.History(object_.value_or(""), limit_.value_or(kUsual));
        if (console.IsJson()) {
            Json all = Json::array();
            for (const HistoryLine& line : lines)
                all.push_back({{"generation", line.generation},
                               {"time", TimeText(line.time)},
                               {"user", line.user},
                               {"action", line.action},
                               {"object", line.object},
                               {"changes", asJson(line.changes)}});
            console.ShowJson({{"history", all}});
            return kDone;
        }
        Table table{{{"generation", "GENERATION", true},
                     {"time", "TIME"},
                     {"user", "USER"},
                     {"action", "ACTION"},
                     {"object", "OBJECT"},
                     {"changes", "CHANGES"}},
                    {}};
        for (const HistoryLine& line : lines)
            table.rows.push_back({line.generation, TimeText(line.time), line.user, line.action,
                                  line.object, Summary(line.changes)});
        console.Show("history", table);
        return kDone;
    }

  private:
    // `oam config diff` has them all.
    static Cell Summary(const std::vector<ValueChange>& changes) {
        if (changes.empty()) return Cell(nullptr, "");
        std::string text = changes.front().keyword;
        if (changes.size() > 1) text += " and " + std::to_string(changes.size() - 1) + " more";
        return Cell(Json(text));
    }

    std::optional<std::string> object_;
    std::optional<unsigned> limit_;
};

void show(Console& console, const std::vector<ObjectDifferences>& differences) {
    if (console.IsJson()) {
        Json all = Json::array();
        for (const ObjectDifferences& difference : differences)
            all.push_back({{"object", difference.object},
                           {"kind", difference.kind},
                           {"changes", asJson(difference.changes)}});
        return console.ShowJson({{"differences", all}});
    }
    if (differences.empty()) console.Say("nothing differs");
    for (const ObjectDifferences& difference : differences) {
        console.Say(difference.kind + ' ' + Quoted(difference.object));
        for (const ValueChange& change : difference.changes) console.Say("  " + asText(change));
    }
}

class DiffCommand : public DaemonCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Required("FROM", &from_, "A generation");
        arguments.Optional("TO", &to_, "Another one (default: now)");
        arguments.Optional("--object", &object_, "Only this object", "NAME");
    }
    void CheckArguments() override { range_ = {generationOf(from_), to_ ? generationOf(*to_) : 0}; }

  protected:
    ExitStatus Ask(Daemon& daemon, Console& console) override {
        show(console, daemon.Diff(range_.first, range_.second, object_.value_or("")));
        return kDone;
    }

  private:
    std::string from_;
    std::optional<std::string> to_;
    std::optional<std::string> object_;
    std::pair<std::uint64_t, std::uint64_t> range_;
};

class RollBackCommand : public DaemonCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Required("GENERATION", &text_, "What to go back to");
        arguments.Optional("--object", &object_, "Only this object's keywords", "NAME");
    }
    void CheckArguments() override { generation_ = generationOf(text_); }

  protected:
    ExitStatus Ask(Daemon& daemon, Console& console) override {
        show(console, daemon.RollBack(generation_, object_.value_or("")));
        return kDone;
    }

  private:
    std::string text_;
    std::optional<std::string> object_;
    std::uint64_t generation_ = 0;
};

constexpr CommandRow kRows[] = {
    {nullptr, "host", "Which daemon serves the installation, and who you are to it", "oam host",
     Make<HostCommand>},
    {nullptr, "doctor", "What is wrong with this host, and what to do about it", "oam doctor",
     Make<DoctorCommand>},
    {"service", "start", "Start the service in the daemon", "oam service start",
     Make<LifeCommand<Daemon::Life::kStart>>},
    {"service", "stop", "Stop the service in the daemon; the daemon stays", "oam service stop",
     Make<LifeCommand<Daemon::Life::kStop>>},
    {"service", "restart", "Stop the service, load everything anew, start it",
     "oam service restart", Make<LifeCommand<Daemon::Life::kRestart>>},
    {"config", "history", "Who changed what, newest first",
     "oam config history\noam config history Supervisor --limit 5", Make<HistoryCommand>},
    {"config", "diff", "What differs between two generations",
     "oam config diff 1\noam config diff 1 2 --object Supervisor", Make<DiffCommand>},
    {"config", "rollback", "Bring an object, or everything, back to a generation",
     "oam config rollback 1 --object Supervisor", Make<RollBackCommand>},
};

}  // namespace

std::span<const CommandRow> DaemonCommands() { return kRows; }

}  // namespace oam
