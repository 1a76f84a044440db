// Collects the times of all rounds and prints them as one table or as JSON.
#pragma once

#include <benchmark/benchmark.h>

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "rows.h"

namespace oam::bench {

class Results : public benchmark::BenchmarkReporter {
  public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override;

    bool HasFailed() const { return hasFailed_; }
    void PrintTable(std::ostream& out) const;
    void PrintJson(std::ostream& out) const;

  private:
    struct Times {
        double median = 0, least = 0, most = 0;
    };
    static Times Sum(std::vector<double> values);
    const std::vector<double>* Of(const Row& row, const Side& side) const;
    Times Ratio(const std::vector<double>& ours, const std::vector<double>& other) const;

    std::map<std::string, std::vector<double>> nanoseconds_;
    bool hasFailed_ = false;
};

// "row/side", the name under which a side is registered.
std::string nameOf(const Row& row, const Side& side);

}  // namespace oam::bench
