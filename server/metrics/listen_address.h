// Where the metrics are served: "9710", ":9710" (both on the loopback alone), "127.0.0.1:9710",
// "[::1]:9710". Numeric: a name would have to be looked up.
#pragma once

#include <sys/socket.h>

#include <string>

namespace oam::server {

struct ListenAddress {
    sockaddr_storage address{};
    socklen_t size = 0;

    // std::runtime_error when it is none.
    static ListenAddress Parse(const std::string& text);
};

}  // namespace oam::server
