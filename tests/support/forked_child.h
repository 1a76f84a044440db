// A forked child that runs a function, and is waited for with patience that ends.
//
// It dies with the process that made it, whatever becomes of that one.
#pragma once

#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>

namespace oam::test {

class ForkedChild {
  public:
    // The child ends with the function's result.
    explicit ForkedChild(const std::function<int()>& body) {
        std::fflush(nullptr);
        process_ = fork();
        if (process_ < 0) fail("fork");
        if (process_ == 0) {
            if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0) fail("prctl");
            _exit(body());
        }
        descriptor_ = static_cast<int>(syscall(SYS_pidfd_open, process_, 0));
        if (descriptor_ < 0) fail("pidfd_open");
    }
    ~ForkedChild() {
        Kill();
        close(descriptor_);
    }
    ForkedChild(const ForkedChild&) = delete;
    ForkedChild& operator=(const ForkedChild&) = delete;

    // Returns when it is dead.
    void Kill() {
        if (hasEnded_) return;
        kill(process_, SIGKILL);
        Reap();
    }

    // False when it still runs after that time.
    bool EndsWithin(std::chrono::microseconds time) {
        if (hasEnded_) return true;
        const auto nanoseconds = std::chrono::nanoseconds(time).count();
        const timespec patience{nanoseconds / 1000000000, nanoseconds % 1000000000};
        pollfd end{descriptor_, POLLIN, 0};
        if (ppoll(&end, 1, &patience, nullptr) != 1) return false;
        Reap();
        return true;
    }

    // Of one that has ended.
    bool WasKilled() const { return WIFSIGNALED(status_) && WTERMSIG(status_) == SIGKILL; }
    bool IsDone() const { return WIFEXITED(status_) && WEXITSTATUS(status_) == 0; }
    // As waitpid gives it.
    int Status() const { return status_; }

    pid_t Id() const { return process_; }
    // Becomes readable when it ends.
    int Descriptor() const { return descriptor_; }

  private:
    [[noreturn]] static void fail(const char* what) {
        std::perror(what);
        std::abort();
    }

    void Reap() {
        if (waitpid(process_, &status_, 0) != process_) fail("waitpid");
        hasEnded_ = true;
    }

    pid_t process_ = -1;
    int descriptor_ = -1;
    int status_ = 0;
    bool hasEnded_ = false;
};

}  // namespace oam::test
