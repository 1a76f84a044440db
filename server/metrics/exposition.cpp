#include "metrics/exposition.h"

#include <charconv>
#include <cmath>

namespace oam::server {
namespace {

constexpr const char* kKinds[] = {"counter", "gauge", "histogram", "summary"};

// Shortest form that reads as the same number; whatever the locale.
std::string numberText(double value) {
    if (std::isinf(value)) return value > 0 ? "+Inf" : "-Inf";
    if (std::isnan(value)) return "NaN";
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    return {text, end};
}

void addLabel(std::string_view name, std::string_view value, std::string* text) {
    *text += text->back() == '{' ? "" : ",";
    *text += name;
    *text += "=\"";
    for (const char c : value) {
        if (c == '\n') {
            *text += "\\n";
            continue;
        }
        if (c == '\\' || c == '"') *text += '\\';
        *text += c;
    }
    *text += '"';
}

}  // namespace

void Exposition::Family(std::string_view name, Kind kind, std::string_view help) {
    name_ = name;
    text_ += "# HELP " + name_ + ' ';
    text_ += help;
    text_ += "\n# TYPE " + name_ + ' ' + kKinds[static_cast<int>(kind)] + '\n';
}

void Exposition::Sample(Labels labels, const Histogram& histogram) {
    std::uint64_t count = 0;
    for (std::size_t i = 0; i < Histogram::kBounds.size(); ++i) {
        count += histogram.counts[i];
        Line("_bucket", labels, static_cast<double>(count), numberText(Histogram::kBounds[i]));
    }
    count += histogram.counts.back();
    Line("_bucket", labels, static_cast<double>(count), "+Inf");
    Line("_sum", labels, histogram.sum);
    Line("_count", labels, static_cast<double>(count));
}

void Exposition::Sample(Labels labels, std::uint64_t count, double sum) {
    Line("_sum", labels, sum);
    Line("_count", labels, static_cast<double>(count));
}

void Exposition::Line(std::string_view suffix, Labels labels, double value,
                      std::string_view bound) {
    text_ += name_;
    text_ += suffix;
    if (labels.size() != 0 || !bound.empty()) {
        text_ += '{';
        for (const auto& [name, text] : labels) addLabel(name, text, &text_);
        if (!bound.empty()) addLabel("le", bound, &text_);
        text_ += '}';
    }
    text_ += ' ' + numberText(value) + '\n';
}

}  // namespace oam::server
