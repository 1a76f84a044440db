#include "child_process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

namespace oam::test {

namespace {

constexpr int kPatienceMs = 60000;

struct Pipe {
    Pipe() { EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0); }
    int ends[2] = {-1, -1};
};

}  // namespace

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& arguments) {
    Pipe in;
    Pipe out;
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    process_ = fork();
    if (process_ == 0) {
        dup2(in.ends[0], STDIN_FILENO);
        dup2(out.ends[1], STDOUT_FILENO);
        execv(argv[0], argv.data());
        _exit(127);
    }
    EXPECT_GT(process_, 0);
    close(in.ends[0]);
    close(out.ends[1]);
    input_ = in.ends[1];
    output_ = out.ends[0];
    signal(SIGPIPE, SIG_IGN);
}

ChildProcess::~ChildProcess() {
    Kill();
    close(output_);
}

void ChildProcess::Say(const std::string& line) {
    const std::string whole = line + "\n";
    EXPECT_EQ(write(input_, whole.data(), whole.size()), static_cast<ssize_t>(whole.size()))
        << line;
}

std::string ChildProcess::Hear() {
    for (;;) {
        const size_t end = heard_.find('\n');
        if (end != std::string::npos) {
            const std::string line = heard_.substr(0, end);
            heard_.erase(0, end + 1);
            return line;
        }
        pollfd ready{output_, POLLIN, 0};
        char bytes[512];
        ssize_t count = 0;
        if (poll(&ready, 1, kPatienceMs) == 1) count = read(output_, bytes, sizeof bytes);
        if (count <= 0) {
            ADD_FAILURE() << "the program said nothing more";
            return {};
        }
        heard_.append(bytes, static_cast<size_t>(count));
    }
}

void ChildProcess::Kill() {
    if (process_ <= 0) return;
    kill(process_, SIGKILL);
    Await();
}

int ChildProcess::Finish() {
    if (process_ <= 0) return -1;
    close(input_);
    input_ = -1;
    return Await();
}

int ChildProcess::Await() {
    int status = 0;
    EXPECT_EQ(waitpid(process_, &status, 0), process_);
    process_ = -1;
    if (input_ >= 0) close(input_);
    input_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace oam::test
