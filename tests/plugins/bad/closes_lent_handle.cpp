// Closes the handle that the service is about to close.
#include "sound.h"

unsigned int CloseObject(unsigned long handle) {
    (void)_oamDbCloseObject(handle);
    return SoundCloseObject(handle);
}
