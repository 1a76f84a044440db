// One request of the mirror as a message of the API, and the answer as JSON.
#pragma once

#include <grpcpp/support/status.h>

#include <string>

#include "mirror/json_codec.h"
#include "mirror/routes.h"

namespace oam::console {

// The verb's request, serialized. BadRequest tells what does not fit.
std::string RequestBytes(const FoundRoute& found, const Query& query, const std::string& body);

// The same of a request that is JSON as a whole; an empty one is an empty request.
std::string BytesOfJson(const Route& route, const std::string& json);

// The verb's answer, or one message of its stream.
Json AnswerJson(const Route& route, const std::string& bytes);

// What a refused call is told as: {"error": {"reason", "code", "codeName", "party", "object",
// "keyword", "value", "rule", "remedy", "plugin"}}.
Json RefusalJson(const grpc::Status& status);
// One of the gateway's own.
Json RefusalJson(const std::string& reason, const std::string& rule,
                 const std::string& remedy = {});
int HttpStatusOf(grpc::StatusCode code);

}  // namespace oam::console
