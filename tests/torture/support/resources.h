// What a process has of memory, descriptors and threads.
#pragma once

#include <ostream>

namespace oam::torture {

struct Resources {
    long residentKb = 0;  // VmRSS
    long heapBytes = 0;   // allocated and not freed, of all threads
    int descriptors = 0;
    int threads = 0;
};

Resources LookAtResources();
std::ostream& operator<<(std::ostream& out, const Resources& resources);

// Waits until the process has so few threads; false when the limit is over.
bool AwaitThreads(int most);

// A sanitizer keeps memory of its own, so that VmRSS says nothing of the library's.
constexpr bool kHasMeaningfulResident =
#ifdef OAM_SANITIZED
    false;
#else
    true;
#endif

}  // namespace oam::torture
