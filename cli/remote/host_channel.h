// The way to a daemon over TCP.
#pragma once

#include <grpcpp/channel.h>

#include <memory>

#include "remote_host.h"

namespace oam {

// Files that cannot be read are a Failure; a host that is not there, or is not who it should be, is
// found at the first call.
std::shared_ptr<grpc::Channel> OpenHostChannel(const RemoteHost& host);

}  // namespace oam
