// Threads that nobody waits for.
#pragma once

// Runs the function on a detached thread of its own; 0, or -1 when there can be none.
int startThread(void (*function)(void*), void* argument) noexcept;
