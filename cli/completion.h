// What can stand at the end of a command line that is being typed: commands and options as the
// command line declares them, names as the installation has them. For a shell's completion, so it
// is silent and quick, whatever goes wrong.
#pragma once

#include <string>

namespace CLI {
class App;
}

namespace oam {

// Prints what kind of answer it is ("words"; "nospace": no blank follows; "files": the shell's own
// business), then the candidates, a line each, quoted as the end of the line needs it.
void PrintCompletion(CLI::App& app, const std::string& line);

// The same of a line of `oam fleet`, whose commands these are; no names, since they lie elsewhere.
void PrintFleetCompletion(CLI::App& app, const std::string& line);

}  // namespace oam
