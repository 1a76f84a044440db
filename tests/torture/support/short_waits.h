// The waits of the service (zolSleep, zolSleepMs), a thousand times shorter: a second takes a
// millisecond. So the automatic start comes 5 milliseconds after the start, and what is pending at
// one moment and under way at the next meets everything else.
//
// The program's own functions stand before the platform's. Every program that uses them says so
// once.
#pragma once

namespace oam::torture {

// Nothing but a name that brings the functions into the program.
void UseShortWaits();

}  // namespace oam::torture
