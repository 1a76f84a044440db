#include "events/alert_events.h"

#include <thread>

#include "mirror/mirror.h"

namespace oam::console {

AlertEvents::AlertEvents(DaemonConnection& daemon, v1::WatchAlertsRequest request,
                         Identity identity)
    : daemon_(daemon), request_(std::move(request)), identity_(std::move(identity)) {}

std::optional<std::string> AlertEvents::Next(std::chrono::milliseconds limit) {
    if (isOver_) return std::nullopt;
    if (!stream_ && !Connect()) {
        const bool isNews = std::exchange(isReachable_, false);
        if (isNews) return EventText("", "daemon", R"({"reachable":false})");
        std::this_thread::sleep_for(limit);
        return "";
    }
    if (const auto bytes = stream_->Next(limit)) {
        v1::WatchAlertsResponse told;
        (void)told.ParseFromString(*bytes);
        const bool isBack = !std::exchange(isReachable_, true);
        return (isBack ? EventText("", "daemon", R"({"reachable":true})") : "") + EventOf(told);
    }
    const auto end = stream_->End();
    if (!end) return "";
    stream_.reset();
    // A daemon that ends, or is gone, may come back; one that refuses will go on refusing.
    if (end->error_code() == grpc::StatusCode::UNAVAILABLE) {
        daemon_.Lost(channel_);
        const bool isNews = std::exchange(isReachable_, false);
        if (!isNews) std::this_thread::sleep_for(limit);
        return isNews ? EventText("", "daemon", R"({"reachable":false})") : "";
    }
    isOver_ = true;
    return EventText("", "refused", RefusalJson(*end).dump());
}

bool AlertEvents::Connect() {
    channel_ = daemon_.Channel();
    if (!channel_) return false;
    stream_ = std::make_unique<MessageStream>(channel_, "/oam.v1.Alerts/WatchAlerts",
                                              request_.SerializeAsString(), identity_);
    return true;
}

std::string AlertEvents::EventOf(const v1::WatchAlertsResponse& told) {
    std::uint64_t at = 0;
    const char* event = "";
    Json data;
    switch (told.event_case()) {
        case v1::WatchAlertsResponse::kAlert:
            at = told.alert().sequence();
            event = "alert";
            data = ToJson(told.alert());
            break;
        case v1::WatchAlertsResponse::kGap:
            at = told.gap().last();
            event = "gap";
            data = ToJson(told.gap());
            break;
        case v1::WatchAlertsResponse::kCaughtUp:
            at = told.caught_up();
            event = "caughtUp";
            data["sequence"] = at;
            break;
        case v1::WatchAlertsResponse::EVENT_NOT_SET:
            return "";
    }
    request_.set_after(at);
    return EventText(std::to_string(at), event, data.dump());
}

}  // namespace oam::console
