#include "korcore/lock_record.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

namespace {

// The attributes only take notes; whether the system has such mutexes, the making tells.
bool initialiseMutex(pthread_mutex_t* mutex) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    const bool made = pthread_mutex_init(mutex, &attributes) == 0;
    pthread_mutexattr_destroy(&attributes);
    return made;
}

// The kind steers what the C library does with a mutex, and no locking changes it. Another kind
// would make it stop the process or follow wild pointers.
bool isOurKind(const pthread_mutex_t& mutex) {
#if defined(__GLIBC__)
    pthread_mutex_t fresh;
    if (!initialiseMutex(&fresh)) return false;
    const bool same = mutex.__data.__kind == fresh.__data.__kind;
    pthread_mutex_destroy(&fresh);
    return same;
#else
    (void)mutex;
    return true;
#endif
}

bool isAllZero(const void* data, size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(data);
    return std::all_of(bytes, bytes + size, [](unsigned char byte) { return byte == 0; });
}

}  // namespace

bool korWriteLockRecord(void* data, size_t) noexcept {
    auto* record = static_cast<KorLockRecord*>(data);
    record->state.exchange(KorLockRecord::kMaking, std::memory_order_acq_rel);
    record->size = sizeof(KorLockRecord);
    record->generation.store(0, std::memory_order_relaxed);
    record->unused = 0;
    for (pthread_mutex_t& mutex : record->mutex) {
        if (!initialiseMutex(&mutex)) return false;
    }
    record->end = KorLockRecord::kEnd;
    record->state.store(KorLockRecord::kReady, std::memory_order_release);
    return true;
}

bool korTrustLockRecord(void* data, size_t size) noexcept {
    auto* record = static_cast<KorLockRecord*>(data);
    const uint32_t state = record->state.load(std::memory_order_acquire);
    if (state == KorLockRecord::kMaking || isAllZero(data, size)) {
        return korWriteLockRecord(data, size);
    }
    if (state != KorLockRecord::kReady || record->size != sizeof(KorLockRecord) ||
        record->end != KorLockRecord::kEnd) {
        return false;
    }
    // Who died while it made the next mutex has left it like this; nobody uses it yet.
    pthread_mutex_t* next = record->MutexOf(record->generation.load(std::memory_order_acquire) + 1);
    if (!isOurKind(*next) && !initialiseMutex(next)) return false;
    return std::all_of(std::begin(record->mutex), std::end(record->mutex), isOurKind);
}

bool korReplaceMutex(void* data, uint32_t lostGeneration) noexcept {
    auto* record = static_cast<KorLockRecord*>(data);
    if (record->generation.load(std::memory_order_acquire) != lostGeneration) return true;
    if (!initialiseMutex(record->MutexOf(lostGeneration + 1))) return false;
    record->generation.store(lostGeneration + 1, std::memory_order_release);
    return true;
}
