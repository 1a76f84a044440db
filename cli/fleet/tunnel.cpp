#include "cli/fleet/tunnel.h"

#include <fcntl.h>
#include <grpcpp/generic/async_generic_service.h>
#include <grpcpp/grpcpp.h>
#include <grpcpp/server_posix.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <deque>
#include <mutex>
#include <optional>
#include <system_error>

#include "daemon/daemon_connection.h"
#include "mirror/routes.h"
#include "oam/v1/configuration.pb.h"
#include "remote/remote_service.h"
#include "service.h"

namespace oam::fleet {
namespace {

const console::Route* routeOf(const std::string& method) {
    for (const console::Route& route : console::Routes())
        if (route.FullMethod() == method) return &route;
    return nullptr;
}

// An import comes in pieces, and goes as one.
std::string joined(const std::string& before, const std::string& piece) {
    if (before.empty()) return piece;
    v1::ImportRequest whole, part;
    if (!whole.ParseFromString(before) || !part.ParseFromString(piece)) return before;
    whole.mutable_piece()->append(part.piece());
    return whole.SerializeAsString();
}

// What one call and its request share: whichever goes first leaves it to the other.
class Passage : public std::enable_shared_from_this<Passage> {
  public:
    void Begin(HostCalls& calls, const HostCalls::Request& request) {
        calls_ = &calls;
        const auto self = shared_from_this();
        const auto number =
            calls.Begin(request, [self](const HostReply& reply) { self->Hear(reply); });
        const std::lock_guard hold(mutex_);
        number_ = number;
    }
    void SetReactor(grpc::ServerGenericBidiReactor* reactor) {
        const std::lock_guard hold(mutex_);
        reactor_ = reactor;
    }
    void Hear(const HostReply& reply) {
        const std::lock_guard hold(mutex_);
        if (reply.isEnd) {
            end_ = grpc::Status(static_cast<grpc::StatusCode>(reply.status),
                                reply.status == 0 ? "" : "refused",
                                reply.status == 0 ? "" : reply.data);
            // The answer of a call that has one message comes with the end.
            if (reply.status == 0 && !isStream_) queue_.push_back(reply.data);
        } else {
            queue_.push_back(reply.data);
        }
        GoOn();
    }
    void End(const grpc::Status& status) {
        const std::lock_guard hold(mutex_);
        if (!end_) end_ = status;
        queue_.clear();
        GoOn();
    }
    void Wrote(bool ok) {
        const std::lock_guard hold(mutex_);
        isWriting_ = false;
        if (!ok) queue_.clear();
        GoOn();
    }
    // Nobody waits for the answer any more.
    void Cancel() {
        std::uint64_t number = 0;
        {
            const std::lock_guard hold(mutex_);
            number = number_;
        }
        if (calls_ != nullptr && number != 0) calls_->Forget(number);
        End(grpc::Status::CANCELLED);
    }
    void IsStream() { isStream_ = true; }

  private:
    void GoOn() {
        if (reactor_ == nullptr || isWriting_ || isFinished_) return;
        if (!queue_.empty()) {
            writing_ = console::BufferOf(queue_.front());
            queue_.pop_front();
            isWriting_ = true;
            return reactor_->StartWrite(&writing_);
        }
        if (!end_) return;
        isFinished_ = true;
        reactor_->Finish(*end_);
    }

    std::mutex mutex_;
    HostCalls* calls_ = nullptr;
    std::uint64_t number_ = 0;
    grpc::ServerGenericBidiReactor* reactor_ = nullptr;
    std::deque<std::string> queue_;
    std::optional<grpc::Status> end_;
    grpc::ByteBuffer writing_;
    bool isWriting_ = false;
    bool isFinished_ = false;
    bool isStream_ = false;
};

class Reactor : public grpc::ServerGenericBidiReactor {
  public:
    Reactor(HostCalls& calls, std::string host, const std::string& method)
        : calls_(calls), host_(std::move(host)), route_(routeOf(method)) {
        passage_->SetReactor(this);
        if (route_ != nullptr && (route_->kind == console::RouteKind::kEvents ||
                                  route_->kind == console::RouteKind::kExport))
            passage_->IsStream();
        StartRead(&piece_);
    }

    void OnReadDone(bool ok) override {
        if (ok) {
            const std::string piece = console::BytesOf(piece_);
            request_ = route_ != nullptr && route_->kind == console::RouteKind::kImport
                           ? joined(request_, piece)
                           : piece;
            return StartRead(&piece_);
        }
        // All has come; or nobody is there any more, and OnCancel tells.
        Ask();
    }
    void OnWriteDone(bool ok) override { passage_->Wrote(ok); }
    void OnCancel() override { passage_->Cancel(); }
    void OnDone() override {
        passage_->SetReactor(nullptr);
        delete this;
    }

  private:
    void Ask() {
        if (route_ == nullptr)
            return passage_->End({grpc::StatusCode::UNIMPLEMENTED, "there is no such call"});
        try {
            passage_->Begin(calls_, {host_, route_->role, route_->verb, request_});
        } catch (const std::exception& error) {
            passage_->End({grpc::StatusCode::UNAVAILABLE, error.what()});
        }
    }

    HostCalls& calls_;
    const std::string host_;
    const console::Route* const route_;
    const std::shared_ptr<Passage> passage_ = std::make_shared<Passage>();
    grpc::ByteBuffer piece_;
    std::string request_;
};

}  // namespace

class Tunnel::Server : public grpc::CallbackGenericService {
  public:
    Server(HostCalls& calls, std::string host) : calls_(calls), host_(std::move(host)) {
        grpc::ServerBuilder builder;
        builder.RegisterCallbackGenericService(this);
        builder.SetMaxReceiveMessageSize(-1);
        server_ = builder.BuildAndStart();
    }
    ~Server() override {
        // Nothing is under way that anybody waits for.
        server_->Shutdown(std::chrono::system_clock::now());
        server_->Wait();
    }

    grpc::ServerGenericBidiReactor* CreateReactor(
        grpc::GenericCallbackServerContext* context) override {
        return new Reactor(calls_, host_, context->method());
    }

    // The other end of a connection to it.
    int Connect() {
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends) != 0)
            throw std::system_error(errno, std::generic_category(), "no connection can be made");
        grpc::AddInsecureChannelFromFd(server_.get(), ends[0]);
        return ends[1];
    }

  private:
    HostCalls& calls_;
    const std::string host_;
    std::unique_ptr<grpc::Server> server_;
};

Tunnel::Tunnel(HostCalls& calls, std::string host)
    : server_(std::make_unique<Server>(calls, std::move(host))) {}

Tunnel::~Tunnel() = default;

std::unique_ptr<Service> Tunnel::Open(Console& console, const Interruption& interruption) {
    return ConnectRemoteService(server_->Connect(), console, interruption);
}

}  // namespace oam::fleet
