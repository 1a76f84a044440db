// A refusal on its way to the client: a gRPC status with oam.v1.Refusal as its binary details.
#pragma once

#include <grpcpp/support/status.h>

#include <string>

#include "failure.h"

namespace oam::server {

// What the service or a plug-in refused.
grpc::Status RefusalOf(const Failure& failure);

// What the daemon refuses by itself.
grpc::Status Refused(grpc::StatusCode status, const std::string& rule,
                     const std::string& remedy = {});

}  // namespace oam::server
