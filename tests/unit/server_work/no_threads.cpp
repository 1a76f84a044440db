#include "no_threads.h"

#include <dlfcn.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <limits>

namespace {

constexpr int kNoEnd = std::numeric_limits<int>::max();

std::atomic<int> left{kNoEnd};

using Create = int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);

}  // namespace

namespace oam::server::test {

NoThreads::NoThreads(int given) { left = given; }

NoThreads::~NoThreads() { left = kNoEnd; }

}  // namespace oam::server::test

// Before the C library's own.
extern "C" __attribute__((visibility("default"))) int pthread_create(
    pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
    void* argument) noexcept {
    static const auto create = reinterpret_cast<Create*>(dlsym(RTLD_NEXT, "pthread_create"));
    if (left != kNoEnd && left-- <= 0) return EAGAIN;
    return create(thread, attributes, start, argument);
}
