// oam export, import, check: the configuration as a whole.
#include "arguments.h"
#include "command.h"
#include "config_check.h"
#include "console.h"
#include "foreign_text.h"
#include "service.h"

namespace oam {
namespace {

void complain(Console& console, const std::vector<Finding>& findings) {
    for (const Finding& finding : findings) console.Note(FindingText(finding));
}

class ExportCommand : public ServiceCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Required("FILE", &file_, "Where to; an old file is replaced");
    }

  protected:
    ExitStatus Work(Service& service, Console& console) override {
        const TransferFile written = service.ExportConfiguration(file_);
        complain(console, written.findings);
        if (console.IsJson())
            console.ShowJson({{"file", file_},
                              {"objects", written.objects},
                              {"importable", written.findings.empty()}});
        else
            console.Say("exported " + std::to_string(written.objects) + " objects to " +
                        Quoted(file_));
        if (!written.findings.empty())
            throw Failure("the file is written but cannot be imported as it is",
                          "correct the values named above with `oam set`, and export again");
        return kDone;
    }

  private:
    std::string file_;
};

class ImportCommand : public ServiceCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Required("FILE", &file_, "An export");
    }

  protected:
    ExitStatus Work(Service& service, Console& console) override {
        const TransferFile judged = service.ImportConfiguration(file_);
        if (!judged.findings.empty()) {
            complain(console, judged.findings);
            throw Failure(Quoted(file_) + " is not imported, nothing was changed",
                          "correct what is named above");
        }
        if (console.IsJson())
            console.ShowJson({{"file", file_}, {"objects", judged.objects}});
        else
            console.Say("imported " + std::to_string(judged.objects) + " objects from " +
                        Quoted(file_));
        return kDone;
    }

  private:
    std::string file_;
};

class CheckCommand : public Command {
  public:
    ExitStatus Run(Context& context) override {
        const CheckResult result = CheckInstallation(context.place);
        if (context.console.IsJson())
            PrintJson(context, result);
        else
            PrintText(context.console, result);
        return result.findings.empty() ? kDone : kFailed;
    }

  private:
    static void PrintJson(Context& context, const CheckResult& result) {
        Json findings = Json::array();
        for (const Finding& finding : result.findings)
            findings.push_back({{"file", finding.file},
                                {"line", finding.at.line ? Json(finding.at.line) : Json()},
                                {"column", finding.at.line ? Json(finding.at.column) : Json()},
                                {"problem", finding.text}});
        Json holder;
        if (result.holder)
            holder = {{"pid", result.holder->pid}, {"command", result.holder->command}};
        context.console.ShowJson({{"directory", context.place.Directory()},
                                  {"inUseBy", holder},
                                  {"dataFiles", result.dataFiles},
                                  {"objects", result.objects},
                                  {"libraries", result.libraries},
                                  {"problems", findings}});
    }

    static void PrintText(Console& console, const CheckResult& result) {
        for (const Finding& finding : result.findings) console.Say(FindingText(finding));
        if (result.holder)
            console.Say("in use by " + result.holder->Text() + ": it may change while it is read");
        console.Say("data files: " + std::to_string(result.dataFiles) +
                    ", objects: " + std::to_string(result.objects) +
                    ", plug-ins and components: " + std::to_string(result.libraries) +
                    ", problems: " + std::to_string(result.findings.size()));
    }
};

constexpr CommandRow kRows[] = {
    {nullptr, "export", "Write the whole configuration to one file", "oam export saved.oam",
     Make<ExportCommand>},
    {nullptr, "import", "Replace the whole configuration by a file's", "oam import saved.oam",
     Make<ImportCommand>},
    {nullptr, "check", "Look the installation's files over, and change nothing",
     "oam check\noam check --json", Make<CheckCommand>},
};

}  // namespace

std::span<const CommandRow> ConfigCommands() { return kRows; }

}  // namespace oam
