#include "support/http.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace oam::test {

int ConnectTo(const std::string& address) {
    const std::size_t colon = address.rfind(':');
    sockaddr_in where{};
    where.sin_family = AF_INET;
    where.sin_port = htons(static_cast<std::uint16_t>(std::stoi(address.substr(colon + 1))));
    inet_pton(AF_INET, address.substr(0, colon).c_str(), &where.sin_addr);
    const int connected = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const timeval limit = {30, 0};
    setsockopt(connected, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    if (connect(connected, reinterpret_cast<const sockaddr*>(&where), sizeof where) == 0)
        return connected;
    close(connected);
    return -1;
}

std::string ReadAll(int socket) {
    std::string all;
    char bytes[4096];
    for (;;) {
        const ssize_t got = recv(socket, bytes, sizeof bytes, 0);
        if (got <= 0) return all;
        all.append(bytes, static_cast<std::size_t>(got));
    }
}

std::string HttpRequest(const std::string& address, const std::string& request) {
    const int connected = ConnectTo(address);
    if (connected < 0) return "";
    (void)send(connected, request.data(), request.size(), MSG_NOSIGNAL);
    const std::string answer = ReadAll(connected);
    close(connected);
    return answer;
}

std::string HttpGet(const std::string& address, const std::string& path) {
    return HttpRequest(address, "GET " + path + " HTTP/1.1\r\nHost: test\r\n\r\n");
}

std::string BodyOf(const std::string& response) {
    const std::size_t blank = response.find("\r\n\r\n");
    return blank == std::string::npos ? "" : response.substr(blank + 4);
}

}  // namespace oam::test
