// Has functions of its own with names that a host has: one that the service exports, and an entry
// that it calls itself. Built as anybody would build a shared object, they are bound to the host's.
#include <cstdarg>

#include "sound.h"

namespace {

int calls = 0;

}  // namespace

extern "C" __attribute__((visibility("default"))) void DebugOutput(const char*, ...) noexcept {
    ++calls;
}

unsigned int Init(const char* fileName) {
    ++calls;
    return SoundInit(fileName);
}

// Answers how many of its own functions it has reached.
unsigned int TestBoard(const char*, unsigned int test) {
    if (test != 1000) return SoundTestBoard("", test);
    calls = 0;
    DebugOutput("reached");
    (void)Init("");
    return static_cast<unsigned int>(calls);
}
