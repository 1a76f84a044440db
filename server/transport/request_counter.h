// Counts every call by its method and result, whichever way it is served.
#pragma once

#include <grpcpp/support/server_interceptor.h>

#include <memory>

#include "metrics/request_counts.h"

namespace oam::server {

std::unique_ptr<grpc::experimental::ServerInterceptorFactoryInterface> NewRequestCounter(
    RequestCounts& counts);

}  // namespace oam::server
