// A sensor's readings over the time since the board was started: "350, 600 after 10s, 900 after
// 1m".
//
// Each value holds until the next one's time; a board that does not run shows the first.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace oam::sim {

class Curve {
  public:
    static constexpr std::size_t kLongest = 64;

    explicit Curve(int value) : steps_{{.value = value}} {}

    // Nothing when a value is outside [min, max], the first has a time, the others have none or do
    // not follow each other, or there are more than kLongest.
    static std::optional<Curve> Parse(std::string_view text, int min, int max);

    int ValueAt(std::chrono::steady_clock::duration age) const;

    // The time of the first step later than `age`; nothing after the last one.
    std::optional<std::chrono::milliseconds> NextStep(
        std::chrono::steady_clock::duration age) const;

  private:
    struct Step {
        std::chrono::milliseconds time{0};
        int value = 0;
    };

    std::vector<Step>::const_iterator After(std::chrono::steady_clock::duration age) const;

    std::vector<Step> steps_;
};

}  // namespace oam::sim
