// What the whole program has tried; the last line that it prints.
#pragma once

#include <cstddef>

#include "watched_case.h"

namespace oam::torture {

void Count(Ending ending);
// Cases that a test has in all, tried in this run or not.
void CountPoints(std::size_t points);

}  // namespace oam::torture
