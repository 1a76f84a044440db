#include "stepped_child.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <ucontext.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "support/forked_child.h"

namespace oam::torture {
namespace {

constexpr greg_t kTrapFlag = 0x100;
constexpr std::chrono::seconds kPatience{120};
constexpr std::size_t kMostFiles = 3;
constexpr std::size_t kMostChanges = 8192;
constexpr std::size_t kWatchedSize = 16384;

// One shared file as it was after the last step.
struct WatchedFile {
    const void* now;
    std::size_t size;
    unsigned char last[kWatchedSize];
};

struct Changes {
    std::size_t count;
    std::size_t at[kMostChanges];
};

// What a stepped child and the test share.
struct Steps {
    std::size_t made;
    std::size_t limit;
    bool isThrough;
    std::size_t files;
    std::array<WatchedFile, kMostFiles> file;
    Changes all;
    Changes ofFirst;
};

Steps& steps() {
    static Steps* const kSteps = [] {
        void* memory =
            mmap(nullptr, sizeof(Steps), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) std::abort();
        return static_cast<Steps*>(memory);
    }();
    return *kSteps;
}

void note(Changes& changes) {
    if (changes.count < kMostChanges) changes.at[changes.count++] = steps().made;
}

bool hasChanged(WatchedFile& file) {
    if (std::memcmp(file.now, file.last, file.size) == 0) return false;
    std::memcpy(file.last, file.now, file.size);
    return true;
}

void lookForChanges() {
    bool any = false;
    for (std::size_t i = 0; i < steps().files; ++i) {
        if (!hasChanged(steps().file[i])) continue;
        if (i == 0) note(steps().ofFirst);
        any = true;
    }
    if (any) note(steps().all);
}

// Comes after each instruction; its own are not stepped. The first one comes from the raise.
void stepMade(int, siginfo_t*, void* context) {
    auto& flags = static_cast<ucontext_t*>(context)->uc_mcontext.gregs[REG_EFL];
    if (steps().isThrough) {
        flags &= ~kTrapFlag;
        return;
    }
    lookForChanges();
    if (steps().made == steps().limit) kill(getpid(), SIGKILL);
    ++steps().made;
    flags |= kTrapFlag;
}

void watch(const std::string& path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) return;
    struct stat status = {};
    WatchedFile& file = steps().file[steps().files];
    if (fstat(descriptor, &status) != 0) std::abort();
    file.size = std::min(static_cast<std::size_t>(status.st_size), kWatchedSize);
    file.now = mmap(nullptr, file.size, PROT_READ, MAP_SHARED, descriptor, 0);
    if (file.now == MAP_FAILED) std::abort();
    close(descriptor);
    std::memcpy(file.last, file.now, file.size);
    ++steps().files;
}

int goInSteps(const std::function<void()>& prepare, const std::function<void()>& work,
              const std::vector<std::string>& watched) {
    prepare();
    for (const std::string& path : watched) watch(path);
    struct sigaction action = {};
    action.sa_sigaction = &stepMade;
    action.sa_flags = SA_SIGINFO;
    if (sigaction(SIGTRAP, &action, nullptr) != 0) return 1;
    raise(SIGTRAP);
    work();
    steps().isThrough = true;
    return kill(getpid(), SIGKILL);
}

void run(const std::function<void()>& prepare, const std::function<void()>& work,
         const std::vector<std::string>& watched, std::size_t limit) {
    steps().made = steps().files = steps().all.count = steps().ofFirst.count = 0;
    steps().isThrough = false;
    steps().limit = limit;
    test::ForkedChild child([&] { return goInSteps(prepare, work, watched); });
    if (child.EndsWithin(kPatience) && child.WasKilled()) return;
    std::fprintf(stderr, "the stepped child came to status %d\n", child.Status());
    std::abort();
}

}  // namespace

StepCount CountSteps(const std::function<void()>& prepare, const std::function<void()>& work,
                     const std::vector<std::string>& watched) {
    run(prepare, work, watched, ~std::size_t{0});
    const Changes& all = steps().all;
    const Changes& first = steps().ofFirst;
    return {steps().made, {all.at, all.at + all.count}, {first.at, first.at + first.count}};
}

void KillAfterSteps(const std::function<void()>& prepare, const std::function<void()>& work,
                    std::size_t limit) {
    run(prepare, work, {}, limit);
}

}  // namespace oam::torture
