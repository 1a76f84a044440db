#include "korcore/mutex.h"

#include "korcore/deadline.h"
#include "korcore/named_lock.h"

CKorLightMutex::CKorLightMutex(int) noexcept {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&mutex_, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

CKorLightMutex::~CKorLightMutex() { pthread_mutex_destroy(&mutex_); }

bool CKorLightMutex::Lock(unsigned timeout) noexcept {
    if (timeout == kKorForever) return pthread_mutex_lock(&mutex_) == 0;
    return KorDeadline(timeout).Take(&mutex_) == 0;
}

void CKorLightMutex::Unlock() noexcept { pthread_mutex_unlock(&mutex_); }

CKorMutex::CKorMutex(int, const char* name, int) noexcept
    : named_(name != nullptr && name[0] != '\0') {
    if (named_) shared_ = KorNamedLock::Attach(name);
}

CKorMutex::~CKorMutex() {
    if (shared_ != nullptr) shared_->Detach();
}

bool CKorMutex::Lock(unsigned timeout) noexcept {
    if (!named_) return own_.Lock(timeout);
    return shared_ != nullptr && shared_->Lock(timeout);
}

void CKorMutex::Unlock() noexcept {
    if (!named_) {
        own_.Unlock();
    } else if (shared_ != nullptr) {
        shared_->Unlock();
    }
}

bool CKorMutex::LockBriefly() noexcept {
    if (!named_) return own_.Lock();
    return shared_ != nullptr && shared_->LockBriefly();
}

void CKorMutex::UnlockBriefly() noexcept {
    if (!named_) {
        own_.Unlock();
    } else if (shared_ != nullptr) {
        shared_->UnlockBriefly();
    }
}

bool CKorMutex::IsUsable() const noexcept {
    return !named_ || (shared_ != nullptr && shared_->IsUsable());
}
