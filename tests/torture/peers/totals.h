// What all tests of this program together have come to, told at its end.
#pragma once

#include <cstddef>

namespace oam::torture {

struct Totals {
    std::size_t kills = 0;   // of peers, everywhere and at random
    std::size_t visits = 0;  // of foreign files
};
Totals& TheTotals();

}  // namespace oam::torture
