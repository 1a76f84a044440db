// Stand-in for the platform's waiting: noted, and over at once.
#include "doors/doors.h"
#include "zol/zol.h"

void zolSleep(unsigned seconds) noexcept {
    (void)oam::test::Doors::The().Call("zolSleep", seconds);
}

void zolSleepMs(unsigned milliseconds) noexcept {
    (void)oam::test::Doors::The().Call("zolSleepMs", milliseconds);
}
