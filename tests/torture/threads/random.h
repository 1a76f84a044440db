// Seeded chance: the same seed gives the same calls, if not the same interleaving.
#pragma once

#include <random>
#include <string>
#include <vector>

namespace oam::torture {

class Random {
  public:
    explicit Random(unsigned seed) : engine_(seed) {}

    unsigned Any() { return static_cast<unsigned>(engine_()); }
    unsigned Below(unsigned limit) { return Any() % limit; }
    bool OneIn(unsigned count) { return Below(count) == 0; }
    template <class List>
    const auto& OneOf(const List& list) {
        return list[Below(static_cast<unsigned>(std::size(list)))];
    }

  private:
    std::mt19937 engine_;
};

}  // namespace oam::torture
