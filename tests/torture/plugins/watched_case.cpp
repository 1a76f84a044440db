#include "watched_case.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace oam::torture {
namespace {

using Clock = std::chrono::steady_clock;

// Generous: only a hang needs it all.
#ifdef OAM_SANITIZED
constexpr std::chrono::seconds kDeadline{240};
#else
constexpr std::chrono::seconds kDeadline{60};
#endif

[[noreturn]] void fail(const char* what) {
    std::perror(what);
    std::abort();
}

int failedExpectations() {
    return ::testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
}

[[noreturn]] void runChild(int pipe, const std::function<void(const Watched&)>& body) {
    (void)prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int failedBefore = failedExpectations();  // the parent's
    body(Watched(pipe));
    std::fflush(nullptr);
    // Not exit: threads of the service may still be at work.
    _exit(failedExpectations() != failedBefore ? 1 : 0);
}

// What the child told last, when it has ended or the deadline is over: then false.
bool listen(int pipe, std::string* last) {
    const auto end = Clock::now() + kDeadline;
    std::string told;
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        struct pollfd wait = {.fd = pipe, .events = POLLIN, .revents = 0};
        const int ready = left.count() > 0 ? poll(&wait, 1, static_cast<int>(left.count())) : 0;
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0) return false;
        char block[512];
        const ssize_t got = read(pipe, block, sizeof block);
        if (got <= 0) return true;
        told.append(block, static_cast<size_t>(got));
        const size_t line = told.rfind('\n', told.size() - 2);
        *last = told.substr(line == std::string::npos ? 0 : line + 1);
        told = *last;
    }
}

int statusOf(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR) fail("waitpid");
    return status;
}

std::string describe(int status) {
    if (WIFSIGNALED(status)) return std::string("ended by ") + strsignal(WTERMSIG(status));
    return "ended with " + std::to_string(WEXITSTATUS(status));
}

}  // namespace

void Watched::Doing(const std::string& what) const {
    const std::string line = what + '\n';
    (void)!write(pipe_, line.data(), line.size());
}

Ending RunWatched(const std::string& name, const std::function<void(const Watched&)>& body) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) fail("pipe2");
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0) fail("fork");
    if (child == 0) {
        close(ends[0]);
        runChild(ends[1], body);
    }
    close(ends[1]);
    std::string last = "nothing yet\n";
    const bool hasEnded = listen(ends[0], &last);
    if (!hasEnded) kill(child, SIGKILL);
    const int status = statusOf(child);
    close(ends[0]);
    if (!hasEnded) {
        ADD_FAILURE() << name << " hangs in: " << last;
        return Ending::kHung;
    }
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return Ending::kRight;
    if (WIFEXITED(status) && WEXITSTATUS(status) == 1) {
        ADD_FAILURE() << name << " went wrong, as told above";
        return Ending::kWrong;
    }
    ADD_FAILURE() << name << ' ' << describe(status) << " in: " << last;
    return Ending::kCrashed;
}

}  // namespace oam::torture
