// One watcher of alerts, and the pump that tells all of them of news.
//
// A watcher has the number that it has passed on last. It takes what comes next from the ring in
// memory, or, when it is further behind, a page at a time from the book on disk; what is in neither
// is said as a gap. It writes one message at a time and goes on when the client has taken it, so a
// slow client falls behind by itself and delays nobody.
#pragma once

#include <grpcpp/server_context.h>

#include <memory>
#include <mutex>
#include <set>
#include <thread>

#include "alerts/alert_book.h"
#include "alerts/alert_filter.h"
#include "metrics/metrics.h"
#include "oam/v1/alerts.pb.h"
#include "services/core.h"

namespace oam::server {

class AlertWatcher;

class AlertPump {
  public:
    explicit AlertPump(const AlertRing& ring);
    // The ring is closed by then.
    ~AlertPump();

    void Add(const std::shared_ptr<AlertWatcher>& watcher);
    void Remove(const std::shared_ptr<AlertWatcher>& watcher);
    std::size_t Count() const;
    // How many there are, and how far the slowest is behind the newest alert.
    WatcherFigures Figures() const;

  private:
    void Work();

    const AlertRing& ring_;
    mutable std::mutex mutex_;
    std::set<std::shared_ptr<AlertWatcher>> watchers_;
    std::thread thread_;
};

AlertFilter FilterOf(const v1::AlertFilter& told);

grpc::ServerWriteReactor<v1::WatchAlertsResponse>* NewAlertWatcher(
    Core& core, AlertPump& pump, const Call& call, const v1::WatchAlertsRequest& request);

}  // namespace oam::server
