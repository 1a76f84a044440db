// The service's calls into plug-ins and components: those under way, and what all of them took.
// Any thread; waits for nothing, also while calls hang with the service's locks held.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace oam::server {

struct ForeignCall {
    std::string module;  // "sim.bpi"; empty: not known
    std::string entry;   // "StartBoard"
    std::string about;   // the board or object, or empty
    int thread;          // as the kernel numbers threads
    std::chrono::nanoseconds age;
};

// Oldest first.
std::vector<ForeignCall> ForeignCallsUnderWay();

struct ForeignEntryUse {
    std::string module;
    std::string entry;
    std::uint64_t calls;           // begun
    std::chrono::nanoseconds sum;  // of those that have returned
    std::uint64_t underWay;
    std::chrono::nanoseconds oldest;  // for how long the oldest of them has not returned; 0: none
};

// Of every entry that was ever called, by module.
std::vector<ForeignEntryUse> ForeignEntryUses();

}  // namespace oam::server
