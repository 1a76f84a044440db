// A program that is not linked with the library, but loads it and lets it go again and again.
//
//   dlopen_user LIBRARY LIVES SEED
//
// In each life it starts the service and operations of the boards, stops the service (every fourth
// time: not) and lets the library go; another thread loads it and lets it go meanwhile. At the end
// it returns with the service running.
#include <dlfcn.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <thread>

#include "spawned.h"

#if defined(OAM_SANITIZED)
// A library that is loaded late has its threads' variables in memory that the system frees when it
// uses the stack of a thread again, which has ended. The thread sanitizer does not see that end.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions() { return "race:_dl_deallocate_tls\n"; }
#endif

namespace {

using Lifecycle = unsigned();
using Request = unsigned(const char*, unsigned);

template <class Function>
Function* find(void* library, const char* name) {
    auto* function = reinterpret_cast<Function*>(dlsym(library, name));
    if (function == nullptr) {
        fprintf(stderr, "%s\n", dlerror());
        exit(4);
    }
    return function;
}

void* load(const char* path) {
    void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        fprintf(stderr, "%s\n", dlerror());
        exit(5);
    }
    return library;
}

bool live(const char* path, std::mt19937& random) {
    void* const library = load(path);
    if (find<Lifecycle>(library, "_oamInit")() != 0) return false;
    if (find<Request>(library, "_oamStartBoard")(nullptr, 0) != 0) return false;
    if (find<Request>(library, "_oamTestBoard")(nullptr, 0) != 0) return false;
    std::this_thread::sleep_for(std::chrono::microseconds(random() % 3000));
    if (random() % 4 != 0 && find<Lifecycle>(library, "_oamExit")() != 0) return false;
    return dlclose(library) == 0;
}

std::atomic<bool> isEnding{false};

void loadMeanwhile(const char* path) {
    while (!isEnding) dlclose(load(path));
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 4) return 2;
    oam::torture::TellPlacesWhenAsked();
    std::mt19937 random(static_cast<unsigned>(atoi(arguments[3])));
    std::thread other(&loadMeanwhile, arguments[1]);
    bool isFine = true;
    for (int lives = atoi(arguments[2]); isFine && lives > 0; --lives) {
        isFine = live(arguments[1], random);
    }
    isEnding = true;
    other.join();
    if (!isFine || find<Lifecycle>(load(arguments[1]), "_oamInit")() != 0) return 1;
    return 0;
}
