// Who is at the other end of a connection.
//
// A local connection is known by its descriptor, which the transport names in every call
// ("fd:17"); its caller is what the kernel said of the socket when it was accepted. A number is not
// used again before many others were (AdoptDescriptor), so a late call of an old connection cannot
// be taken for a new one's. A remote connection is known by the name in its certificate.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "access/roles.h"

namespace oam::server {

class Callers {
  public:
    // At most so many local connections at a time.
    explicit Callers(std::size_t limit) : limit_(limit) {}

    // Takes an accepted socket: asks the kernel who is there and gives it a descriptor that has not
    // been used lately. The descriptor, or -1 (and the socket is closed) when there are too many
    // connections or the system has no room.
    int Adopt(int accepted);

    // `peer` as the transport names it; nothing when no such connection is known.
    std::optional<Caller> Find(const std::string& peer) const;

  private:
    struct Connection {
        Caller caller;
        std::uint64_t inode;  // of the socket, to see whether the descriptor is still it
    };
    void ForgetClosed();

    const std::size_t limit_;
    mutable std::mutex mutex_;
    std::map<int, Connection> connections_;
    int next_ = 0;
};

}  // namespace oam::server
