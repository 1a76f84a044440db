// Writers and readers of one shadow, all at once, and what they hold each other to.
//
// A writer takes the lock, a number that nobody had, publishes that generation, and acknowledges
// it. So a reader finds the generation that was acknowledged last, or the one that was taken after
// it by a writer that died; and each of them whole.
#pragma once

#include <array>
#include <atomic>
#include <string>

#include "generation.h"

namespace oam::torture {

struct Storm {
    static constexpr std::size_t kPeers = 5;

    // Anonymous shared memory, all zero; it is never given back.
    static Storm& Make();

    // Under the shadow's lock.
    std::atomic<Generation> taken;
    std::atomic<Generation> acknowledged;

    std::array<std::atomic<std::uint64_t>, kPeers> rounds;  // of each peer
    std::atomic<bool> hasFault;
    char fault[2048];

    void Tell(const std::string& text);
    std::string Fault() const { return hasFault ? fault : ""; }
};

// Each works without end as the peer with this number, until it is killed.
int WriteInStorm(Storm& storm, std::size_t peer);
int ReadInStorm(Storm& storm, std::size_t peer);

}  // namespace oam::torture
