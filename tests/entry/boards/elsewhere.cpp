#include "elsewhere.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <filesystem>
#include <iterator>

namespace oam::test {

namespace {

// The former default.
size_t setDefaultStackSize(size_t size) {
    pthread_attr_t attributes;
    EXPECT_EQ(pthread_getattr_default_np(&attributes), 0);
    size_t before = 0;
    EXPECT_EQ(pthread_attr_getstacksize(&attributes, &before), 0);
    EXPECT_EQ(pthread_attr_setstacksize(&attributes, size), 0);
    EXPECT_EQ(pthread_setattr_default_np(&attributes), 0);
    pthread_attr_destroy(&attributes);
    return before;
}

}  // namespace

NoNewThreads::NoNewThreads() : stackSize_(setDefaultStackSize(size_t{1} << 46)) {}

NoNewThreads::~NoNewThreads() { setDefaultStackSize(stackSize_); }

size_t ThreadCount() {
    const std::filesystem::directory_iterator threads("/proc/self/task");
    return static_cast<size_t>(std::distance(begin(threads), end(threads)));
}

bool WaitForThreads(size_t count) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (ThreadCount() > count) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

}  // namespace oam::test
