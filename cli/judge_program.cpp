#include "judge_program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "failure.h"

namespace oam {
namespace {

constexpr const char* kProgram = "oam-plugin-check";
constexpr int kPassed = 0;
constexpr int kFindings = 1;

[[noreturn]] void failToRun(int error) {
    throw Failure(std::string("cannot run ") + kProgram + ": " + std::strerror(error),
                  "it comes with the plug-in kit and is looked for beside this tool");
}

// Beside this tool, as they are installed together.
std::string programPath() {
    std::error_code error;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? kProgram : (self.parent_path() / kProgram).string();
}

class Pipe {
  public:
    Pipe() {
        if (pipe2(ends_, O_CLOEXEC) != 0) failToRun(errno);
    }
    ~Pipe() {
        close(ends_[0]);
        CloseWriting();
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int Writing() const { return ends_[1]; }
    void CloseWriting() {
        if (ends_[1] >= 0) close(ends_[1]);
        ends_[1] = -1;
    }
    std::string ReadAll() const {
        std::string text;
        char block[4096];
        for (ssize_t got = 1; got != 0;) {
            got = read(ends_[0], block, sizeof block);
            if (got > 0) text.append(block, static_cast<size_t>(got));
            if (got < 0 && errno != EINTR) failToRun(errno);
        }
        return text;
    }

  private:
    int ends_[2];
};

pid_t start(const std::string& path, bool asJson, int output) {
    const std::string program = programPath();
    const char* const arguments[] = {program.c_str(), path.c_str(), asJson ? "--json" : nullptr,
                                     nullptr};
    posix_spawn_file_actions_t actions;
    if (int error = posix_spawn_file_actions_init(&actions)) failToRun(error);
    pid_t child = 0;
    int error = posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    if (error == 0)
        error = posix_spawn(&child, program.c_str(), &actions, nullptr,
                            const_cast<char* const*>(arguments), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) failToRun(error);
    return child;
}

int statusOf(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR) failToRun(errno);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

JudgeReport JudgeFile(const std::string& path, bool asJson) {
    Pipe pipe;
    const pid_t child = start(path, asJson, pipe.Writing());
    pipe.CloseWriting();
    std::string text = pipe.ReadAll();
    const int status = statusOf(child);
    if (status != kPassed && status != kFindings) throw Failure(Quoted(path) + " was not judged");
    return {status == kPassed, std::move(text)};
}

}  // namespace oam
