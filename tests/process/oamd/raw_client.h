// A connection to the daemon for requests that are bytes: whatever they hold, they are sent.
#pragma once

#include <grpcpp/generic/generic_stub.h>
#include <grpcpp/grpcpp.h>

#include <chrono>
#include <string>

#include "support/installation.h"

namespace oam::test {

class RawClient {
  public:
    explicit RawClient(const Installation& home);

    // "/oam.v1.Boards/GetBoard". Of a stream's answers none is waited for.
    grpc::Status Ask(const std::string& method, const std::string& bytes,
                     std::chrono::milliseconds limit = std::chrono::seconds(60));

  private:
    grpc::GenericStub stub_;
};

}  // namespace oam::test
