#include "remote/remote_alerts.h"

#include <thread>

#include "remote/event_queue.h"
#include "remote/remote_alert.h"

namespace oam {
namespace {

class RemoteAlerts : public AlertStream {
  public:
    RemoteAlerts(Stubs& stubs, std::optional<std::uint64_t> after, const Interruption& interruption)
        : interruption_(interruption) {
        if (after) request_.set_after(*after);
        stream_ = stubs.alerts->WatchAlerts(&context_, request_);
        // Its first word says that it watches from here on.
        stream_->WaitForInitialMetadata();
        reader_ = std::thread([this] {
            for (v1::WatchAlertsResponse response; stream_->Read(&response);)
                queue_.Put(std::move(response));
            status_ = stream_->Finish();
            queue_.End();
        });
    }
    ~RemoteAlerts() override {
        context_.TryCancel();
        reader_.join();
    }

    std::optional<Alert> Next(const AlertInbox::Deadline& deadline) override {
        while (const auto event = queue_.Next(deadline, interruption_)) {
            if (event->has_gap())
                gap_ += (gap_.empty() ? "alerts " : ", ") + std::to_string(event->gap().first()) +
                        " to " + std::to_string(event->gap().last());
            if (event->has_alert()) return AlertOf(event->alert());
        }
        if (queue_.IsEnded() && !status_.ok()) throw FailureOf(status_);
        return std::nullopt;
    }

    std::string TakeGap() override {
        const std::string gap = std::exchange(gap_, "");
        return gap.empty() ? gap : gap + " are not kept any more";
    }

  private:
    const Interruption& interruption_;
    v1::WatchAlertsRequest request_;
    grpc::ClientContext context_;
    std::unique_ptr<grpc::ClientReader<v1::WatchAlertsResponse>> stream_;
    EventQueue<v1::WatchAlertsResponse> queue_;
    grpc::Status status_;
    std::string gap_;  // since the last question
    std::thread reader_;
};

}  // namespace

std::unique_ptr<AlertStream> NewRemoteAlerts(Stubs& stubs, std::optional<std::uint64_t> after,
                                             const Interruption& interruption) {
    return std::make_unique<RemoteAlerts>(stubs, after, interruption);
}

}  // namespace oam
