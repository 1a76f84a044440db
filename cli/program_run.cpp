#include "program_run.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <thread>

namespace oam {

ProgramRun RunProgram(const std::vector<std::string>& command, const std::string& output,
                      const std::string& errors, std::chrono::milliseconds limit) {
    constexpr int kHow = O_WRONLY | O_CREAT | O_TRUNC;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), kHow, 0600);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errors.c_str(), kHow, 0600);
    std::vector<char*> words;
    for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
    words.push_back(nullptr);
    pid_t child = 0;
    const int failed = posix_spawnp(&child, words[0], &actions, nullptr, words.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ProgramRun run;
    if (failed != 0) return run;
    const auto deadline = std::chrono::steady_clock::now() + limit;
    int status = 0;
    for (;;) {
        const pid_t ended = waitpid(child, &status, WNOHANG);
        if (ended == child) break;
        if (ended < 0 && errno != EINTR) return run;
        if (!run.isLate && std::chrono::steady_clock::now() >= deadline) {
            run.isLate = true;
            kill(child, SIGKILL);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    if (WIFEXITED(status)) run.status = WEXITSTATUS(status);
    return run;
}

std::string OwnPath() {
    std::error_code error;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? "oam" : self.string();
}

}  // namespace oam
