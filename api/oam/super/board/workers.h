// Board requests: accepted by an entry point, carried out by a worker on a thread of its own or,
// when synchronized, in the caller's.
//
// A worker holds the table lock only while it reads and sets the board's state; the plug-in works
// with no lock held. The exception is a synchronized request for all boards, which holds manager
// and table lock, in that order, from its first board to its last.
#pragma once

#include "operations.h"

// Opens and closes the door for requests. A request that is still waiting for its thread when the
// door is closed is dropped, also when the door has been opened again since.
void openForRequests() noexcept;
void closeForRequests() noexcept;
bool isOpenForRequests() noexcept;

// Starts, 5 seconds later, every board that is marked for it, unless the door has been closed
// meanwhile.
void startMarkedBoardsLater() noexcept;
