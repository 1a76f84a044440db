// The one connection to the daemon, made anew when it broke: a daemon that was killed and came back
// is found again by the next call.
//
// Calls are told by the full name of their method ("/oam.v1.Boards/ListBoards") and carry
// serialized messages, so that one function serves every verb. Any thread.
#pragma once

#include <grpcpp/grpcpp.h>

#include <chrono>
#include <memory>
#include <mutex>
#include <string>

#include "daemon/identity.h"

namespace oam::console {

// Longer than any call of the daemon waits on purpose.
constexpr auto kCallLimit = std::chrono::seconds(90);

class DaemonConnection {
  public:
    explicit DaemonConnection(std::string socketPath) : socketPath_(std::move(socketPath)) {}

    // The channel, connected anew when the last one is known to be gone; null when nobody listens.
    std::shared_ptr<grpc::Channel> Channel();
    // One over which the daemon has just answered: for what must not be asked twice.
    std::shared_ptr<grpc::Channel> LivingChannel();
    // This channel answered that it is gone.
    void Lost(const std::shared_ptr<grpc::Channel>& channel);

    // One call and its answer. What may be asked twice without harm is asked a second time when the
    // connection turns out to be gone.
    grpc::Status Call(const std::string& method, const std::string& request, std::string* response,
                      const Identity& identity, bool mayRepeat,
                      std::chrono::milliseconds limit = kCallLimit);

    const std::string& SocketPath() const { return socketPath_; }

  private:
    const std::string socketPath_;
    std::mutex mutex_;
    std::shared_ptr<grpc::Channel> channel_;
};

// Names the identity in the call's metadata.
void Introduce(grpc::ClientContext& context, const Identity& identity);

// The connection is gone, as opposed to a daemon that refuses.
bool IsConnectionGone(const grpc::Status& status);

grpc::Status NobodyListens(const std::string& socketPath);

grpc::ByteBuffer BufferOf(const std::string& bytes);
std::string BytesOf(const grpc::ByteBuffer& buffer);

}  // namespace oam::console
