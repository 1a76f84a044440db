#include "spawned.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <ostream>
#include <thread>

#include "support/watchdog.h"

namespace oam::torture {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kTimeToTell{20};

pid_t start(const std::vector<std::string>& words) {
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    const pid_t process = fork();
    if (process == 0) {
        // By itself the thread sanitizer waits a second at the end of each process.
        setenv("TSAN_OPTIONS", "atexit_sleep_ms=0", 0);
        execv(arguments[0], arguments.data());
        _exit(127);
    }
    return process;
}

bool awaitEnd(pid_t process, std::chrono::seconds limit, int* status) {
    const auto end = Clock::now() + limit;
    while (waitpid(process, status, WNOHANG) == 0) {
        if (Clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
}

}  // namespace

bool Ended::IsFine() const { return !isHung && WIFEXITED(status) && WEXITSTATUS(status) == 0; }

std::ostream& operator<<(std::ostream& out, const Ended& ended) {
    if (ended.isHung) return out << "did not end";
    if (WIFSIGNALED(ended.status)) return out << "ended by signal " << WTERMSIG(ended.status);
    return out << "ended with " << WEXITSTATUS(ended.status);
}

Ended RunToItsEnd(const std::vector<std::string>& words) {
    Ended ended;
    const pid_t process = start(words);
    if (awaitEnd(process, Watchdog::UsualLimit() / 2, &ended.status)) return ended;
    ended.isHung = true;
    kill(process, SIGUSR1);
    if (awaitEnd(process, kTimeToTell, &ended.status)) return ended;
    kill(process, SIGKILL);
    waitpid(process, &ended.status, 0);
    return ended;
}

void TellPlacesWhenAsked() {
    signal(SIGUSR1, [](int) { Watchdog::GiveUp("the process does not end"); });
}

}  // namespace oam::torture
