// Another program, run for a while with its output in files.
#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace oam {

struct ProgramRun {
    int status = -1;      // the exit status; -1: a signal, or it could not be run
    bool isLate = false;  // it was ended, since it took too long
};

// `command` begins with the program's path, or its name to look for. A path that cannot be written
// is no run.
ProgramRun RunProgram(const std::vector<std::string>& command, const std::string& output,
                      const std::string& errors, std::chrono::milliseconds limit);

// This program's own path.
std::string OwnPath();

}  // namespace oam
