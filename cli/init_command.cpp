// oam init: an installation's directories.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstring>

#include "command.h"
#include "console.h"
#include "directory_maker.h"
#include "installation.h"

namespace oam {
namespace {

std::string octal(unsigned mode) {
    char text[8];
    std::snprintf(text, sizeof text, "%04o", mode & 07777);
    return text;
}

class InitCommand : public Command {
  public:
    void DeclareArguments(CLI::App& app) override {
        group_ = app.add_option("--group", plan_.group,
                                "Directories that a group can write, too, and that belong to NAME")
                     ->type_name("NAME")
                     ->expected(0, 1);
    }

    ExitStatus Run(Context& context) override {
        const Installation& place = context.place;
        if (place.Path(kStartupLog).size() >= kPathSize)
            throw Failure("the path of " + Quoted(place.Directory()) + " is too long",
                          "the service takes at most " +
                              std::to_string(kPathSize - 1 - std::strlen(kStartupLog)) +
                              " characters");
        plan_.forGroup = group_->count() > 0;
        const auto made =
            MakeDirectories({place.Directory(), place.Path("/oam"), place.Path(kConfigDirectory),
                             place.Path(kLogDirectory), place.Path(kPluginDirectory)},
                            plan_);
        Table table{{{"path", "DIRECTORY"}, {"action", "DONE"}, {"mode", "MODE"}}, {}};
        for (const MadeDirectory& directory : made)
            table.rows.push_back({directory.path, directory.action, octal(directory.mode)});
        context.console.Show("directories", table);
        return kDone;
    }

  private:
    DirectoryPlan plan_;
    CLI::Option* group_ = nullptr;
};

constexpr CommandRow kRows[] = {
    {nullptr, "init", "Make an installation's directories, or repair their modes",
     "oam init\noam --dir /srv/oam init --group oam", Make<InitCommand>},
};

}  // namespace

std::span<const CommandRow> InitCommands() { return kRows; }

}  // namespace oam
