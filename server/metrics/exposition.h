// Figures in the text format that Prometheus reads, version 0.0.4.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include "metrics/histogram.h"

namespace oam::server {

class Exposition {
  public:
    enum class Kind { kCounter, kGauge, kHistogram, kSummary };
    using Label = std::pair<std::string_view, std::string_view>;
    using Labels = std::initializer_list<Label>;

    // Its samples follow. `help` is one line.
    void Family(std::string_view name, Kind kind, std::string_view help);

    void Sample(Labels labels, double value) { Line("", labels, value); }
    void Sample(double value) { Line("", {}, value); }
    void Sample(Labels labels, const Histogram& histogram);
    // Of a summary without quantiles.
    void Sample(Labels labels, std::uint64_t count, double sum);

    const std::string& Text() const { return text_; }

  private:
    void Line(std::string_view suffix, Labels labels, double value, std::string_view bound = {});

    std::string text_;
    std::string name_;
};

}  // namespace oam::server
