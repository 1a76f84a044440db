#include "stacks.h"

#include <execinfo.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "places.h"

namespace oam::torture {

namespace {

constexpr int kAskForStack = SIGUSR2;
constexpr int kDeepest = 64;
constexpr std::chrono::seconds kPatience{2};

std::atomic<int> answers{0};

void printOwnStack(int) {
    void* frames[kDeepest];
    backtrace_symbols_fd(frames, backtrace(frames, kDeepest), STDERR_FILENO);
    ++answers;
}

std::string systemsWord(const std::string& task, const char* file) {
    std::ifstream in(task + '/' + file);
    std::string line;
    std::getline(in, line);
    return line;
}

void printCall(pid_t thread) {
    for (const Place& place : AllPlaces()) {
        const char* call = place.call;
        if (place.thread != thread || call == nullptr) continue;
        fprintf(stderr, "in %s for %lld ms, ", call, static_cast<long long>(NowMs() - place.since));
    }
}

void printStack(const std::filesystem::path& task) {
    const pid_t thread = static_cast<pid_t>(std::stol(task.filename()));
    fprintf(stderr, "---- thread %d: ", thread);
    printCall(thread);
    fprintf(stderr, "waiting in \"%s\"\n", systemsWord(task, "wchan").c_str());
    const int before = answers;
    if (syscall(SYS_tgkill, getpid(), thread, kAskForStack) != 0) return;
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (answers == before && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

}  // namespace

void PrintAllStacks() {
    struct sigaction ask = {};
    ask.sa_handler = &printOwnStack;
    ask.sa_flags = SA_RESTART;
    sigaction(kAskForStack, &ask, nullptr);
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        printStack(task.path());
    }
}

}  // namespace oam::torture
