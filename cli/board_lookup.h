// Finding a board by one of its identities: one option each, of which one is given.
#pragma once

#include <string>
#include <vector>

#include "board_identity.h"

namespace oam {

class Arguments;

class BoardLookup {
  public:
    void Declare(Arguments& arguments);
    void Check() const;
    BoardIdentity Given() const;

  private:
    // The row of the identity given.
    size_t Row() const;

    std::vector<std::vector<std::string>> values_;  // of each row; empty: not given
};

}  // namespace oam
