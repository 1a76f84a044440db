// A daemon of another host, or of this one over TCP: always with mutual TLS.
#pragma once

#include <string>

namespace oam {

struct RemoteHost {
    std::string address;      // "host:port"; the host is what its certificate must name
    std::string certificate;  // of who calls, PEM files
    std::string key;
    std::string authorities;  // who signs the hosts' certificates
};

}  // namespace oam
