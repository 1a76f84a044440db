// In the place of the platform's wait, in this program: a stop gives its notice of 150 ms for each
// board, and an import stops them all. A thousandth of it lets a short life see many imports.
#include <time.h>

#include "zol/zol.h"

void zolSleepMs(unsigned milliseconds) noexcept {
    const timespec notice{0, static_cast<long>(milliseconds) * 1000};
    nanosleep(&notice, nullptr);
}
