// One command of the tool: a row that says what it is, and an object that holds its arguments while
// the command line is read and then does it.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "failure.h"

namespace oam {

class Arguments;
class Console;
class Installation;
class Interruption;
class Service;
struct RemoteHost;

// Where the service of a command comes from when it is neither this host's nor one over TCP.
class ServiceSource {
  public:
    virtual ~ServiceSource() = default;
    virtual std::unique_ptr<Service> Open(Console& console, const Interruption& interruption) = 0;
};

struct Context {
    const Installation& place;
    Console& console;
    std::string title;                 // the command line, for the lock's other users
    const RemoteHost* host = nullptr;  // the daemon to ask; null: the installation's own, if any
    ServiceSource* source = nullptr;   // of that host's service; null: it is reached over TCP
    // Of somebody who runs several commands at a time; null: the command's own.
    const Interruption* interruption = nullptr;
};

class Command {
  public:
    virtual ~Command() = default;
    virtual void DeclareArguments(Arguments& arguments);
    // After the command line was read and before anything is done: a UsageError for arguments that
    // do not go together.
    virtual void CheckArguments();
    virtual ExitStatus Run(Context& context) = 0;
    // Whether it can be done on another host.
    virtual bool ReachesHosts() const { return false; }
};

// A command that needs the service running.
class ServiceCommand : public Command {
  public:
    ExitStatus Run(Context& context) final;
    bool ReachesHosts() const final { return true; }

  protected:
    virtual ExitStatus Work(Service& service, Console& console) = 0;

    // What cannot be done without one.
    virtual bool NeedsDaemon() const { return false; }

    // While no service is to be had: what the board shadow has of the answer. False when it has
    // nothing of it.
    virtual bool ShowShadow(Console&) { return false; }

    // While it works.
    const Installation& Place() const { return context_->place; }
    bool IsOnAnotherHost() const { return context_->host != nullptr; }
    bool IsInterrupted() const;

  private:
    ExitStatus RunOnService(Context& context);

    const Context* context_ = nullptr;
    const Interruption* interruption_ = nullptr;
};

struct CommandRow {
    const char* family;  // the word before the name, or null
    const char* name;
    const char* summary;
    const char* examples;  // command lines, one a line
    std::unique_ptr<Command> (*make)();
};

template <class T>
std::unique_ptr<Command> Make() {
    return std::make_unique<T>();
}

// The families, each in the file of its name.
std::span<const CommandRow> InitCommands();
std::span<const CommandRow> ObjectCommands();
std::span<const CommandRow> ChangeCommands();
std::span<const CommandRow> BoardCommands();
std::span<const CommandRow> BoardQueryCommands();
std::span<const CommandRow> BoardOperationCommands();
std::span<const CommandRow> ConfigCommands();
std::span<const CommandRow> MonitorCommands();
std::span<const CommandRow> InfoCommands();
std::span<const CommandRow> PluginCommands();
std::span<const CommandRow> DaemonCommands();

// What stands before a command's name.
struct FamilyRow {
    const char* name;
    const char* summary;
    const char* examples;
};
std::span<const FamilyRow> Families();
// All of the above and those with a header of their own, in the order of the help.
std::vector<CommandRow> AllCommands();

}  // namespace oam
