#include "doors/system_door.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>

namespace {

struct Fault {
    const char* function = nullptr;
    int remaining = 0;
    int error = 0;
};

std::mutex faultMutex;
Fault fault;

// The error of the fault that happens now, or 0.
int happensNow(const char* function) {
    const std::lock_guard hold(faultMutex);
    if (fault.remaining == 0 || strcmp(fault.function, function) != 0) return 0;
    return --fault.remaining == 0 ? fault.error : 0;
}

bool failsNow(const char* function) {
    const int error = happensNow(function);
    if (error != 0) errno = error;
    return error != 0;
}

// Counts the threads that the room has made and that run still. Never destroyed.
struct Threads {
    std::mutex mutex;
    std::condition_variable changed;
    int running = 0;

    static Threads& The() {
        static Threads& threads = *new Threads;
        return threads;
    }
    void Add(int change) {
        {
            const std::lock_guard hold(mutex);
            running += change;
        }
        changed.notify_all();
    }
};

struct ThreadBody {
    void* (*function)(void*);
    void* argument;
};

void* runCounted(void* body) {
    const std::unique_ptr<ThreadBody> owned(static_cast<ThreadBody*>(body));
    void* result = owned->function(owned->argument);
    Threads::The().Add(-1);
    return result;
}

}  // namespace

namespace oam::test {

bool WaitForThreads() {
    Threads& threads = Threads::The();
    std::unique_lock hold(threads.mutex);
    return threads.changed.wait_for(hold, std::chrono::seconds(30),
                                    [&] { return threads.running == 0; });
}

SystemFault::SystemFault(const char* function, int nth, int error) noexcept {
    const std::lock_guard hold(faultMutex);
    fault = {function, nth, error};
}

SystemFault::~SystemFault() {
    const std::lock_guard hold(faultMutex);
    fault = {};
}

bool SystemFault::HasHappened() const noexcept {
    const std::lock_guard hold(faultMutex);
    return fault.remaining == 0;
}

}  // namespace oam::test

// The run-time library of a sanitizer calls them too.
#define VISIBLE __attribute__((visibility("default")))

#define WRAP(result, name, parameters, arguments)                  \
    extern "C" result __real_##name parameters;                    \
    extern "C" VISIBLE result __wrap_##name parameters;            \
    extern "C" result __wrap_##name parameters {                   \
        return failsNow(#name) ? -1 : __real_##name arguments;     \
    }

WRAP(int, rename, (const char* from, const char* to), (from, to))
WRAP(int, remove, (const char* path), (path))
WRAP(int, fsync, (int descriptor), (descriptor))
WRAP(int, link, (const char* from, const char* to), (from, to))
WRAP(int, mkdir, (const char* path, mode_t mode), (path, mode))
WRAP(int, access, (const char* path, int mode), (path, mode))

// A failed close has closed all the same.
extern "C" int __real_close(int descriptor);
extern "C" VISIBLE int __wrap_close(int descriptor);
extern "C" int __wrap_close(int descriptor) {
    const int error = happensNow("close");
    const int result = __real_close(descriptor);
    if (error == 0) return result;
    errno = error;
    return -1;
}

extern "C" int __real_open(const char* path, int flags, ...);
extern "C" VISIBLE int __wrap_open(const char* path, int flags, ...);
extern "C" int __wrap_open(const char* path, int flags, ...) {
    if (failsNow("open")) return -1;
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return __real_open(path, flags, mode);
}

extern "C" int __real_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
extern "C" VISIBLE int __wrap_pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*),
                                             void*);
extern "C" int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes,
                                     void* (*function)(void*), void* argument) {
    const int error = happensNow("pthread_create");
    if (error != 0) return error;
    auto body = std::make_unique<ThreadBody>(ThreadBody{function, argument});
    Threads::The().Add(1);
    const int failed = __real_pthread_create(thread, attributes, &runCounted, body.get());
    if (failed != 0) {
        Threads::The().Add(-1);
    } else {
        (void)body.release();
    }
    return failed;
}
