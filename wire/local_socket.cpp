#include "wire/local_socket.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>

namespace oam::wire {
namespace {

[[noreturn]] void fail(const std::string& what, int error = errno) {
    throw std::system_error(error, std::generic_category(), what);
}

}  // namespace

std::string SocketPath(const std::string& directory) { return directory + "/oam/oamd.sock"; }

SocketAddress::SocketAddress(const std::string& path) {
    address_.sun_family = AF_UNIX;
    std::string name = path;
    if (name.size() >= sizeof address_.sun_path) {
        const std::size_t slash = path.rfind('/');
        if (slash == std::string::npos) fail(path, ENAMETOOLONG);
        directory_ = open(path.substr(0, slash).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
        if (directory_ < 0) fail(path);
        name = "/proc/self/fd/" + std::to_string(directory_) + path.substr(slash);
        if (name.size() >= sizeof address_.sun_path) fail(path, ENAMETOOLONG);
    }
    std::memcpy(address_.sun_path, name.c_str(), name.size() + 1);
}

SocketAddress::~SocketAddress() {
    if (directory_ >= 0) close(directory_);
}

std::optional<int> Connect(const std::string& path) {
    const SocketAddress address(path);
    const int descriptor = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor < 0) fail("socket");
    if (connect(descriptor, address.Get(), SocketAddress::kSize) == 0) {
        fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) | O_NONBLOCK);
        return descriptor;
    }
    const int error = errno;
    close(descriptor);
    if (error == ENOENT || error == ECONNREFUSED) return std::nullopt;
    fail(path, error);
}

}  // namespace oam::wire
