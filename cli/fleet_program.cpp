#include "fleet_program.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string_view>

#include "program_run.h"
#include "shell_words.h"

namespace oam {
namespace {

constexpr const char* kProgram = "oam-fleet";

// Those of the tool's own options that stand before a command with a value of their own.
constexpr std::string_view kWithValue[] = {"--dir", "--host", "--certificate", "--key",
                                           "--authorities"};

// Where the command stands; the end when there is none.
std::size_t commandIn(const std::vector<std::string>& words) {
    std::size_t at = 0;
    while (at < words.size() && words[at].starts_with("--")) {
        const bool hasValue = std::find(std::begin(kWithValue), std::end(kWithValue), words[at]) !=
                              std::end(kWithValue);
        at += hasValue ? 2 : 1;
    }
    return std::min(at, words.size());
}

std::string programPath() {
    return (std::filesystem::path(OwnPath()).parent_path() / kProgram).string();
}

void become(const std::vector<std::string>& words) {
    const std::string program = programPath();
    std::vector<char*> arguments{const_cast<char*>(program.c_str())};
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    execv(program.c_str(), arguments.data());
}

}  // namespace

std::optional<std::vector<std::string>> FleetWords(int argc, char** argv) {
    std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    const std::size_t at = commandIn(words);
    if (at == words.size() || words[at] != kFleetWord) return std::nullopt;
    words.erase(words.begin() + static_cast<std::ptrdiff_t>(at));
    return words;
}

ExitStatus RunFleetProgram(const std::vector<std::string>& words) {
    become(words);
    const int error = errno;
    std::fprintf(stderr, "oam: cannot run %s: %s\n", programPath().c_str(), std::strerror(error));
    if (error == ENOENT)
        std::fputs("     it comes with the package oam-fleet and is looked for beside this tool\n",
                   stderr);
    return kFailed;
}

void CompleteFleetLine(const std::string& line) {
    std::vector<std::string> words = ReadShellWords(line).before;
    if (words.empty()) return;
    words.erase(words.begin());
    const std::size_t at = commandIn(words);
    if (at < words.size() && words[at] == kFleetWord) become({"complete", line});
}

}  // namespace oam
