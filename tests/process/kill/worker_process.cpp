#include "worker_process.h"

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <sstream>

namespace {

struct Started {
    pid_t process;
    int output;
};

Started start(const std::vector<std::string>& arguments) {
    std::vector<char*> words{const_cast<char*>(KILL_WORKER)};
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    int ends[2];
    if (pipe(ends) != 0) return {-1, -1};
    const pid_t process = fork();
    if (process == 0) {
        dup2(ends[1], STDOUT_FILENO);
        close(ends[0]);
        close(ends[1]);
        execv(KILL_WORKER, words.data());
        _exit(127);
    }
    close(ends[1]);
    return {process, ends[0]};
}

// Everything up to the end of the output, or up to the deadline when there is one.
void readInto(std::string* text, int output, const std::chrono::steady_clock::time_point* until) {
    for (;;) {
        int wait = -1;
        if (until != nullptr) {
            const auto left = *until - std::chrono::steady_clock::now();
            if (left.count() <= 0) return;
            wait = static_cast<int>(
                       std::chrono::duration_cast<std::chrono::milliseconds>(left).count()) +
                   1;
        }
        pollfd ready{output, POLLIN, 0};
        if (poll(&ready, 1, wait) == 0) return;
        char block[4096];
        const ssize_t got = read(output, block, sizeof block);
        if (got <= 0) return;
        text->append(block, static_cast<size_t>(got));
    }
}

WorkerRun finish(const Started& started, const std::string& text) {
    WorkerRun run{};
    close(started.output);
    waitpid(started.process, &run.status, 0);
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (!lines.eof()) run.lines.push_back(line);  // a line that was cut says nothing
    }
    return run;
}

}  // namespace

WorkerRun runWorker(const std::vector<std::string>& arguments) {
    const Started started = start(arguments);
    std::string text;
    readInto(&text, started.output, nullptr);
    return finish(started, text);
}

WorkerRun killWorker(const std::vector<std::string>& arguments, std::chrono::microseconds after) {
    const Started started = start(arguments);
    std::string text(1, '\0');
    if (read(started.output, text.data(), 1) != 1) text.clear();
    const auto until = std::chrono::steady_clock::now() + after;
    readInto(&text, started.output, &until);
    kill(started.process, SIGKILL);
    readInto(&text, started.output, nullptr);
    return finish(started, text);
}
