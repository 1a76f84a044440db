// What reading and replacing a file costs at the least: the system calls alone.
#pragma once

#include <string>

namespace oam::bench {

// open, fstat, read, close; the bytes, or -1.
long readWhole(const char* path, char* buffer, size_t size);
// Written beside, synced, renamed over, the directory synced.
bool replaceDurably(const std::string& path, const std::string& bytes);
// Gives the file another time, in the past: a change that is no longer new.
bool changeTime(const char* path);

}  // namespace oam::bench
