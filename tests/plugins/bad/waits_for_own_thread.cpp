// Under the manager lock, waits for a thread of its own that calls the service.
#include <thread>

#include "sound.h"

unsigned int OpenObject(unsigned long handle, unsigned int mode) {
    std::thread([] {
        unsigned long own = 0;
        if (!_oamOpenObject(OAM_INTERNAL_CLIENT, "Supervisor", &own, OAM_OPEN_READ))
            (void)_oamCloseObject(own);
    }).join();
    return SoundOpenObject(handle, mode);
}
