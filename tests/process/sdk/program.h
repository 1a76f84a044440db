// A program run to its end, with what it wrote.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace oam::test {

struct ProgramOutcome {
    int status;  // or -1 when a signal ended it
    std::string out;
    std::string err;
};

// In the directory, where also its output lies; with `environment` ("NAME=value") added to ours.
ProgramOutcome RunProgram(const std::vector<std::string>& arguments,
                          const std::filesystem::path& directory,
                          const std::vector<std::string>& environment = {});

std::string ReadText(const std::filesystem::path& file);

}  // namespace oam::test
