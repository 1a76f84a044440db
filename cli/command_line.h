// The command line: which command, on which installation, in which form of output.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "command.h"

namespace CLI {
class App;
}

namespace oam {

class CommandLine {
  public:
    CommandLine();
    ~CommandLine();

    // Reads it, does the command, tells what went wrong; the status is the process's.
    ExitStatus Execute(int argc, char** argv);

  private:
    struct Choice {
        CLI::App* app;
        std::unique_ptr<Command> command;
    };

    void Add(const CommandRow& row);
    ExitStatus RunChosen(const std::string& title);

    std::unique_ptr<CLI::App> app_;
    std::vector<Choice> choices_;
    std::optional<std::string> directory_;
    // The last three are needed with the first, and only then.
    std::optional<std::string> host_, certificate_, key_, authorities_;
    bool json_ = false;
};

}  // namespace oam
