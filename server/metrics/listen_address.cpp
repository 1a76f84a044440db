#include "metrics/listen_address.h"

#include <netdb.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace oam::server {

ListenAddress ListenAddress::Parse(const std::string& text) {
    const std::size_t colon = text.rfind(':');
    std::string host = colon == std::string::npos ? "" : text.substr(0, colon);
    const std::string port = colon == std::string::npos ? text : text.substr(colon + 1);
    if (host.size() > 2 && host.front() == '[' && host.back() == ']')
        host = host.substr(1, host.size() - 2);
    if (host.empty()) host = "127.0.0.1";
    const bool isNumber =
        !port.empty() && port.size() <= 5 &&
        std::all_of(port.begin(), port.end(), [](char c) { return c >= '0' && c <= '9'; });
    addrinfo hints{};
    hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV | AI_PASSIVE;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    constexpr int kHighestPort = 65535;
    if (!isNumber || std::stoi(port) > kHighestPort ||
        getaddrinfo(host.c_str(), port.c_str(), &hints, &found) != 0)
        throw std::runtime_error("\"" + text + "\" is no address for metrics: PORT or HOST:PORT");
    ListenAddress parsed;
    std::memcpy(&parsed.address, found->ai_addr, found->ai_addrlen);
    parsed.size = found->ai_addrlen;
    freeaddrinfo(found);
    return parsed;
}

}  // namespace oam::server
