#include "cli/fleet/fleet_line.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <map>
#include <sstream>

#include "arguments.h"
#include "cli/fleet/host_verbs.h"
#include "console.h"
#include "fleet/link/link.h"
#include "fleet/link/link_options.h"

namespace oam::fleet {
namespace {

constexpr const char* kSummary =
    "Looks at a fleet of hosts and asks its hosts for what `oam` asks one host for. It speaks "
    "with\n"
    "the servers of the fleet, and the agents of the hosts (oam-fleetd) speak with theirs.";

constexpr const char* kHost = "{host}";

std::string exampleText(const std::string& examples) {
    std::istringstream lines(examples);
    std::string text = "\nExamples:";
    for (std::string line; std::getline(lines, line);) text += "\n  " + line;
    return text;
}

// "oam board start Left" as the fleet has it.
std::string onHosts(const std::string& examples) {
    std::istringstream lines(examples);
    std::string text;
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("oam "))
            text +=
                (text.empty() ? "" : "\n") + ("oam fleet" + line.substr(3)) + " --host 'rack-7-*'";
    return text;
}

// Where the settings lie when the command line does not say.
std::string usualSettings() {
    const char* const given = std::getenv("OAM_FLEET_CONFIG");
    return given != nullptr ? given : "/etc/oam/fleet.conf";
}

std::vector<std::string> forHost(std::vector<std::string> words, const std::string& host) {
    for (std::string& word : words)
        for (std::size_t at = 0; (at = word.find(kHost, at)) != word.npos; at += host.size())
            word.replace(at, std::string_view(kHost).size(), host);
    return words;
}

}  // namespace

FleetLine::FleetLine() : FleetLine(nullptr) {}

FleetLine::FleetLine(const CommandRow* verb)
    : app_(std::make_unique<CLI::App>(kSummary, "oam fleet")) {
    app_->fallthrough();
    app_->require_subcommand(1);
    AddLinkOptions(*app_, &options_.link);
    app_->add_option("--as", options_.caller,
                     "Your name to the hosts (default: as the server knows your certificate)")
        ->type_name("NAME");
    app_->add_option("--host", options_.hosts, "Which hosts: names or patterns, with commas")
        ->type_name("PATTERN")
        ->allow_extra_args(false);
    app_->add_option("--patience", options_.patience,
                     "Seconds in which a host must be heard of (default 4)")
        ->check(CLI::Range(1U, 3600U))
        ->type_name("N");
    app_->add_flag("--json", options_.json,
                   "Answer in JSON: one object, or one a line for streams");
    app_->set_config("--config", usualSettings(), "Read settings from this file");
    app_->allow_config_extras(CLI::config_extras_mode::error);
    app_->footer(
        "\nExit status: 0 done, 1 refused or failed, 2 wrong use, 3 no server or no answer,\n"
        "4 not found, 5 not permitted, 8 partly done; else as the verb of one host." +
        exampleText("oam fleet hosts\noam fleet board start --all --host 'rack-7-*' --json"));
    if (verb == nullptr)
        for (const auto family : {LookCommands, AlertsCommands, KeeperCommands})
            for (const FleetRow& row : family()) AddOwn(row);
    for (const CommandRow& row : AllCommands())
        if (verb == nullptr ? IsHostVerb(row) : row.make == verb->make) AddVerb(row);
}

FleetLine::~FleetLine() = default;

void FleetLine::AddOwn(const FleetRow& row) {
    CLI::App* const app = app_->add_subcommand(row.name, row.summary);
    app->footer(exampleText(row.examples));
    own_.push_back({app, row.make()});
    Arguments arguments(*app);
    own_.back().command->DeclareArguments(arguments);
}

void FleetLine::AddVerb(const CommandRow& row) {
    CLI::App* parent = app_.get();
    if (row.family != nullptr) {
        const auto known = app_->get_subcommands(
            [&](const CLI::App* app) { return app->get_name() == row.family; });
        for (const FamilyRow& family : Families()) {
            if (family.name != std::string_view(row.family)) continue;
            parent =
                known.empty() ? app_->add_subcommand(family.name, family.summary) : known.front();
            parent->require_subcommand(1);
        }
    }
    CLI::App* const app = parent->add_subcommand(row.name, row.summary);
    app->footer(exampleText(onHosts(row.examples)));
    verbs_.push_back({app, row, row.make()});
    Arguments arguments(*app);
    verbs_.back().command->DeclareArguments(arguments);
}

void FleetLine::Read(const std::vector<std::string>& words) {
    // The library takes them from the end.
    std::vector<std::string> reversed(words.rbegin(), words.rend());
    app_->parse(reversed);
    options_.link.name = "oam fleet";
}

ExitStatus FleetLine::Execute(const std::vector<std::string>& words) {
    try {
        Read(words);
    } catch (const CLI::ParseError& error) {
        return app_->exit(error) == 0 ? kDone : kUsage;
    }
    return Console(options_.json).StatusOf([&] { return RunChosen(words); });
}

ExitStatus FleetLine::RunChosen(const std::vector<std::string>& words) {
    if (const std::string why = WhyNotAllowed(options_.link); !why.empty()) throw UsageError(why);
    Console console(options_.json);
    FleetContext context{options_, console};
    ExitStatus status = kFailed;
    for (const Own& own : own_)
        if (own.app->parsed()) {
            own.command->CheckArguments();
            status = own.command->Run(context);
        }
    for (const Verb& verb : verbs_)
        if (verb.app->parsed()) status = RunVerb(context, verb, words);
    console.Flush();
    return status;
}

ExitStatus FleetLine::RunVerb(FleetContext& context, const Verb& verb,
                              const std::vector<std::string>& words) {
    std::string title = "oam fleet";
    for (const std::string& word : words) title += ' ' + word;
    const bool namesEachHost = title.find(kHost) != title.npos;
    const auto make = [&](const std::string& host) {
        FleetLine line(&verb.row);
        line.Read(forHost(words, host));
        return std::move(line.verbs_.front().command);
    };
    return RunHostVerb(context, verb.row, title, make, namesEachHost);
}

std::unique_ptr<Link> Connect(const FleetOptions& options) {
    return std::make_unique<Link>(options.link, NameOfClient(options.link));
}

}  // namespace oam::fleet
