#include "services/alert_watcher.h"

#include <algorithm>
#include <deque>
#include <optional>
#include <vector>

#include "services/alert_message.h"
#include "transport/refusal_status.h"

namespace oam::server {
namespace {

constexpr Verb kReadBook = {"WatchAlerts", Role::kViewer};
constexpr std::size_t kAtOnce = 64;
constexpr std::size_t kPage = 256;

}  // namespace

// Outlives its reactor while the pump or a page knows it.
class AlertWatcher : public std::enable_shared_from_this<AlertWatcher> {
  public:
    using Reactor = grpc::ServerWriteReactor<v1::WatchAlertsResponse>;

    AlertWatcher(Core& core, Reactor* reactor, const Call& call,
                 const v1::WatchAlertsRequest& request)
        : core_(core),
          call_(call),
          filter_(FilterOf(request.filter())),
          reactor_(reactor),
          passed_(request.has_after() ? request.after() : core.ring.Newest()),
          catchUpWith_(core.ring.Newest()) {}

    // There is news, or the last message was taken.
    void Go() {
        const std::lock_guard hold(mutex_);
        GoLocked();
    }

    void Wrote(bool ok) {
        const std::lock_guard hold(mutex_);
        isWriting_ = false;
        queue_.pop_front();
        if (!ok) isEnding_ = true;
        GoLocked();
    }

    void End(const grpc::Status& status) {
        const std::lock_guard hold(mutex_);
        if (!isEnding_) status_ = status;
        isEnding_ = true;
        GoLocked();
    }

    std::uint64_t Passed() const {
        const std::lock_guard hold(mutex_);
        return passed_;
    }

    void Leave() {
        const std::lock_guard hold(mutex_);
        reactor_ = nullptr;
    }

  private:
    void GoLocked() {
        if (reactor_ == nullptr || isWriting_ || isFinished_) return;
        if (isEnding_) {
            isFinished_ = true;
            return reactor_->Finish(status_);
        }
        if (queue_.empty() && !isReading_) Fill();
        if (queue_.empty()) return;
        isWriting_ = true;
        reactor_->StartWrite(&queue_.front());
    }

    void Fill() {
        const auto batch = core_.ring.Read(passed_, kAtOnce);
        if (batch.isGap) {
            if (emptyBehind_ != passed_) return AskBook();
            TakeGapBefore(batch.alerts.empty() ? batch.newest + 1 : batch.alerts.front()->sequence);
        }
        for (const auto& alert : batch.alerts) Take(*alert);
        if (!isCaughtUp_ && passed_ >= catchUpWith_) {
            isCaughtUp_ = true;
            queue_.emplace_back().set_caught_up(passed_);
        }
    }

    void Take(const StoredAlert& alert) {
        passed_ = alert.sequence;
        if (filter_.Matches(alert)) Tell(alert, core_.names, queue_.emplace_back().mutable_alert());
    }

    void TakeGapBefore(std::uint64_t next) {
        if (next <= passed_ + 1) return;
        auto* const gap = queue_.emplace_back().mutable_gap();
        gap->set_first(passed_ + 1);
        gap->set_last(next - 1);
        passed_ = next - 1;
    }

    // The disk may make one wait; this thread is the pump's or the transport's.
    void AskBook() {
        isReading_ = true;
        core_.calls.Start(
            call_, kReadBook, "",
            [self = shared_from_this()](const Call&) {
                self->ReadBook();
                return grpc::Status::OK;
            },
            [self = shared_from_this()](const grpc::Status& status) {
                const std::lock_guard hold(self->mutex_);
                self->isReading_ = false;
                // Without the book there is only what the ring has.
                if (!status.ok()) self->emptyBehind_ = self->passed_;
                self->GoLocked();
            });
    }

    void ReadBook() {
        std::uint64_t after = 0;
        {
            const std::lock_guard hold(mutex_);
            after = passed_;
        }
        Database database(core_.databasePath);
        const auto page = AlertBook(database).Read(after, kPage, filter_);
        const std::lock_guard hold(mutex_);
        if (page.firstBehindGap) TakeGapBefore(*page.firstBehindGap);
        for (const StoredAlert& alert : page.alerts) Take(alert);
        passed_ = std::max(passed_, page.scanned);
        if (page.newest <= passed_) emptyBehind_ = passed_;
    }

    Core& core_;
    const Call call_;
    const AlertFilter filter_;
    mutable std::mutex mutex_;
    Reactor* reactor_;
    std::deque<v1::WatchAlertsResponse> queue_;  // the first is under way while isWriting_
    std::uint64_t passed_;
    const std::uint64_t catchUpWith_;
    // The book has nothing behind this number: what the ring has not is a gap.
    std::optional<std::uint64_t> emptyBehind_;
    grpc::Status status_;
    bool isCaughtUp_ = false;
    bool isReading_ = false;
    bool isWriting_ = false;
    bool isEnding_ = false;
    bool isFinished_ = false;
};

namespace {

class WatcherReactor : public AlertWatcher::Reactor {
  public:
    WatcherReactor(Core& core, AlertPump& pump, const Call& call,
                   const v1::WatchAlertsRequest& request)
        : pump_(pump), watcher_(std::make_shared<AlertWatcher>(core, this, call, request)) {
        pump_.Add(watcher_);
        watcher_->Go();
    }

    void OnWriteDone(bool ok) override { watcher_->Wrote(ok); }
    void OnCancel() override { watcher_->End(grpc::Status::CANCELLED); }
    void OnDone() override {
        watcher_->Leave();
        pump_.Remove(watcher_);
        delete this;
    }

  private:
    AlertPump& pump_;
    std::shared_ptr<AlertWatcher> watcher_;
};

}  // namespace

AlertPump::AlertPump(const AlertRing& ring) : ring_(ring) {
    thread_ = std::thread([this] { Work(); });
}

AlertPump::~AlertPump() { thread_.join(); }

void AlertPump::Add(const std::shared_ptr<AlertWatcher>& watcher) {
    const std::lock_guard hold(mutex_);
    watchers_.insert(watcher);
}

void AlertPump::Remove(const std::shared_ptr<AlertWatcher>& watcher) {
    const std::lock_guard hold(mutex_);
    watchers_.erase(watcher);
}

std::size_t AlertPump::Count() const {
    const std::lock_guard hold(mutex_);
    return watchers_.size();
}

WatcherFigures AlertPump::Figures() const {
    std::vector<std::shared_ptr<AlertWatcher>> all;
    {
        const std::lock_guard hold(mutex_);
        all.assign(watchers_.begin(), watchers_.end());
    }
    WatcherFigures figures;
    figures.watchers = all.size();
    const std::uint64_t newest = ring_.Newest();
    for (const auto& watcher : all) {
        const std::uint64_t passed = watcher->Passed();
        if (passed < newest) figures.longestLag = std::max(figures.longestLag, newest - passed);
    }
    return figures;
}

void AlertPump::Work() {
    std::uint64_t seen = ring_.Newest();
    while (ring_.WaitBehind(seen)) {
        seen = ring_.Newest();
        std::vector<std::shared_ptr<AlertWatcher>> all;
        {
            const std::lock_guard hold(mutex_);
            all.assign(watchers_.begin(), watchers_.end());
        }
        for (const auto& watcher : all) watcher->Go();
    }
    const std::lock_guard hold(mutex_);
    for (const auto& watcher : watchers_)
        watcher->End(Refused(grpc::StatusCode::UNAVAILABLE, "the daemon ends"));
}

AlertFilter FilterOf(const v1::AlertFilter& told) {
    AlertFilter filter;
    filter.codes.assign(told.codes().begin(), told.codes().end());
    filter.leastSeverity = told.least_severity();
    filter.source = told.source();
    filter.textPart = told.text_part();
    return filter;
}

grpc::ServerWriteReactor<v1::WatchAlertsResponse>* NewAlertWatcher(
    Core& core, AlertPump& pump, const Call& call, const v1::WatchAlertsRequest& request) {
    return new WatcherReactor(core, pump, call, request);
}

}  // namespace oam::server
