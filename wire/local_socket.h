// The daemon's local socket: where it lies, and connecting to it.
//
// An installation's path may be longer than a socket's address can be; both ends then reach the
// socket through its directory's descriptor.
#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <optional>
#include <string>

namespace oam::wire {

// "<directory>/oam/oamd.sock"
std::string SocketPath(const std::string& directory);

// A socket address that names the path as long as this lives.
class SocketAddress {
  public:
    // std::system_error when the directory of a long path cannot be opened.
    explicit SocketAddress(const std::string& path);
    ~SocketAddress();
    SocketAddress(const SocketAddress&) = delete;
    SocketAddress& operator=(const SocketAddress&) = delete;

    const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&address_); }
    static constexpr socklen_t kSize = sizeof(sockaddr_un);

  private:
    sockaddr_un address_{};
    int directory_ = -1;
};

// A connected descriptor, or nothing when nobody listens there. Any other trouble (no permission,
// a listener that takes no more) is a std::system_error.
std::optional<int> Connect(const std::string& path);

}  // namespace oam::wire
