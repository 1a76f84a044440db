// The system layer. Nothing here keeps state, so nothing here needs a lock.
#include "zol/zol.h"

#include <dlfcn.h>
#include <time.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

constexpr long kNanosecondsPerMillisecond = 1000000;
constexpr long kNanosecondsPerSecond = 1000000000;

// Towards a fixed end, so that an interrupted wait goes on without adding to the whole.
void waitFor(unsigned seconds, unsigned milliseconds) {
    timespec end{};
    clock_gettime(CLOCK_MONOTONIC, &end);
    end.tv_sec += seconds;
    end.tv_nsec += static_cast<long>(milliseconds) * kNanosecondsPerMillisecond;
    if (end.tv_nsec >= kNanosecondsPerSecond) {
        end.tv_nsec -= kNanosecondsPerSecond;
        ++end.tv_sec;
    }
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr) == EINTR) {
    }
}

}  // namespace

int zolGetKorDir(bool, char* buffer, unsigned size) noexcept {
    const char* set = std::getenv("KOR_DIR");
    std::string_view directory = set != nullptr && set[0] == '/' ? set : OAM_DEFAULT_DIR;
    while (directory.ends_with('/')) directory.remove_suffix(1);
    if (buffer == nullptr || directory.size() >= size) return 1;
    std::memcpy(buffer, directory.data(), directory.size());
    buffer[directory.size()] = '\0';
    return 0;
}

unsigned zolGetFunctionAddr(void* library, const char* name, void** address) noexcept {
    // A null handle would make dlsym search the whole program.
    if (library == nullptr || name == nullptr || address == nullptr) return ZOL_NO_SYMBOL;
    void* found = dlsym(library, name);
    if (found == nullptr) return ZOL_NO_SYMBOL;
    *address = found;
    return 0;
}

void zolSleep(unsigned seconds) noexcept { waitFor(seconds, 0); }

void zolSleepMs(unsigned milliseconds) noexcept {
    waitFor(milliseconds / 1000, milliseconds % 1000);
}

// Each letter is read once: a text in shared memory may change between two looks, and its end would
// be missed.
int zolStricmp(const char* left, const char* right) noexcept {
    if (left == right) return 0;
    if (left == nullptr) left = "";
    if (right == nullptr) right = "";
    for (;; ++left, ++right) {
        const char one = *left;
        const char other = *right;
        if (one == other) {
            if (one == '\0') return 0;
        } else if (const int difference = zolFold(one) - zolFold(other)) {
            return difference;
        }
    }
}

int zolStrnicmp(const char* left, const char* right, unsigned long count) noexcept {
    if (left == nullptr) left = "";
    if (right == nullptr) right = "";
    for (; count > 0; --count, ++left, ++right) {
        const char one = *left;
        const char other = *right;
        if (one == other) {
            if (one == '\0') return 0;
        } else if (const int difference = zolFold(one) - zolFold(other)) {
            return difference;
        }
    }
    return 0;
}
