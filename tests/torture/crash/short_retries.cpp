// In the place of the platform's waits, in the rig of I/O errors: an open that an error makes look
// refused is tried again after a second, ten times, and an import gives every board a notice before
// it stops it; that would be most of the rig's time. A thousandth of it here. Longer waits stay as
// they are, so that the automatic start does not come in between the calls that are looked at.
#include <time.h>

#include "zol/zol.h"

void zolSleep(unsigned seconds) noexcept {
    const timespec wait = seconds == 1 ? timespec{0, 1000000} : timespec{seconds, 0};
    nanosleep(&wait, nullptr);
}

void zolSleepMs(unsigned milliseconds) noexcept {
    const timespec wait{0, static_cast<long>(milliseconds) * 1000};
    nanosleep(&wait, nullptr);
}
