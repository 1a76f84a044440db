#pragma once

#include "oam/v1/alerts.grpc.pb.h"
#include "services/alert_watcher.h"
#include "services/core.h"

namespace oam::server {

class AlertsService : public v1::Alerts::CallbackService {
  public:
    explicit AlertsService(Core& core) : core_(core), pump_(core.ring) {}

    grpc::ServerWriteReactor<v1::WatchAlertsResponse>* WatchAlerts(
        grpc::CallbackServerContext* context, const v1::WatchAlertsRequest* request) override;
    grpc::ServerUnaryReactor* ListAlerts(grpc::CallbackServerContext* context,
                                         const v1::ListAlertsRequest* request,
                                         v1::ListAlertsResponse* response) override;
    grpc::ServerUnaryReactor* NotifyAlert(grpc::CallbackServerContext* context,
                                          const v1::NotifyAlertRequest* request,
                                          v1::NotifyAlertResponse* response) override;

    WatcherFigures Watchers() const { return pump_.Figures(); }

  private:
    Core& core_;
    AlertPump pump_;
};

}  // namespace oam::server
