// The daemon as its clients reach it: a channel over its local socket, the refusal in an answer,
// and whom a client speaks for.
#pragma once

#include <grpcpp/grpcpp.h>

#include <memory>
#include <optional>
#include <string>

#include "oam/v1/refusal.pb.h"

namespace oam::wire {

// Over this connected descriptor, which it takes over. It ends with the connection, and does not
// connect again.
std::shared_ptr<grpc::Channel> ChannelOver(int descriptor);

// Nothing when the daemon did not answer at all.
std::optional<v1::Refusal> RefusalIn(const grpc::Status& status);

// A program that serves others names the one it acts for in its calls' metadata, one of these. The
// daemon gives such a call the lower one of both roles, so nothing can be gained by it.
constexpr const char* kForUser = "oam-for-user-bin";                // a local user's name
constexpr const char* kForCertificate = "oam-for-certificate-bin";  // the name in a certificate

}  // namespace oam::wire
