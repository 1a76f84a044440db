#include "program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <iterator>

namespace oam::test {
namespace {

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (auto& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> environmentWith(const std::vector<std::string>& more) {
    std::vector<std::string> all = more;
    for (char** row = environ; *row != nullptr; ++row) {
        const std::string name(*row, std::strcspn(*row, "=") + 1);
        bool isReplaced = false;
        for (const auto& text : more) isReplaced = isReplaced || text.starts_with(name);
        if (!isReplaced) all.emplace_back(*row);
    }
    return all;
}

}  // namespace

ProgramOutcome RunProgram(const std::vector<std::string>& arguments,
                          const std::filesystem::path& directory,
                          const std::vector<std::string>& environment) {
    const std::string out = directory / "stdout";
    const std::string err = directory / "stderr";
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, directory.c_str());
    constexpr int kNew = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), kNew, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), kNew, 0600);

    auto ownArguments = arguments;
    auto ownEnvironment = environmentWith(environment);
    pid_t child = -1;
    int status = -1;
    const int failed =
        posix_spawnp(&child, arguments[0].c_str(), &actions, nullptr,
                     pointersTo(ownArguments).data(), pointersTo(ownEnvironment).data());
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0) return {-1, "", std::strerror(failed)};
    (void)waitpid(child, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadText(out), ReadText(err)};
}

std::string ReadText(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace oam::test
