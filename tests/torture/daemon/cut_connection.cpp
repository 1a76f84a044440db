#include "cut_connection.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>

#include "wire/local_socket.h"

namespace oam::torture {

CutConnection::CutConnection(const test::Installation& home, std::size_t bytes) : left_(bytes) {
    const auto connected = wire::Connect(wire::SocketPath(home.Root()));
    int ends[2];
    if (!connected || socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
        throw std::runtime_error("no daemon serves " + home.Root());
    daemon_ = *connected;
    client_ = ends[0];
    near_ = ends[1];
    thread_ = std::thread([this] { Work(); });
}

CutConnection::~CutConnection() {
    if (thread_.joinable()) thread_.join();
    close(near_);
    close(daemon_);
}

bool CutConnection::AwaitCut() {
    thread_.join();
    return isCut_;
}

void CutConnection::Work() {
    constexpr int kMoment = 300;
    char bytes[4096];
    while (left_ != 0) {
        pollfd ends[] = {{near_, POLLIN, 0}, {daemon_, POLLIN, 0}};
        if (poll(ends, 2, kMoment) <= 0) return;
        if (ends[1].revents != 0) {
            const ssize_t got = recv(daemon_, bytes, sizeof bytes, 0);
            if (got <= 0) return;
            (void)!send(near_, bytes, static_cast<std::size_t>(got), MSG_NOSIGNAL);
        }
        if (ends[0].revents != 0) {
            const ssize_t got = recv(near_, bytes, std::min(left_, sizeof bytes), 0);
            if (got <= 0) return;
            left_ -= static_cast<std::size_t>(got);
            if (send(daemon_, bytes, static_cast<std::size_t>(got), MSG_NOSIGNAL) != got) return;
        }
    }
    isCut_ = true;
}

}  // namespace oam::torture
