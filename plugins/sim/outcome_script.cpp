#include "outcome_script.h"

#include <algorithm>
#include <limits>

#include "text_scan.h"

namespace oam::sim {
namespace {

std::optional<Outcome> parseCode(std::string_view text) {
    if (!text.starts_with("0x") && !text.starts_with("0X")) return {};
    const auto code =
        kit::boundedNumber(text.substr(2), 1, std::numeric_limits<unsigned int>::max(), 16);
    if (!code) return {};
    return Outcome{.kind = Outcome::Kind::Code, .code = static_cast<oam_result>(*code)};
}

std::optional<Outcome> parseStep(std::string_view text) {
    const auto word = takePart(&text, ' ');
    text = kit::trimmed(text);
    if (kit::sameText(word, "hang")) {
        const auto time = timeSpan(text);
        if (!time) return {};
        return Outcome{.kind = Outcome::Kind::Hang, .hang = *time};
    }
    if (kit::sameText(word, "code")) return parseCode(text);
    if (!text.empty()) return {};
    if (kit::sameText(word, "ok")) return Outcome{};
    if (kit::sameText(word, "fail")) return Outcome{.kind = Outcome::Kind::Fail};
    return {};
}

}  // namespace

std::optional<OutcomeScript> OutcomeScript::Parse(std::string_view text) {
    OutcomeScript script;
    do {
        const auto step = parseStep(takePart(&text, ','));
        if (!step || script.steps_.size() == kLongest) return {};
        script.steps_.push_back(*step);
    } while (!text.empty());
    return script;
}

std::optional<Outcome> OutcomeScript::TakeNext() {
    if (steps_.empty()) return {};
    const auto step = steps_[next_];
    next_ = std::min(next_ + 1, steps_.size() - 1);
    return step;
}

}  // namespace oam::sim
