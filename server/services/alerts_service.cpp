#include "services/alerts_service.h"

#include <algorithm>
#include <cstring>

#include "alert_record.h"
#include "failure.h"
#include "journal/journal.h"
#include "oam/entry.h"
#include "services/alert_message.h"
#include "transport/refusal_status.h"

namespace oam::server {
namespace {

constexpr Verb kWatch = {"WatchAlerts", Role::kViewer};
constexpr Verb kList = {"ListAlerts", Role::kViewer};
constexpr Verb kNotify = {"NotifyAlert", Role::kOperator};

constexpr std::size_t kUsualPage = 100;
constexpr std::size_t kLargestPage = 1000;
// What the service's own records hold.
constexpr std::size_t kLongestSource = 127;
constexpr std::size_t kLongestText = 255;
// 200 watchers are usual; past so many somebody is mistaken.
constexpr std::size_t kMostWatchers = 2000;

class Refusing : public grpc::ServerWriteReactor<v1::WatchAlertsResponse> {
  public:
    explicit Refusing(const grpc::Status& status) { Finish(status); }
    void OnDone() override { delete this; }
};

}  // namespace

grpc::ServerWriteReactor<v1::WatchAlertsResponse>* AlertsService::WatchAlerts(
    grpc::CallbackServerContext* context, const v1::WatchAlertsRequest* request) {
    Call call;
    const grpc::Status admitted =
        core_.calls.Admit(*context, kWatch, request->filter().source(), &call);
    if (!admitted.ok()) return new Refusing(admitted);
    if (pump_.Count() >= kMostWatchers)
        return new Refusing(
            Refused(grpc::StatusCode::RESOURCE_EXHAUSTED, "too many watch the alerts already"));
    return NewAlertWatcher(core_, pump_, call, *request);
}

// From the book up to where it is, then from the ring.
grpc::ServerUnaryReactor* AlertsService::ListAlerts(grpc::CallbackServerContext* context,
                                                    const v1::ListAlertsRequest* request,
                                                    v1::ListAlertsResponse* response) {
    const Target target = About(request->filter().source());
    return core_.calls.Take(context, kList, target, [=, this](const Call&) {
        const std::size_t limit = request->limit() == 0
                                      ? kUsualPage
                                      : std::min<std::size_t>(request->limit(), kLargestPage);
        const AlertFilter filter = FilterOf(request->filter());
        const auto isFull = [&] {
            return static_cast<std::size_t>(response->alerts_size()) >= limit;
        };
        std::uint64_t passed = request->after();
        // Only the first gap can be told; the page ends before the next one.
        const auto pass = [&](std::uint64_t next) {
            if (next <= passed + 1) return true;
            if (passed != request->after()) return false;
            response->mutable_gap()->set_first(passed + 1);
            response->mutable_gap()->set_last(next - 1);
            return true;
        };
        Database database(core_.databasePath);
        const auto page = AlertBook(database).Read(passed, limit, filter);
        if (page.firstBehindGap) (void)pass(*page.firstBehindGap);
        for (const StoredAlert& alert : page.alerts)
            Tell(alert, core_.names, response->add_alerts());
        passed = std::max(passed, page.scanned);
        while (!isFull() && passed >= page.newest) {
            const auto batch = core_.ring.Read(passed, AlertRing::kMostAtOnce);
            if (batch.alerts.empty() || !pass(batch.alerts.front()->sequence)) break;
            for (const auto& alert : batch.alerts) {
                if (isFull()) break;
                if (filter.Matches(*alert)) Tell(*alert, core_.names, response->add_alerts());
                passed = alert->sequence;
            }
        }
        response->set_next_after(passed);
        response->set_newest(core_.ring.Newest());
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* AlertsService::NotifyAlert(grpc::CallbackServerContext* context,
                                                     const v1::NotifyAlertRequest* request,
                                                     v1::NotifyAlertResponse*) {
    const Target target = About(request->source());
    return core_.calls.Take(context, kNotify, target, [=, this](const Call& call) {
        const std::string source = TextOf(request->source(), "the source");
        const std::string text = TextOf(request->text(), "the text");
        if (source.size() > kLongestSource || text.size() > kLongestText)
            return Refused(grpc::StatusCode::INVALID_ARGUMENT,
                           "the source or the text is too long");
        const AlertRecord record(request->code(), request->severity(), source, text);
        if (const unsigned code = _oamAlertNotify(record.Get()))
            throw Failure(code, "the alert was not taken by all");
        core_.journal.Deed(call.user, kNotify.name, source);
        return grpc::Status::OK;
    });
}

}  // namespace oam::server
