// oam plugin list, check: the board plug-ins and components of an installation.
#include <filesystem>

#include "arguments.h"
#include "command.h"
#include "config_scan.h"
#include "console.h"
#include "foreign_text.h"
#include "judge_program.h"
#include "service.h"

namespace oam {
namespace {

std::string joined(const std::vector<std::string>& texts) {
    std::string all;
    for (const std::string& text : texts) all += (all.empty() ? "" : ", ") + text;
    return all;
}

class PluginListCommand : public ServiceCommand {
  protected:
    ExitStatus Work(Service& service, Console& console) override {
        Table table{{{"name", "NAME"}, {"kind", "KIND"}, {"products", "PRODUCTS"}}, {}};
        for (const ModuleFacts& module : service.Modules())
            table.rows.push_back({module.name, KindText(module.kind),
                                  module.kind == ObjectKind::kPlugin
                                      ? Cell(module.products, joined(module.products))
                                      : Cell(nullptr, "")});
        console.Show("plugins", table);
        return kDone;
    }
};

// Judged by oam-plugin-check in a process of its own; what only the installation can tell is added:
// with whom the file would share a data file there. Nothing is changed.
class PluginCheckCommand : public Command {
  public:
    void DeclareArguments(Arguments& arguments) override {
        arguments.Required(
            "FILE", &file_,
            "A *.bpi or *.emc file, or the name of one in the installation's \"lib\"");
    }

    ExitStatus Run(Context& context) override {
        const std::string path = Find(context.place);
        const auto clashes = Clashes(context.place, path);
        const JudgeReport report = JudgeFile(path, context.console.IsJson());
        if (context.console.IsJson()) {
            Json members = Json::parse(report.text);
            members.erase("schema");  // every answer begins with one
            Json texts = Json::array();
            for (const Finding& clash : clashes) texts.push_back(clash.text);
            members["sharedDataFiles"] = texts;
            members["passed"] = report.isPassed && clashes.empty();
            context.console.ShowJson(members);
        } else {
            context.console.Say(report.text.substr(0, report.text.find_last_not_of('\n') + 1));
            for (const Finding& clash : clashes) context.console.Say("error    " + clash.text);
        }
        return report.isPassed && clashes.empty() ? kDone : kFailed;
    }

  private:
    std::string Find(const Installation& place) const {
        if (std::filesystem::exists(file_)) return file_;
        const std::string inLibrary = place.Path(std::string(kPluginDirectory) + '/' + file_);
        if (file_.find('/') == std::string::npos && std::filesystem::exists(inLibrary))
            return inLibrary;
        throw Failure("there is no file " + Quoted(file_),
                      "neither here nor in " + place.Path(kPluginDirectory));
    }

    // Where there is no installation there is nobody to share with.
    static std::vector<Finding> Clashes(const Installation& place, const std::string& path) {
        const std::string name = std::filesystem::path(path).filename();
        std::vector<FoundName> names;
        const std::string library = place.Path(kPluginDirectory);
        if (std::filesystem::is_directory(library)) {
            for (const char* extension : {".bpi", ".emc"})
                for (const std::string& other : FilesOf(library, extension))
                    if (!SameName(other, name)) names.push_back({other, {}, other});
        }
        names.push_back({path, {}, name});
        std::vector<Finding> clashes = CheckSharedDataFiles(names);
        std::erase_if(clashes, [&](const Finding& finding) { return finding.file != path; });
        return clashes;
    }

    std::string file_;
};

constexpr CommandRow kRows[] = {
    {"plugin", "list", "List the loaded plug-ins with their products, and the components",
     "oam plugin list", Make<PluginListCommand>},
    {"plugin", "check", "Judge a plug-in or component as its kit does, and its name for this place",
     "oam plugin check watch.emc", Make<PluginCheckCommand>},
};

}  // namespace

std::span<const CommandRow> PluginCommands() { return kRows; }

}  // namespace oam
