// What somebody leaves of a named lock who unlocks it after a death without repairing: a mutex that
// nobody can lock any more.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>

#include <cerrno>
#include <string>
#include <thread>

#include "child_process.h"
#include "korcore/lock_record.h"

// 0 when it is done. Another process does it.
inline int spoilLock(const std::string& path) {
    ChildProcess spoiler([&] {
        const int file = open(path.c_str(), O_RDWR | O_CLOEXEC);
        void* data =
            mmap(nullptr, sizeof(KorLockRecord), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        auto* record = static_cast<KorLockRecord*>(data);
        pthread_mutex_t* lock = record->MutexOf(record->generation);
        std::thread([&] { pthread_mutex_lock(lock); }).join();
        if (pthread_mutex_lock(lock) != EOWNERDEAD) return 1;
        pthread_mutex_unlock(lock);
        return pthread_mutex_lock(lock) == ENOTRECOVERABLE ? 0 : 2;
    });
    return spoiler.Await();
}
