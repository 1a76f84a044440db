#include "held_threads.h"

#include <dlfcn.h>
#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <deque>
#include <mutex>
#include <thread>

#include "memory_fuse.h"
#include "thread_fuse.h"
#include "zol/zol.h"

namespace {

struct Held {
    void* (*start)(void*);
    void* argument;
};

std::mutex mutex;
std::deque<Held> waiting;
thread_local bool holding = false;

using Create = int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);

Create* realCreate() {
    static const auto function = reinterpret_cast<Create*>(dlsym(RTLD_NEXT, "pthread_create"));
    return function;
}

bool takeOne(Held* held) {
    std::lock_guard hold(mutex);
    if (waiting.empty()) return false;
    *held = waiting.front();
    waiting.pop_front();
    return true;
}

}  // namespace

namespace oam::torture {

HeldThreads::HeldThreads() noexcept { holding = true; }

HeldThreads::~HeldThreads() { holding = false; }

void RunHeldThreads() {
    Held held;
    while (takeOne(&held)) {
        std::thread([held] {
            const HeldThreads hold;
            held.start(held.argument);
        }).join();
    }
}

}  // namespace oam::torture

// Before the libraries' own, for every library of the process.
#define IN_FRONT extern "C" __attribute__((visibility("default")))

IN_FRONT int pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                            void* (*start)(void*), void* argument) noexcept {
    if (oam::torture::ThreadFuse::FailsNow()) return EAGAIN;
    if (!holding) return realCreate()(thread, attributes, start, argument);
    if (oam::torture::MemoryFuse::FailsNow()) return EAGAIN;
    std::lock_guard hold(mutex);
    waiting.push_back({start, argument});
    *thread = pthread_self();
    return 0;
}

IN_FRONT void zolSleep(unsigned) noexcept {}
IN_FRONT void zolSleepMs(unsigned) noexcept {}
IN_FRONT int fsync(int) { return 0; }
