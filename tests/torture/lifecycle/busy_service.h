// A service at work, for a process that is about to end: request threads that never end, operations
// of the boards and the automatic start, and a receiver that reads.
#pragma once

#include <functional>

namespace oam::torture {

// Starts the service where the environment says. False when that fails.
bool StartBusyService(unsigned seed);

// The request threads come to rest and stay there; what the boards do goes on.
void StopRequests();

// Called by the receiver, on whatever thread and under whatever locks, with the next alert that the
// outcome of an operation is.
void AtNextOutcome(void (*function)());

}  // namespace oam::torture
