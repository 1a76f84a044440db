// The processes of the soak: the worker that is killed again and again, and the watcher that looks
// at the shadow all the while.
#pragma once

#include <string>

#include "oracle.h"

namespace oam::torture {

constexpr const char* kPlugin = "x.bpi";

// Makes the boards that the clients share.
int PrepareInstallation();

// Starts the service on what the last one left and reports what it found; then a byte goes into the
// pipe and the clients begin. It ends by itself only when something is wrong, which the oracle is
// told.
int RunWorker(Oracle& oracle, const std::string& root, unsigned long seed, int readyPipe);

// Another process's reader: what it sees of a change must be the whole of it.
int RunWatcher(Oracle& oracle);

}  // namespace oam::torture
