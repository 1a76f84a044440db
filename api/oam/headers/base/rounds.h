// A loop over a table while foreign code is called that may add to it: it ends, also when something
// new is there after every round.
#pragma once

namespace oam {

class Rounds {
  public:
    // `count` is what the table holds at the beginning; as many again may be made meanwhile.
    explicit Rounds(int count) noexcept : left_(2 * count) {}

    // False when as many rounds are over as there is reason for.
    bool Next() noexcept { return left_-- > 0; }

  private:
    int left_;
};

}  // namespace oam
