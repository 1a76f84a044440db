#include "daemon/message_stream.h"

#include <grpcpp/generic/generic_stub.h>

#include <condition_variable>
#include <deque>
#include <mutex>

namespace oam::console {
namespace {

constexpr std::size_t kMostWaiting = 64;

// gRPC's threads that react end with the last channel on which something reacted. When that goes on
// one of them, which is where a reactor deletes itself, the thread waits for its own end and frees
// everything twice. So the first such channel stays for the life of the process; when its
// connection is gone it is but an object.
void keepThreads(const std::shared_ptr<grpc::Channel>& channel) {
    static const auto& kept = *new std::shared_ptr<grpc::Channel>(channel);
    (void)kept;
}

}  // namespace

// Outlives whichever of the reader and the call goes first.
struct MessageStream::State {
    std::mutex mutex;
    std::condition_variable news;
    std::deque<std::string> messages;
    std::optional<grpc::Status> end;
    Reactor* reactor = nullptr;  // while the call lives
    bool isReading = false;
};

class MessageStream::Reactor : public grpc::ClientBidiReactor<grpc::ByteBuffer, grpc::ByteBuffer> {
  public:
    Reactor(std::shared_ptr<State> state, const std::shared_ptr<grpc::Channel>& channel,
            const std::string& method, const std::string& request, const Identity& identity)
        : state_(std::move(state)), method_(method), request_(BufferOf(request)), stub_(channel) {
        Introduce(context_, identity);
        stub_.PrepareBidiStreamingCall(&context_, method_, {}, this);
        StartWriteLast(&request_, grpc::WriteOptions());
        state_->reactor = this;
        state_->isReading = true;
        // Reads are also started from outside the reactions.
        AddHold();
        StartRead(&response_);
        StartCall();
        keepThreads(channel);
    }

    void OnReadDone(bool ok) override {
        const std::lock_guard hold(state_->mutex);
        state_->isReading = false;
        if (!ok) return EndReading();
        state_->messages.push_back(BytesOf(response_));
        state_->news.notify_all();
        ReadOn();
    }

    void OnDone(const grpc::Status& status) override {
        {
            const std::lock_guard hold(state_->mutex);
            state_->reactor = nullptr;
            state_->end = status;
            state_->news.notify_all();
        }
        delete this;
    }

    // With the state's mutex.
    void ReadOn() {
        if (isOver_ || state_->isReading || state_->messages.size() >= kMostWaiting) return;
        state_->isReading = true;
        StartRead(&response_);
    }
    void Cancel() {
        context_.TryCancel();
        if (!state_->isReading) EndReading();
    }

  private:
    void EndReading() {
        if (!std::exchange(isOver_, true)) RemoveHold();
    }

    const std::shared_ptr<State> state_;
    const std::string method_;
    const grpc::ByteBuffer request_;
    grpc::ByteBuffer response_;
    grpc::ClientContext context_;
    grpc::GenericStub stub_;
    bool isOver_ = false;
};

MessageStream::MessageStream(const std::shared_ptr<grpc::Channel>& channel,
                             const std::string& method, const std::string& request,
                             const Identity& identity)
    : state_(std::make_shared<State>()) {
    const std::lock_guard hold(state_->mutex);
    new Reactor(state_, channel, method, request, identity);
}

MessageStream::~MessageStream() {
    const std::lock_guard hold(state_->mutex);
    if (state_->reactor != nullptr) state_->reactor->Cancel();
}

std::optional<std::string> MessageStream::Next(std::chrono::milliseconds limit) {
    std::unique_lock hold(state_->mutex);
    state_->news.wait_for(hold, limit, [&] { return !state_->messages.empty() || state_->end; });
    if (state_->messages.empty()) return std::nullopt;
    std::string first = std::move(state_->messages.front());
    state_->messages.pop_front();
    if (state_->reactor != nullptr) state_->reactor->ReadOn();
    return first;
}

std::optional<grpc::Status> MessageStream::End() const {
    const std::lock_guard hold(state_->mutex);
    return state_->messages.empty() ? state_->end : std::nullopt;
}

}  // namespace oam::console
