// Alerts as server-sent events.
//
//   event: alert      id and data: one alert
//   event: gap        data {"first", "last"}: numbers that are not kept any more
//   event: caughtUp   data {"sequence"}: what was kept is told, what follows is live
//   event: daemon     data {"reachable"}: the daemon went, or is back
//
// Every id is an alert's number, so that a browser that lost the connection says where it was
// (Last-Event-ID). When the daemon goes away the stream stays, looks for it, and goes on behind the
// last number: nothing is lost and nothing told twice.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "daemon/message_stream.h"
#include "events/event_source.h"
#include "oam/v1/alerts.pb.h"

namespace oam::console {

class AlertEvents : public EventSource {
  public:
    AlertEvents(DaemonConnection& daemon, v1::WatchAlertsRequest request, Identity identity);

    std::optional<std::string> Next(std::chrono::milliseconds limit) override;

  private:
    bool Connect();
    std::string EventOf(const v1::WatchAlertsResponse& told);

    DaemonConnection& daemon_;
    v1::WatchAlertsRequest request_;
    const Identity identity_;
    std::shared_ptr<grpc::Channel> channel_;
    std::unique_ptr<MessageStream> stream_;
    bool isReachable_ = true;  // as far as was told
    bool isOver_ = false;
};

}  // namespace oam::console
