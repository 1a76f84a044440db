#include "refused_mutexes.h"

#include <dlfcn.h>
#include <errno.h>
#include <pthread.h>

namespace {

int s_before = -1;  // so many are made; -1: all
bool s_hasHappened = false;

bool isShared(const pthread_mutexattr_t* attributes) {
    int shared = PTHREAD_PROCESS_PRIVATE;
    return attributes != nullptr && pthread_mutexattr_getpshared(attributes, &shared) == 0 &&
           shared == PTHREAD_PROCESS_SHARED;
}

}  // namespace

SharedMutexesRefused::SharedMutexesRefused(int from) {
    s_before = from - 1;
    s_hasHappened = false;
}
SharedMutexesRefused::~SharedMutexesRefused() { s_before = -1; }
bool SharedMutexesRefused::HasHappened() const { return s_hasHappened; }

extern "C" __attribute__((visibility("default"))) int pthread_mutex_init(
    pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes) noexcept {
    using Init = int (*)(pthread_mutex_t*, const pthread_mutexattr_t*);
    static const auto next = reinterpret_cast<Init>(dlsym(RTLD_NEXT, "pthread_mutex_init"));
    if (s_before >= 0 && isShared(attributes)) {
        s_hasHappened = s_before == 0;
        if (s_hasHappened) return ENOTSUP;
        --s_before;
    }
    return next(mutex, attributes);
}
