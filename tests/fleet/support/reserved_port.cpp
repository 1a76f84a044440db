#include "reserved_port.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <random>
#include <stdexcept>

namespace oam::test {
namespace {

// Below those that the system gives away by itself (from 32768).
constexpr int kFirst = 10'000;
constexpr int kLast = 31'999;

// A listening socket, or -1.
int listenAt(const char* address, int port) {
    const int descriptor = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in where{};
    where.sin_family = AF_INET;
    where.sin_port = htons(static_cast<in_port_t>(port));
    inet_pton(AF_INET, address, &where.sin_addr);
    if (bind(descriptor, reinterpret_cast<const sockaddr*>(&where), sizeof where) == 0 &&
        listen(descriptor, 1) == 0)
        return descriptor;
    close(descriptor);
    return -1;
}

}  // namespace

ReservedPort::ReservedPort() {
    std::random_device random;
    std::uniform_int_distribution<int> any(kFirst, kLast);
    for (int tries = 0; tries < 1000; ++tries) {
        number_ = any(random);
        held_ = listenAt("127.0.0.2", number_);
        if (held_ < 0) continue;
        const int probe = listenAt("127.0.0.1", number_);
        if (probe >= 0) {
            close(probe);
            return;
        }
        close(held_);
    }
    throw std::runtime_error("no port is free");
}

ReservedPort::~ReservedPort() { close(held_); }

}  // namespace oam::test
