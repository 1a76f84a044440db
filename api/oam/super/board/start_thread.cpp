#include "start_thread.h"

#include <pthread.h>

#include <memory>
#include <new>

namespace {

struct Call {
    void (*function)(void*);
    void* argument;
};

void* run(void* call) noexcept {
    const std::unique_ptr<Call> owned(static_cast<Call*>(call));
    owned->function(owned->argument);
    return nullptr;
}

}  // namespace

int startThread(void (*function)(void*), void* argument) noexcept {
    std::unique_ptr<Call> call(new (std::nothrow) Call{function, argument});
    if (call == nullptr) return -1;
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0) return -1;
    (void)pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_t thread;
    const bool started = pthread_create(&thread, &attributes, &run, call.get()) == 0;
    (void)pthread_attr_destroy(&attributes);
    if (!started) return -1;
    (void)call.release();
    return 0;
}
