// What the daemon tells Prometheus. Reading it waits for nothing that a plug-in could hold.
//
// Labels have few values each: methods of the interface, names of the service's codes and, of
// plug-ins' codes, so many numbers (AlertCounts::kKinds); files of plug-ins and their entries;
// never a board or a user.
#pragma once

#include <functional>
#include <string>

#include "alerts/alert_ring.h"
#include "alerts/alert_writer.h"
#include "metrics/alert_counts.h"
#include "metrics/board_count.h"
#include "metrics/request_counts.h"
#include "operations/operation_book.h"
#include "work/lanes.h"

namespace oam::server {

struct WatcherFigures {
    std::size_t watchers = 0;
    std::uint64_t longestLag = 0;  // in alerts
};

struct MetricsSources {
    const AlertRing& ring;
    const AlertWriter& writer;
    const AlertCounts& alerts;
    const OperationBook& operations;
    const RequestCounts& requests;
    Lanes& lanes;
    std::function<bool()> isServiceRunning;
    std::function<WatcherFigures()> watchers;
    std::function<std::size_t()> sessions;
    std::string version;
};

class Metrics {
  public:
    explicit Metrics(MetricsSources sources)
        : sources_(std::move(sources)), boards_(sources_.lanes) {}

    // In the text format of Prometheus.
    std::string Text();

  private:
    MetricsSources sources_;
    BoardCount boards_;
};

}  // namespace oam::server
