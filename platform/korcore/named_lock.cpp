#include "korcore/named_lock.h"

#include <cerrno>
#include <new>

#include "korcore/lock_record.h"

namespace {

// Every named lock of the process. Never destroyed: threads may outlive the exit handlers.
pthread_mutex_t s_registryMutex = PTHREAD_MUTEX_INITIALIZER;
KorNamedLock* s_registry = nullptr;
pthread_once_t s_forkHandlersOnce = PTHREAD_ONCE_INIT;
bool s_forkHandlersSet = false;

// Whether a lock would not wait; false where that cannot be seen. Not by trying: see deadline.cpp.
bool looksFree([[maybe_unused]] const pthread_mutex_t& mutex) {
#if defined(__GLIBC__)
    return __atomic_load_n(&mutex.__data.__lock, __ATOMIC_RELAXED) == 0;
#else
    return false;
#endif
}

bool trustRecord(void* data, size_t size, void*) { return korTrustLockRecord(data, size); }

bool replaceMutex(void* data, size_t, void* lostGeneration) {
    return korReplaceMutex(data, *static_cast<uint32_t*>(lostGeneration));
}

}  // namespace

KorNamedLock* KorNamedLock::Attach(const char* name) noexcept {
    pthread_once(&s_forkHandlersOnce, [] {
        s_forkHandlersSet = pthread_atfork(BeforeFork, AfterForkInParent, AfterForkInChild) == 0;
    });
    if (!s_forkHandlersSet) return nullptr;
    auto* lock = new (std::nothrow) KorNamedLock;
    if (lock == nullptr) return nullptr;
    // Opening may wait for other processes, so it is done before the registry is held.
    if (!lock->file_.Open(name, sizeof(KorLockRecord), korWriteLockRecord) ||
        !lock->file_.UnderLock(trustRecord, nullptr)) {
        delete lock;
        return nullptr;
    }
    return Share(lock);
}

// The file decides which lock it is, not the name: the directory may have changed since.
KorNamedLock* KorNamedLock::Share(KorNamedLock* candidate) noexcept {
    pthread_mutex_lock(&s_registryMutex);
    KorNamedLock* known = s_registry;
    while (known != nullptr && (known->lost_ || !known->file_.IsSameFile(candidate->file_))) {
        known = known->next_;
    }
    if (known != nullptr) {
        ++known->users_;
    } else {
        candidate->next_ = s_registry;
        s_registry = candidate;
    }
    pthread_mutex_unlock(&s_registryMutex);
    if (known == nullptr) return candidate;
    delete candidate;
    return known;
}

void KorNamedLock::Detach() noexcept {
    pthread_mutex_lock(&s_registryMutex);
    // Held by another thread it must stay mapped, since the system still follows that thread's
    // pointers to it; then it waits in the registry for its next user.
    if (--users_ == 0 && GiveBackWhatTheCallerHolds()) {
        KorNamedLock** link = &s_registry;
        while (*link != this) link = &(*link)->next_;
        *link = next_;
        delete this;
    }
    pthread_mutex_unlock(&s_registryMutex);
}

KorNamedLock::KorNamedLock() noexcept { MakeLevelInProcess(); }

KorNamedLock::~KorNamedLock() { pthread_mutex_destroy(&inProcess_); }

// None of these calls allocates, so none can fail.
void KorNamedLock::MakeLevelInProcess() noexcept {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    pthread_mutex_init(&inProcess_, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

bool KorNamedLock::Lock(unsigned timeout) noexcept {
    const KorDeadline deadline(timeout);
    if (!TakeLevelInProcess(deadline)) return false;
    if (depth_ > 0 || TakeLevelInFile(deadline)) {
        ++depth_;
        return true;
    }
    pthread_mutex_unlock(&inProcess_);
    return false;
}

// Taking the level in the process tells whether the caller is its owner.
void KorNamedLock::Unlock() noexcept {
    if (!TakeLevelInProcess(KorDeadline(0))) return;
    if (depth_ > 0) {
        if (--depth_ == 0) ReleaseLevelInFile();
        pthread_mutex_unlock(&inProcess_);
    }
    pthread_mutex_unlock(&inProcess_);
}

bool KorNamedLock::LockBriefly() noexcept { return Lock(kKorForever); }

// The caller holds it, so the level in the process need not be taken to find that out.
void KorNamedLock::UnlockBriefly() noexcept {
    if (--depth_ == 0) {
        if (wasFree_) {
            pthread_mutex_unlock(inFile_);
        } else {
            ReleaseLevelInFile();
        }
    }
    pthread_mutex_unlock(&inProcess_);
}

bool KorNamedLock::IsUsable() const noexcept { return !lost_ && file_.IsWhole(); }

bool KorNamedLock::TakeLevelInProcess(const KorDeadline& deadline) noexcept {
    const int result = deadline.Take(&inProcess_);
    if (result != EOWNERDEAD) return result == 0;
    // The thread that ended took its nesting with it; the level in the file it left as well.
    depth_ = 0;
    return pthread_mutex_consistent(&inProcess_) == 0;
}

bool KorNamedLock::TakeLevelInFile(const KorDeadline& deadline) noexcept {
    auto* record = static_cast<KorLockRecord*>(file_.Data());
    while (IsUsable()) {
        uint32_t generation = record->generation.load(std::memory_order_acquire);
        pthread_mutex_t* mutex = record->MutexOf(generation);
        wasFree_ = looksFree(*mutex);
        switch (deadline.Take(mutex)) {
            case EOWNERDEAD:
                // Were it not repaired by this, it would be lost to the next one, who replaces it.
                pthread_mutex_consistent(mutex);
                [[fallthrough]];
            case 0:
                if (record->generation.load(std::memory_order_acquire) == generation) {
                    inFile_ = mutex;
                    return true;
                }
                pthread_mutex_unlock(mutex);
                break;
            case ENOTRECOVERABLE:
                if (!file_.UnderLock(replaceMutex, &generation)) return false;
                break;
            default:
                return false;
        }
    }
    return false;
}

void KorNamedLock::ReleaseLevelInFile() noexcept {
    if (file_.IsWhole()) {
        pthread_mutex_unlock(inFile_);
        return;
    }
    lost_ = true;
    file_.GiveUp();
}

bool KorNamedLock::GiveBackWhatTheCallerHolds() noexcept {
    if (!TakeLevelInProcess(KorDeadline(0))) return false;
    while (depth_ > 0) Unlock();
    pthread_mutex_unlock(&inProcess_);
    return true;
}

void KorNamedLock::BeforeFork() noexcept { pthread_mutex_lock(&s_registryMutex); }

void KorNamedLock::AfterForkInParent() noexcept { pthread_mutex_unlock(&s_registryMutex); }

// The threads that may be in the locks do not exist in the child, and what its own thread held is
// still the parent's.
void KorNamedLock::AfterForkInChild() noexcept {
    for (KorNamedLock* lock = s_registry; lock != nullptr; lock = lock->next_) {
        lock->depth_ = 0;
        lock->MakeLevelInProcess();
    }
    pthread_mutex_unlock(&s_registryMutex);
}
