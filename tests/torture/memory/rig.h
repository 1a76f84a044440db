// Tries a row with every request for memory failing in turn, and judges what is left.
#pragma once

#include <cstddef>

#include "memory_fuse.h"
#include "row.h"

namespace oam::torture {

struct Figures {
    std::size_t requests = 0;  // points at which memory can fail
    std::size_t tried = 0;     // points tried, alone or lasting
    std::size_t wrong = 0;

    Figures& operator+=(const Figures& other);
};

// Fails the test for each wrong outcome. The world is as before when it returns.
Figures TryRow(World& world, const Row& row);

// Everything was asked for (OAM_TORTURE=full), not only what a minute allows.
bool IsFull();

}  // namespace oam::torture
