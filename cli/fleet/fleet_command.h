// One command about many hosts; the host's own verbs are not among them (host_verbs.h).
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "failure.h"
#include "fleet/link/link_settings.h"

namespace oam {
class Arguments;
class Console;
}  // namespace oam

namespace oam::fleet {

class Link;

struct FleetOptions {
    LinkSettings link;
    std::string caller;              // empty: as the server names this client
    std::vector<std::string> hosts;  // patterns; none: all
    unsigned patience = 4;           // seconds in which a host must be heard of
    bool json = false;

    std::string Caller() const { return caller.empty() ? NameOfClient(link) : caller; }
};

struct FleetContext {
    const FleetOptions& options;
    Console& console;
};

class FleetCommand {
  public:
    virtual ~FleetCommand() = default;
    virtual void DeclareArguments(Arguments&) {}
    // A UsageError for arguments that do not go together.
    virtual void CheckArguments() {}
    virtual ExitStatus Run(FleetContext& context) = 0;
};

struct FleetRow {
    const char* name;
    const char* summary;
    const char* examples;  // command lines, one a line
    std::unique_ptr<FleetCommand> (*make)();
};

template <class T>
std::unique_ptr<FleetCommand> MakeFleetCommand() {
    return std::make_unique<T>();
}

// The families, each in the file of its name.
std::span<const FleetRow> LookCommands();
std::span<const FleetRow> AlertsCommands();
std::span<const FleetRow> KeeperCommands();

// To the servers that the options name.
std::unique_ptr<Link> Connect(const FleetOptions& options);

}  // namespace oam::fleet
