// The command line of `oam fleet`: its own commands, and every verb of a host with --host.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "cli/fleet/fleet_command.h"
#include "command.h"

namespace CLI {
class App;
}

namespace oam::fleet {

class FleetLine {
  public:
    FleetLine();
    ~FleetLine();
    FleetLine(const FleetLine&) = delete;
    FleetLine& operator=(const FleetLine&) = delete;

    // Reads it, does the command, tells what went wrong; the status is the process's.
    ExitStatus Execute(const std::vector<std::string>& words);

    // For completion.
    CLI::App& App() { return *app_; }

  private:
    struct Own {
        CLI::App* app;
        std::unique_ptr<FleetCommand> command;
    };
    struct Verb {
        CLI::App* app;
        CommandRow row;
        std::unique_ptr<Command> command;
    };

    // With `verb` the one host verb alone, else all there is.
    explicit FleetLine(const CommandRow* verb);
    void AddOwn(const FleetRow& row);
    void AddVerb(const CommandRow& row);
    void Read(const std::vector<std::string>& words);
    ExitStatus RunChosen(const std::vector<std::string>& words);
    ExitStatus RunVerb(FleetContext& context, const Verb& verb,
                       const std::vector<std::string>& words);

    std::unique_ptr<CLI::App> app_;
    FleetOptions options_;
    std::vector<Own> own_;
    std::vector<Verb> verbs_;
};

}  // namespace oam::fleet
