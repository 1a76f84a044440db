#include "curve.h"

#include <algorithm>

#include "text_scan.h"

namespace oam::sim {

std::optional<Curve> Curve::Parse(std::string_view text, int min, int max) {
    const auto first = kit::boundedNumber(takePart(&text, ','), min, max);
    if (!first) return {};
    Curve curve(static_cast<int>(*first));
    while (!text.empty()) {
        auto part = takePart(&text, ',');
        const auto value = kit::boundedNumber(takePart(&part, ' '), min, max);
        const bool hasTime = kit::sameText(takePart(&part, ' '), "after");
        const auto time = timeSpan(kit::trimmed(part));
        if (!value || !hasTime || !time || *time <= curve.steps_.back().time) return {};
        if (curve.steps_.size() == kLongest) return {};
        curve.steps_.push_back({*time, static_cast<int>(*value)});
    }
    return curve;
}

std::vector<Curve::Step>::const_iterator Curve::After(
    std::chrono::steady_clock::duration age) const {
    return std::find_if(steps_.begin() + 1, steps_.end(),
                        [&](const Step& step) { return step.time > age; });
}

int Curve::ValueAt(std::chrono::steady_clock::duration age) const {
    return std::prev(After(age))->value;
}

std::optional<std::chrono::milliseconds> Curve::NextStep(
    std::chrono::steady_clock::duration age) const {
    const auto step = After(age);
    if (step == steps_.end()) return {};
    return step->time;
}

}  // namespace oam::sim
