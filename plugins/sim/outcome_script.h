// How a board's operations end, one after the other: "ok, fail, hang 2s, code 0x50001234".
//
//   ok          the operation succeeds after its usual time
//   fail        it fails after its usual time, with the code that the service has for it
//   hang TIME   the board does not answer for that time, then the operation fails
//   code 0xN    it fails after its usual time, with that code
//
// Each operation takes the next outcome; the last one stays for all later ones.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "oam/codes.h"

namespace oam::sim {

struct Outcome {
    enum class Kind { Succeed, Fail, Hang, Code };

    Kind kind = Kind::Succeed;
    std::chrono::milliseconds hang{0};
    oam_result code = OAM_SUCCESS;

    friend bool operator==(const Outcome&, const Outcome&) = default;
};

class OutcomeScript {
  public:
    static constexpr std::size_t kLongest = 64;

    // Nothing when a step is not one of the above, or there are none or more than kLongest.
    static std::optional<OutcomeScript> Parse(std::string_view text);

    // Nothing when there is no script.
    std::optional<Outcome> TakeNext();

    // Whether the same steps are written, wherever each has got to.
    bool SameSteps(const OutcomeScript& other) const { return steps_ == other.steps_; }

  private:
    std::vector<Outcome> steps_;
    std::size_t next_ = 0;
};

}  // namespace oam::sim
