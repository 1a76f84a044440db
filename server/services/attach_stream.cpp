#include "services/attach_stream.h"

#include <deque>

#include "services/alert_message.h"

namespace oam::server {
namespace {

// What is kept for a client that does not read.
constexpr std::size_t kKept = 1000;

constexpr Verb kEnd = {"the end of a session", Role::kNone};

// Shared with the session's sink, which the service's threads call: one mutex, no waiting. The
// transport takes a message from whoever starts the write, so that, too, is done at once.
class Outbox {
  public:
    using Reactor = grpc::ServerWriteReactor<v1::AttachEvent>;

    explicit Outbox(Reactor* reactor) : reactor_(reactor) {}

    void Put(v1::AttachEvent event) {
        const std::lock_guard hold(mutex_);
        if (isEnded_) return;
        if (queue_.size() >= kKept) {
            ++lost_;
            return;
        }
        queue_.push_back(std::move(event));
        Go();
    }

    void Wrote(bool ok) {
        const std::lock_guard hold(mutex_);
        isWriting_ = false;
        queue_.pop_front();
        if (lost_ != 0 && queue_.size() < kKept)
            queue_.emplace_back().set_lost(std::exchange(lost_, 0));
        if (!ok || isEnded_) return Finish();
        Go();
    }

    void End() {
        const std::lock_guard hold(mutex_);
        isEnded_ = true;
        if (!isWriting_) Finish();
    }

    void Leave() {
        const std::lock_guard hold(mutex_);
        isEnded_ = true;
        reactor_ = nullptr;
    }

  private:
    void Go() {
        if (isWriting_ || queue_.empty() || reactor_ == nullptr) return;
        isWriting_ = true;
        reactor_->StartWrite(&queue_.front());
    }

    void Finish() {
        isEnded_ = true;
        if (!std::exchange(isFinished_, true)) reactor_->Finish(grpc::Status::CANCELLED);
    }

    std::mutex mutex_;
    Reactor* reactor_;
    std::deque<v1::AttachEvent> queue_;  // the first is under way while isWriting_
    std::uint64_t lost_ = 0;
    bool isWriting_ = false;
    bool isEnded_ = false;
    bool isFinished_ = false;
};

v1::AttachEvent eventOf(const StoredAlert& alert) {
    v1::AttachEvent event;
    v1::Alert& told = *event.mutable_alert();
    // Its name is asked with GetCodeName: a plug-in may have to be asked, and this thread may not
    // wait.
    TellWithoutName(alert, &told);
    return event;
}

class AttachStream : public Outbox::Reactor {
  public:
    AttachStream(Core& core, SessionTable& table, const Call& call)
        : core_(core), table_(table), call_(call), outbox_(std::make_shared<Outbox>(this)) {
        session_ = table_.Begin(call.user, [outbox = outbox_](const StoredAlert& alert) {
            outbox->Put(eventOf(alert));
        });
        v1::AttachEvent first;
        first.set_session(session_->Id());
        outbox_->Put(std::move(first));
    }

    void OnWriteDone(bool ok) override { outbox_->Wrote(ok); }
    void OnCancel() override { outbox_->End(); }
    void OnDone() override {
        outbox_->Leave();
        table_.Remove(session_->Id());
        // Closing commits, and a plug-in may take its time over it.
        core_.calls.Start(
            call_, kEnd, session_->Lane(),
            [session = session_](const Call&) {
                session->End();
                return grpc::Status::OK;
            },
            [session = session_](const grpc::Status& status) {
                // There was no room for it, or the daemon ends: then here.
                if (!status.ok() && !session->IsEnded()) session->End();
            });
        delete this;
    }

  private:
    Core& core_;
    SessionTable& table_;
    const Call call_;
    std::shared_ptr<Outbox> outbox_;
    std::shared_ptr<Session> session_;
};

}  // namespace

grpc::ServerWriteReactor<v1::AttachEvent>* NewAttachStream(Core& core, SessionTable& table,
                                                           const Call& call) {
    return new AttachStream(core, table, call);
}

}  // namespace oam::server
