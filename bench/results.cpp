#include "results.h"

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <nlohmann/json.hpp>

namespace oam::bench {

namespace {

const char* partName(Part part) {
    return part == Part::kOurs ? "ours" : part == Part::kLimit ? "limit" : "peer";
}

std::string readable(double nanoseconds) {
    const char* units[] = {"ns", "us", "ms", "s"};
    size_t unit = 0;
    while (nanoseconds >= 10000 && unit < 3) {
        nanoseconds /= 1000;
        ++unit;
    }
    char text[32];
    std::snprintf(text, sizeof text, nanoseconds < 100 ? "%.1f %s" : "%.0f %s", nanoseconds,
                  units[unit]);
    return text;
}

double middleOf(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const size_t half = values.size() / 2;
    return values.size() % 2 != 0 ? values[half] : (values[half - 1] + values[half]) / 2;
}

}  // namespace

std::string nameOf(const Row& row, const Side& side) {
    return row.id + "/" + partName(side.part) + (side.part == Part::kPeer ? "/" + side.name : "");
}

void Results::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        const std::string name = run.run_name.function_name;
        if (run.error_occurred) {
            std::cerr << name << ": " << run.error_message << "\n";
            hasFailed_ = true;
        } else if (run.run_type == Run::RT_Iteration) {
            nanoseconds_[name].push_back(run.GetAdjustedRealTime());
        }
    }
}

Results::Times Results::Sum(std::vector<double> values) {
    const auto [least, most] = std::minmax_element(values.begin(), values.end());
    return {middleOf(values), *least, *most};
}

const std::vector<double>* Results::Of(const Row& row, const Side& side) const {
    const auto found = nanoseconds_.find(nameOf(row, side));
    return found != nanoseconds_.end() && !found->second.empty() ? &found->second : nullptr;
}

// The ratio of the medians, and the least and most of those within a round.
Results::Times Results::Ratio(const std::vector<double>& ours,
                              const std::vector<double>& other) const {
    std::vector<double> each;
    for (size_t i = 0; i < std::min(ours.size(), other.size()); ++i) {
        each.push_back(ours[i] / other[i]);
    }
    Times ratio = Sum(each);
    ratio.median = middleOf(ours) / middleOf(other);
    return ratio;
}

void Results::PrintTable(std::ostream& out) const {
    out << "| operation | side | median | min | max | ours / it | in a round | target |\n"
           "|---|---|---|---|---|---|---|---|\n";
    for (const Row& row : rows()) {
        const std::vector<double>* ours = nullptr;
        for (const Side& side : row.sides) {
            const std::vector<double>* values = Of(row, side);
            if (side.part == Part::kOurs) ours = values;
            if (values == nullptr) {
                if (side.run == nullptr && ours != nullptr) {
                    out << "| | " << side.name << " | not installed | | | | | |\n";
                }
                continue;
            }
            const Times times = Sum(*values);
            out << "| " << (side.part == Part::kOurs ? row.operation : "") << " | " << side.name
                << " | " << readable(times.median) << " | " << readable(times.least) << " | "
                << readable(times.most) << " | ";
            if (side.part != Part::kOurs && ours != nullptr) {
                const Times ratio = Ratio(*ours, *values);
                const double target = side.part == Part::kLimit ? row.limitTarget : row.peerTarget;
                char text[128];
                std::snprintf(text, sizeof text, "%.3g | %.3g to %.3g | ", ratio.median,
                              ratio.least, ratio.most);
                out << text;
                if (target != 0) {
                    std::snprintf(text, sizeof text, "%.3g: %s", target,
                                  ratio.median <= target ? "met" : "missed");
                    out << text;
                }
                out << " |\n";
            } else {
                out << "| | |\n";
            }
        }
    }
}

void Results::PrintJson(std::ostream& out) const {
    nlohmann::json all = nlohmann::json::array();
    for (const Row& row : rows()) {
        nlohmann::json one = {{"id", row.id}, {"operation", row.operation}};
        const std::vector<double>* ours = nullptr;
        for (const Side& side : row.sides) {
            const std::vector<double>* values = Of(row, side);
            if (side.part == Part::kOurs) ours = values;
            nlohmann::json told = {{"part", partName(side.part)}, {"name", side.name}};
            if (values != nullptr) {
                const Times times = Sum(*values);
                told["nanoseconds"] = {
                    {"median", times.median}, {"min", times.least}, {"max", times.most}};
                told["rounds"] = values->size();
                if (side.part != Part::kOurs && ours != nullptr) {
                    const Times ratio = Ratio(*ours, *values);
                    told["ratio"] = {
                        {"median", ratio.median}, {"min", ratio.least}, {"max", ratio.most}};
                    const double target =
                        side.part == Part::kLimit ? row.limitTarget : row.peerTarget;
                    if (target != 0) {
                        told["target"] = target;
                        told["met"] = ratio.median <= target;
                    }
                }
            } else if (side.run == nullptr) {
                told["missing"] = true;
            } else {
                continue;  // not asked for in this run
            }
            one["sides"].push_back(told);
        }
        if (ours != nullptr) all.push_back(one);
    }
    out << all.dump(2) << "\n";
}

}  // namespace oam::bench
