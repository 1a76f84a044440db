#include "child_process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace oam::test {
namespace {

constexpr int kLimit = 60'000;  // milliseconds without a sign of life

void closeOnce(int* descriptor) {
    if (*descriptor >= 0) close(*descriptor);
    *descriptor = -1;
}

void readFrom(int* descriptor, std::string* text) {
    char block[4096];
    const ssize_t length = read(*descriptor, block, sizeof block);
    if (length > 0)
        text->append(block, static_cast<size_t>(length));
    else if (length == 0 || errno != EINTR)
        closeOnce(descriptor);
}

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command, const std::string& directory) {
    int out[2], err[2];
    EXPECT_EQ(pipe2(out, O_CLOEXEC), 0);
    EXPECT_EQ(pipe2(err, O_CLOEXEC), 0);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, directory.c_str());
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err[1], STDERR_FILENO);
    std::vector<char*> arguments;
    for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    EXPECT_EQ(posix_spawn(&pid_, arguments[0], &actions, nullptr, arguments.data(), environ), 0)
        << "cannot run " << command[0];
    posix_spawn_file_actions_destroy(&actions);
    close(out[1]);
    close(err[1]);
    out_ = out[0];
    err_ = err[0];
}

ChildProcess::~ChildProcess() {
    closeOnce(&out_);
    closeOnce(&err_);
    if (pid_ <= 0) return;
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
}

void ChildProcess::Signal(int number) const { EXPECT_EQ(kill(pid_, number), 0); }

void ChildProcess::CloseOutput() { closeOnce(&out_); }

void ChildProcess::AwaitOutput(const std::string& text) { Await(text, "out"); }

void ChildProcess::AwaitError(const std::string& text) { Await(text, "err"); }

std::string ChildProcess::AwaitErrorLine(const std::string& text) {
    Await(text, "err");
    const std::size_t begin = result_.err.find(text);
    if (begin == std::string::npos) return "";
    const std::size_t end = begin + text.size();
    while (result_.err.find('\n', end) == std::string::npos)
        if (!ReadSome()) break;
    return result_.err.substr(end, result_.err.find('\n', end) - end);
}

bool ChildProcess::Says(const std::string& text) {
    while (result_.out.find(text) == std::string::npos)
        if (!ReadSome()) return false;
    return true;
}

Finished ChildProcess::Finish() {
    while (ReadSome()) {
    }
    int status = 0;
    EXPECT_EQ(waitpid(pid_, &status, 0), pid_);
    pid_ = -1;
    result_.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result_;
}

void ChildProcess::Await(const std::string& text, const std::string& where) {
    const std::string& from = where == "out" ? result_.out : result_.err;
    while (from.find(text) == std::string::npos)
        if (!ReadSome()) {
            ADD_FAILURE() << "never said: " << text << "\nout: " << result_.out
                          << "\nerr: " << result_.err;
            return;
        }
}

// False when nothing will come any more, or when the child is silent for too long.
bool ChildProcess::ReadSome() {
    if (out_ < 0 && err_ < 0) return false;
    pollfd events[] = {{out_, POLLIN, 0}, {err_, POLLIN, 0}};
    const int ready = poll(events, 2, kLimit);
    if (ready < 0) return errno == EINTR;
    if (ready == 0) {
        ADD_FAILURE() << "silent for too long\nout: " << result_.out << "\nerr: " << result_.err;
        kill(pid_, SIGKILL);
        return false;
    }
    if (events[0].revents) readFrom(&out_, &result_.out);
    if (events[1].revents) readFrom(&err_, &result_.err);
    return true;
}

}  // namespace oam::test
