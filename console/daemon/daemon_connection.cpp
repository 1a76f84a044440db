#include "daemon/daemon_connection.h"

#include <grpcpp/generic/generic_stub.h>

#include <future>
#include <system_error>

#include "wire/daemon_channel.h"
#include "wire/local_socket.h"

namespace oam::console {
namespace {

grpc::Status callOnce(const std::shared_ptr<grpc::Channel>& channel, const std::string& method,
                      const std::string& request, std::string* response, const Identity& identity,
                      std::chrono::milliseconds limit) {
    grpc::ClientContext context;
    Introduce(context, identity);
    context.set_deadline(std::chrono::system_clock::now() + limit);
    const grpc::ByteBuffer asked = BufferOf(request);
    grpc::ByteBuffer answered;
    std::promise<grpc::Status> done;
    grpc::GenericStub stub(channel);
    stub.UnaryCall(&context, method, {}, &asked, &answered,
                   [&](const grpc::Status& status) { done.set_value(status); });
    const grpc::Status status = done.get_future().get();
    if (status.ok()) *response = BytesOf(answered);
    return status;
}

}  // namespace

std::shared_ptr<grpc::Channel> DaemonConnection::Channel() {
    const std::lock_guard hold(mutex_);
    if (channel_) return channel_;
    try {
        if (const auto descriptor = wire::Connect(socketPath_))
            channel_ = wire::ChannelOver(*descriptor);
    } catch (const std::system_error&) {
        // No permission, or a listener that takes no more: as good as nobody.
    }
    return channel_;
}

// Such a channel does not tell by itself that its connection is gone.
std::shared_ptr<grpc::Channel> DaemonConnection::LivingChannel() {
    std::string ignored;
    const auto status = Call("/oam.v1.Host/GetHost", "", &ignored, {}, /*mayRepeat=*/true);
    return IsConnectionGone(status) ? nullptr : Channel();
}

void DaemonConnection::Lost(const std::shared_ptr<grpc::Channel>& channel) {
    const std::lock_guard hold(mutex_);
    if (channel_ == channel) channel_.reset();
}

grpc::Status DaemonConnection::Call(const std::string& method, const std::string& request,
                                    std::string* response, const Identity& identity, bool mayRepeat,
                                    std::chrono::milliseconds limit) {
    for (int attempts = mayRepeat ? 2 : 1;; --attempts) {
        const auto channel = mayRepeat ? Channel() : LivingChannel();
        if (!channel) return NobodyListens(socketPath_);
        const grpc::Status status = callOnce(channel, method, request, response, identity, limit);
        if (!IsConnectionGone(status)) return status;
        Lost(channel);
        if (attempts == 1) return status;
    }
}

void Introduce(grpc::ClientContext& context, const Identity& identity) {
    switch (identity.kind) {
        case Identity::Kind::kOwn:
            break;
        case Identity::Kind::kUser:
            context.AddMetadata(wire::kForUser, identity.name);
            break;
        case Identity::Kind::kCertificate:
            context.AddMetadata(wire::kForCertificate, identity.name);
            break;
    }
}

bool IsConnectionGone(const grpc::Status& status) {
    return status.error_code() == grpc::StatusCode::UNAVAILABLE && status.error_details().empty();
}

grpc::Status NobodyListens(const std::string& socketPath) {
    return {grpc::StatusCode::UNAVAILABLE, "no daemon answers at " + socketPath};
}

grpc::ByteBuffer BufferOf(const std::string& bytes) {
    const grpc::Slice slice(bytes);
    return {&slice, 1};
}

std::string BytesOf(const grpc::ByteBuffer& buffer) {
    std::vector<grpc::Slice> slices;
    std::string bytes;
    if (!buffer.Dump(&slices).ok()) return bytes;
    for (const grpc::Slice& slice : slices)
        bytes.append(reinterpret_cast<const char*>(slice.begin()), slice.size());
    return bytes;
}

}  // namespace oam::console
