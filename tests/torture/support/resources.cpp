#include "resources.h"

#include <malloc.h>

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#ifdef OAM_SANITIZED
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace oam::torture {

namespace {

constexpr std::chrono::seconds kLimit{60};

int entriesOf(const char* directory) {
    const std::filesystem::directory_iterator entries(directory);
    return static_cast<int>(std::distance(begin(entries), end(entries)));
}

long residentKb() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        long value = 0;
        if (word == "VmRSS:" && status >> value) return value;
    }
    return 0;
}

long heapBytes() {
#ifdef OAM_SANITIZED
    return static_cast<long>(__sanitizer_get_current_allocated_bytes());
#else
    const struct mallinfo2 heap = mallinfo2();
    return static_cast<long>(heap.uordblks + heap.hblkhd);
#endif
}

int threads() { return entriesOf("/proc/self/task"); }

}  // namespace

Resources LookAtResources() {
    Resources found;
    found.threads = threads();
    found.descriptors = entriesOf("/proc/self/fd");
    found.residentKb = residentKb();
    found.heapBytes = heapBytes();
    return found;
}

std::ostream& operator<<(std::ostream& out, const Resources& resources) {
    return out << resources.residentKb << " KB resident, " << resources.heapBytes
               << " bytes allocated, " << resources.descriptors << " descriptors, "
               << resources.threads << " threads";
}

bool AwaitThreads(int most) {
    const auto end = std::chrono::steady_clock::now() + kLimit;
    while (threads() > most) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

}  // namespace oam::torture
