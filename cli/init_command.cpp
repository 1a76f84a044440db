// oam init: an installation's directories.
#include <cstdio>
#include <cstring>

#include "arguments.h"
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
    void DeclareArguments(Arguments& arguments) override {
        arguments.FlagWithText("--group", &group_, "[NAME]",
                               "Directories that a group can write, too: the group NAME");
    }

    ExitStatus Run(Context& context) override {
        const Installation& place = context.place;
        if (place.Path(kStartupLog).size() >= kPathSize)
            throw Failure("the path of " + Quoted(place.Directory()) + " is too long",
                          "the service takes at most " +
                              std::to_string(kPathSize - 1 - std::strlen(kStartupLog)) +
                              " characters");
        const DirectoryPlan plan{group_.has_value(), group_.value_or("")};
        const auto made =
            MakeDirectories({place.Directory(), place.Path("/oam"), place.Path(kConfigDirectory),
                             place.Path(kLogDirectory), place.Path(kPluginDirectory)},
                            plan);
        Table table{{{"path", "DIRECTORY"}, {"action", "DONE"}, {"mode", "MODE"}}, {}};
        for (const MadeDirectory& directory : made)
            table.rows.push_back({directory.path, directory.action, octal(directory.mode)});
        context.console.Show("directories", table);
        return kDone;
    }

  private:
    std::optional<std::string> group_;
};

constexpr CommandRow kRows[] = {
    {nullptr, "init", "Make an installation's directories, or repair their modes",
     "oam init\noam --dir /srv/oam init --group oam", Make<InitCommand>},
};

}  // namespace

std::span<const CommandRow> InitCommands() { return kRows; }

}  // namespace oam
