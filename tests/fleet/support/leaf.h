// A host's own server, with the shipped configuration, between the host's agent and the hub.
#pragma once

#include "nats_server.h"
#include "reserved_port.h"

namespace oam::test {

class Leaf {
  public:
    // With the host's certificate; `hubs` are Hub::LeafUrls.
    Leaf(Site& site, const std::string& name, const std::string& certificate,
         const std::string& hubs);

    NatsServer& Server() { return server_; }
    std::string Url() const { return "tls://" + clients_.Name(); }

  private:
    ReservedPort clients_;
    NatsServer server_;
};

}  // namespace oam::test
