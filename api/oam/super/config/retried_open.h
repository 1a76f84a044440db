// Opening an object that may be busy: tried again after a second, with the manager lock released in
// between so that whoever holds the object can close it.
#pragma once

#include "base/database_lock.h"
#include "oam/codes.h"
#include "zol/zol.h"

constexpr int kInternalAttempts = 11;

template <class Open>
oam_result openRetried(int attempts, Open open) noexcept {
    for (int attempt = 1;; ++attempt) {
        oam_result result;
        {
            oam::ManagerGuard hold;
            result = open();
        }
        if (result != OAMERR_ACCESS_DENIED || attempt == attempts) return result;
        // A thread that still holds the lock itself would keep everyone out while it waits.
        if (oam::ManagerMutex::Depth() > 0) return result;
        zolSleep(1);
    }
}
