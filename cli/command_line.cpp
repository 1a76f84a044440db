#include "command_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>

#include "arguments.h"
#include "bundle_command.h"
#include "completion.h"
#include "console.h"
#include "fleet_program.h"
#include "installation.h"
#include "remote_host.h"

namespace oam {
namespace {

constexpr const char* kSummary =
    "Looks after an installation of the OA&M service. When a daemon serves it, oam is its client;\n"
    "else the service runs in this process for as long as the command takes, and nothing else may\n"
    "use the installation meanwhile.";

constexpr FamilyRow kFamilies[] = {
    {"board", "Boards: find, create, start and so on", "oam board list\noam board start --all"},
    {"config", "The configuration's history, of a daemon", "oam config history"},
    {"service", "The life of the service in a daemon", "oam service restart"},
    {"plugin", "Board plug-ins and components", "oam plugin list"},
};

std::string exampleText(const char* examples) {
    std::istringstream lines(examples);
    std::string text = "\nExamples:";
    for (std::string line; std::getline(lines, line);) text += "\n  " + line;
    return text;
}

std::string titleOf(int argc, char** argv) {
    std::string title = "oam";
    for (int i = 1; i < argc; ++i) title += std::string(" ") + argv[i];
    return title;
}

}  // namespace

std::span<const FamilyRow> Families() { return kFamilies; }

std::vector<CommandRow> AllCommands() {
    std::vector<CommandRow> all;
    for (const auto family :
         {InitCommands, ObjectCommands, ChangeCommands, BoardCommands, BoardQueryCommands,
          BoardOperationCommands, ConfigCommands, MonitorCommands, PluginCommands, InfoCommands,
          DaemonCommands, BundleCommands})
        for (const CommandRow& row : family()) all.push_back(row);
    return all;
}

CommandLine::CommandLine() : app_(std::make_unique<CLI::App>(kSummary, "oam")) {
    app_->fallthrough();
    app_->require_subcommand(1);
    Arguments arguments(*app_);
    arguments.Optional("--dir", &directory_,
                       "The installation (default: KOR_DIR, else the built-in)", "DIR");
    arguments.Optional("--host", &host_, "Ask the daemon at HOST:PORT, with mutual TLS",
                       "HOST:PORT");
    arguments.Optional("--certificate", &certificate_, "Who asks it, PEM", "FILE");
    arguments.Optional("--key", &key_, "The certificate's key, PEM", "FILE");
    arguments.Optional("--authorities", &authorities_, "Who signs the hosts' certificates, PEM",
                       "FILE");
    arguments.Flag("--json", &json_, "Answer in JSON: one object, or one a line for streams");
    app_->footer(
        "\nExit status: 0 done, 1 refused or failed, 2 wrong use, 3 no daemon,\n"
        "4 not found, 5 not permitted, 6 busy or vetoed, 7 outcome unknown, 8 partly done." +
        exampleText("oam --dir /opt/oam objects\noam board list --json"));
    for (const FamilyRow& row : Families()) {
        CLI::App* family = app_->add_subcommand(row.name, row.summary);
        family->require_subcommand(1);
        family->footer(exampleText(row.examples));
    }
    for (const CommandRow& row : AllCommands()) Add(row);
    // Another program's (fleet_program.h); here for the help and the completion.
    app_->add_subcommand(kFleetWord, "Many hosts: `oam fleet --help`")->prefix_command();
}

CommandLine::~CommandLine() = default;

void CommandLine::Add(const CommandRow& row) {
    CLI::App* parent = row.family ? app_->get_subcommand(row.family) : app_.get();
    CLI::App* app = parent->add_subcommand(row.name, row.summary);
    app->footer(exampleText(row.examples));
    choices_.push_back({app, row.make()});
    Arguments arguments(*app);
    choices_.back().command->DeclareArguments(arguments);
}

ExitStatus CommandLine::Execute(int argc, char** argv) {
    if (const auto words = FleetWords(argc, argv)) return RunFleetProgram(*words);
    // For shells, not for people: `oam complete LINE`.
    if (argc == 3 && std::string_view(argv[1]) == "complete") {
        CompleteFleetLine(argv[2]);
        PrintCompletion(*app_, argv[2]);
        return kDone;
    }
    try {
        app_->parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app_->exit(error) == 0 ? kDone : kUsage;
    }
    return Console(json_).StatusOf([&] { return RunChosen(titleOf(argc, argv)); });
}

ExitStatus CommandLine::RunChosen(const std::string& title) {
    const auto chosen = std::find_if(choices_.begin(), choices_.end(),
                                     [](const Choice& choice) { return choice.app->parsed(); });
    const Installation place = Installation::Locate(directory_);
    Console console(json_);
    Context context{place, console, title};
    chosen->command->CheckArguments();
    if (host_ || certificate_ || key_ || authorities_) {
        if (!host_ || !certificate_ || !key_ || !authorities_)
            throw UsageError("--host, --certificate, --key and --authorities go together");
        if (!chosen->command->ReachesHosts())
            throw UsageError("this is done on the host itself, without --host");
    }
    const RemoteHost host{host_.value_or(""), certificate_.value_or(""), key_.value_or(""),
                          authorities_.value_or("")};
    if (host_) context.host = &host;
    const ExitStatus status = chosen->command->Run(context);
    console.Flush();
    return status;
}

}  // namespace oam
