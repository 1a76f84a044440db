// Answers as HTTP.
#pragma once

#include <grpcpp/support/status.h>
#include <httplib.h>

#include <string>

#include "mirror/json_codec.h"

namespace oam::console {

void Reply(httplib::Response& response, int status, const Json& json);
void Refuse(httplib::Response& response, int status, const std::string& reason,
            const std::string& rule, const std::string& remedy = {});
// As the daemon refused.
void Refuse(httplib::Response& response, const grpc::Status& status);

}  // namespace oam::console
