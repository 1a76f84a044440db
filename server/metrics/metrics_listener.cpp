#include "metrics/metrics_listener.h"

#include <netdb.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>
#include <vector>

namespace oam::server {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kMostConnections = 16;
constexpr std::size_t kLongestRequest = 8192;
constexpr auto kPatience = std::chrono::seconds(5);

std::string response(const char* status, const char* type, const std::string& body) {
    return std::string("HTTP/1.1 ") + status + "\r\nContent-Type: " + type +
           "\r\nContent-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" +
           body;
}

std::string refusal(const char* status) {
    return response(status, "text/plain", std::string(status) + '\n');
}

}  // namespace

MetricsListener::MetricsListener(const ListenAddress& address, std::function<std::string()> text)
    : text_(std::move(text)),
      socket_(socket(address.address.ss_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)),
      stop_(eventfd(0, EFD_CLOEXEC)) {
    constexpr int kWaiting = 16;
    const int on = 1;
    if (socket_ < 0 || stop_ < 0 ||
        setsockopt(socket_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0 ||
        bind(socket_, reinterpret_cast<const sockaddr*>(&address.address), address.size) != 0 ||
        listen(socket_, kWaiting) != 0) {
        const int error = errno;
        if (socket_ >= 0) close(socket_);
        if (stop_ >= 0) close(stop_);
        throw std::system_error(error, std::generic_category(), "cannot serve metrics");
    }
    thread_ = std::thread([this] { Work(); });
}

MetricsListener::~MetricsListener() {
    const std::uint64_t one = 1;
    (void)!write(stop_, &one, sizeof one);
    thread_.join();
    for (const Connection& connection : connections_) close(connection.socket);
    close(socket_);
    close(stop_);
}

std::string MetricsListener::Address() const {
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    char host[NI_MAXHOST], port[NI_MAXSERV];
    if (getsockname(socket_, reinterpret_cast<sockaddr*>(&address), &size) != 0 ||
        getnameinfo(reinterpret_cast<const sockaddr*>(&address), size, host, sizeof host, port,
                    sizeof port, NI_NUMERICHOST | NI_NUMERICSERV) != 0)
        return "?";
    const bool isLong = address.ss_family == AF_INET6;
    return (isLong ? "[" + std::string(host) + "]" : std::string(host)) + ':' + port;
}

void MetricsListener::Work() {
    for (;;) {
        std::vector<pollfd> events = {{stop_, POLLIN, 0}};
        // No more are accepted than there is room for; they wait in the queue.
        events.push_back({connections_.size() < kMostConnections ? socket_ : -1, POLLIN, 0});
        for (const Connection& connection : connections_)
            events.push_back({connection.socket,
                              static_cast<short>(connection.isAnswering ? POLLOUT : POLLIN), 0});
        constexpr int kLook = 1000;  // for deadlines
        if (poll(events.data(), events.size(), connections_.empty() ? -1 : kLook) < 0 &&
            errno != EINTR)
            return;
        if (events[0].revents != 0) return;
        std::size_t at = 2;
        for (auto connection = connections_.begin(); connection != connections_.end(); ++at) {
            const bool isReady = events[at].revents != 0;
            if (Clock::now() < connection->deadline && (!isReady || GoOn(*connection))) {
                ++connection;
            } else {
                close(connection->socket);
                connection = connections_.erase(connection);
            }
        }
        if (events[1].revents != 0) Accept();
    }
}

void MetricsListener::Accept() {
    const int accepted = accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (accepted >= 0) {
        connections_.push_back({accepted, Clock::now() + kPatience, {}, {}});
    } else if (errno == EMFILE || errno == ENFILE || errno == ENOMEM || errno == ENOBUFS) {
        // The connection stays in the queue, and poll would not wait.
        pollfd stop = {stop_, POLLIN, 0};
        constexpr int kPause = 100;
        poll(&stop, 1, kPause);
    }
}

bool MetricsListener::GoOn(Connection& connection) const {
    if (!connection.isAnswering) {
        char bytes[1024];
        const ssize_t got = recv(connection.socket, bytes, sizeof bytes, 0);
        if (got == 0) return false;
        if (got < 0) return errno == EAGAIN || errno == EINTR;
        connection.request.append(bytes, static_cast<std::size_t>(got));
        const bool isWhole = connection.request.find("\r\n\r\n") != std::string::npos;
        if (!isWhole && connection.request.size() < kLongestRequest) return true;
        connection.answer =
            isWhole ? AnswerTo(connection.request) : refusal("431 Request Header Fields Too Large");
        connection.isAnswering = true;
    }
    const ssize_t sent =
        send(connection.socket, connection.answer.data(), connection.answer.size(), MSG_NOSIGNAL);
    if (sent < 0) return errno == EAGAIN || errno == EINTR;
    connection.answer.erase(0, static_cast<std::size_t>(sent));
    return !connection.answer.empty();
}

std::string MetricsListener::AnswerTo(const std::string& request) const try {
    const std::string line = request.substr(0, request.find("\r\n"));
    const std::size_t first = line.find(' ');
    const std::size_t second = line.find(' ', first + 1);
    if (first == std::string::npos || second == std::string::npos ||
        !line.substr(second + 1).starts_with("HTTP/1."))
        return refusal("400 Bad Request");
    const std::string method = line.substr(0, first);
    std::string path = line.substr(first + 1, second - first - 1);
    path = path.substr(0, path.find('?'));
    if (path != "/metrics") return refusal("404 Not Found");
    if (method != "GET" && method != "HEAD") return refusal("405 Method Not Allowed");
    std::string answer = response("200 OK", "text/plain; version=0.0.4; charset=utf-8", text_());
    if (method == "HEAD") answer.erase(answer.find("\r\n\r\n") + 4);
    return answer;
} catch (const std::exception&) {
    return refusal("500 Internal Server Error");
}

}  // namespace oam::server
