#include "transport/unix_listener.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>

#include "wire/local_socket.h"

namespace oam::server {
namespace {

[[noreturn]] void fail(const std::string& what, int error = errno) {
    throw std::system_error(error, std::generic_category(), what);
}

bool isServed(const wire::SocketAddress& address) {
    const int probe = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (probe < 0) return false;
    const int result = connect(probe, address.Get(), wire::SocketAddress::kSize);
    const bool isRefused = result != 0 && errno == ECONNREFUSED;
    close(probe);
    return !isRefused;
}

}  // namespace

UnixListener::UnixListener(std::string path, int inherited, std::function<void(int)> accepted)
    : path_(std::move(path)),
      accepted_(std::move(accepted)),
      isOurs_(inherited < 0),
      socket_(inherited),
      stop_(eventfd(0, EFD_CLOEXEC)) {
    if (stop_ < 0) fail("eventfd");
    if (isOurs_) Listen();
    fcntl(socket_, F_SETFL, fcntl(socket_, F_GETFL) | O_NONBLOCK);
    thread_ = std::thread([this] { Work(); });
}

UnixListener::~UnixListener() {
    const std::uint64_t one = 1;
    (void)!write(stop_, &one, sizeof one);
    thread_.join();
    close(socket_);
    close(stop_);
    if (isOurs_) unlink(path_.c_str());
}

void UnixListener::Listen() {
    const wire::SocketAddress address(path_);
    struct stat facts {};
    if (lstat(path_.c_str(), &facts) == 0) {
        if (!S_ISSOCK(facts.st_mode)) fail(path_ + " is no socket", EEXIST);
        if (isServed(address)) fail(path_ + " is served already", EADDRINUSE);
        unlink(path_.c_str());
    }
    socket_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socket_ < 0) fail("socket");
    constexpr int kWaiting = 128;
    if (bind(socket_, address.Get(), wire::SocketAddress::kSize) != 0 ||
        chmod(path_.c_str(), 0666) != 0 || listen(socket_, kWaiting) != 0) {
        const int error = errno;
        close(socket_);
        fail("cannot listen at " + path_, error);
    }
}

void UnixListener::Work() {
    for (;;) {
        pollfd events[] = {{socket_, POLLIN, 0}, {stop_, POLLIN, 0}};
        if (poll(events, 2, -1) < 0 && errno != EINTR) return;
        if (events[1].revents != 0) return;
        const int connection = accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection >= 0) {
            accepted_(connection);
        } else if (errno == EMFILE || errno == ENFILE || errno == ENOMEM || errno == ENOBUFS) {
            // The connection stays in the queue, and poll would not wait.
            pollfd stop = {stop_, POLLIN, 0};
            constexpr int kPause = 100;
            poll(&stop, 1, kPause);
        }
    }
}

}  // namespace oam::server
