// The one class that knows gRPC's server: it serves the given services on the local socket and,
// when asked, on a TCP address with mutual TLS.
#pragma once

#include <grpcpp/grpcpp.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "metrics/request_counts.h"
#include "transport/callers.h"
#include "transport/unix_listener.h"

namespace oam::server {

// Read again by themselves when they change.
struct TlsFiles {
    std::string certificate;
    std::string key;
    std::string clientAuthorities;  // who signs the clients' certificates
};

struct TransportSettings {
    std::string socketPath;
    int inheritedSocket = -1;  // of systemd
    std::string tcpAddress;    // "host:port"; empty: none
    TlsFiles tls;
    RequestCounts* requests = nullptr;  // where calls are counted
};

class Transport {
  public:
    // std::runtime_error when it cannot listen.
    Transport(const TransportSettings& settings, Callers& callers,
              const std::vector<grpc::Service*>& services);
    ~Transport();

    // The port of the TCP listener, also when the address asked for any (0: none).
    int Port() const { return port_; }
    // What the standard health service answers.
    void SetServing(bool isServing);
    // No new connections; calls in flight get so long, then they are cancelled.
    void Shutdown(std::chrono::milliseconds grace);

  private:
    int port_ = 0;
    std::unique_ptr<grpc::Server> server_;
    std::unique_ptr<UnixListener> listener_;
};

}  // namespace oam::server
