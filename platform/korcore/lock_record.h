// The contents of a named lock's file, and who may trust them.
//
//   offset  size  meaning
//        0     4  state: kReady; kMaking while the rest is being written; else not a lock of ours
//        4     4  size of the record, which tells builds apart that lay out a mutex differently
//        8     4  generation: mutex[generation % kMutexes] is the lock
//       12     4  unused
//       16    40  each of the mutexes: shared between processes, robust
//      176     8  kEnd, so that a record that was cut short and grown again is noticed
//
// A mutex that somebody unlocked without repairing it can never be locked again, and cannot be made
// anew in place either, since others may be looking at it. The next one takes over instead.
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstddef>
#include <cstdint>

struct KorLockRecord {
    static constexpr uint32_t kMaking = 0x6B6D7478;
    static constexpr uint32_t kReady = 0x4B4D5458;
    static constexpr uint64_t kEnd = 0x4B4F524D55544558;
    static constexpr uint32_t kMutexes = 4;

    std::atomic<uint32_t> state;
    uint32_t size;
    std::atomic<uint32_t> generation;
    uint32_t unused;
    pthread_mutex_t mutex[kMutexes];
    uint64_t end;

    pthread_mutex_t* MutexOf(uint32_t number) { return &mutex[number % kMutexes]; }
};

static_assert(std::atomic<uint32_t>::is_always_lock_free);

// The bytes are a mapped file of at least the record's size.

// Writes a free lock. Death on the way leaves a record that korTrustLockRecord completes.
bool korWriteLockRecord(void* data, size_t size) noexcept;

// Both under the file's lock. Whether the bytes are a lock of ours; what was never completed of one
// is written anew.
bool korTrustLockRecord(void* data, size_t size) noexcept;
// Goes on to the next mutex after the one of this generation, unless somebody has done so already.
bool korReplaceMutex(void* data, uint32_t lostGeneration) noexcept;
