// A forked child that runs a function, and the means to go step by step with it.
#pragma once

#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

// One process passes it, another awaits it.
class Baton {
  public:
    Baton() {
        if (pipe(ends_) != 0) abort();
    }
    ~Baton() {
        close(ends_[0]);
        close(ends_[1]);
    }
    Baton(const Baton&) = delete;
    Baton& operator=(const Baton&) = delete;

    void Pass() const {
        if (write(ends_[1], "x", 1) != 1) abort();
    }
    // False when it has not come in half a minute.
    [[nodiscard]] bool Await() const {
        pollfd end{ends_[0], POLLIN, 0};
        char passed = 0;
        return poll(&end, 1, 30000) == 1 && read(ends_[0], &passed, 1) == 1;
    }

  private:
    int ends_[2];
};

class ChildProcess {
  public:
    // The child ends with the function's result.
    explicit ChildProcess(const std::function<int()>& body) : id_(fork()) {
        if (id_ == 0) _exit(body());
    }
    ~ChildProcess() { Kill(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // Returns when the child is dead.
    void Kill() {
        if (id_ <= 0) return;
        kill(id_, SIGKILL);
        (void)Await();
    }
    // The result, or -1 when a signal ended the child.
    int Await() {
        int status = 0;
        const pid_t ended = waitpid(id_, &status, 0);
        id_ = 0;
        return ended > 0 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

  private:
    pid_t id_;
};
