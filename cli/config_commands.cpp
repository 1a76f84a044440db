// oam export, import, check: the configuration as a whole.
#include <algorithm>
#include <filesystem>

#include "arguments.h"
#include "command.h"
#include "config_check.h"
#include "console.h"
#include "foreign_text.h"
#include "object_kind.h"
#include "opened_object.h"
#include "session.h"
#include "transfer_file.h"

namespace oam {
namespace {

void complain(Console& console, const std::vector<Finding>& findings) {
    for (const Finding& finding : findings) console.Note(FindingText(finding));
}

class ExportCommand : public SessionCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Required("FILE", &file_, "Where to; an old file is replaced");
    }

  protected:
    ExitStatus Work(Session&, Console& console) override {
        const unsigned code = _oamConfigExport(file_.c_str());
        if (code)
            throw Failure(code, "cannot export to " + Quoted(file_),
                          "look at the directory's owner and free space");
        const TransferFile written =
            JudgeTransferFile(file_, [](const std::string&) { return false; });
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

class ImportCommand : public SessionCommand {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Required("FILE", &file_, "An export");
    }

  protected:
    ExitStatus Work(Session& session, Console& console) override {
        const TransferFile judged = JudgeTransferFile(file_, ServedProducts());
        if (!judged.findings.empty()) {
            complain(console, judged.findings);
            throw Failure(Quoted(file_) + " is not imported, nothing was changed",
                          "correct what is named above");
        }
        // An import stops every board first; here none was started, and each would complain.
        session.Inbox().Listen([](const Alert& alert) {
            return alert.severity != OAM_INFORMATION && alert.code != OAMEVN_STOPBOARD_DONE;
        });
        const unsigned code = _oamConfigImport(file_.c_str());
        if (code)
            throw Failure(code, "the import of " + Quoted(file_) + " failed",
                          "the old data files are in oam/cfg/import-refused when they are not in "
                          "oam/cfg; `oam check` tells the rest");
        if (console.IsJson())
            console.ShowJson({{"file", file_}, {"objects", judged.objects}});
        else
            console.Say("imported " + std::to_string(judged.objects) + " objects from " +
                        Quoted(file_));
        return kDone;
    }

  private:
    // Of a product that no plug-in serves there are objects, but no boards: their numbers may
    // clash.
    static IsServed ServedProducts() {
        const OpenedObject supervisor("Supervisor", OAM_OPEN_READ);
        std::vector<std::string> products;
        for (unsigned i = 0; i < supervisor.Count("Products"); ++i)
            products.push_back(supervisor.Keyword(Element("Products", i)).text);
        return [products](const std::string& product) {
            return std::any_of(products.begin(), products.end(), [&](const std::string& served) {
                return SameName(served, product);
            });
        };
    }

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
