#include "mirror/mirror.h"

#include <google/protobuf/descriptor.h>
#include <google/protobuf/message.h>

#include <memory>

#include "wire/daemon_channel.h"

namespace oam::console {
namespace {

using google::protobuf::Descriptor;
using google::protobuf::Message;

std::unique_ptr<Message> newMessage(const Descriptor& type) {
    auto* const factory = google::protobuf::MessageFactory::generated_factory();
    return std::unique_ptr<Message>(factory->GetPrototype(&type)->New());
}

struct StatusRow {
    grpc::StatusCode code;
    const char* reason;
    int http;
};

constexpr StatusRow kStatuses[] = {
    {grpc::StatusCode::INVALID_ARGUMENT, "invalid", 400},
    {grpc::StatusCode::UNAUTHENTICATED, "not-logged-in", 401},
    {grpc::StatusCode::PERMISSION_DENIED, "not-permitted", 403},
    {grpc::StatusCode::NOT_FOUND, "not-found", 404},
    {grpc::StatusCode::ALREADY_EXISTS, "already-exists", 409},
    {grpc::StatusCode::FAILED_PRECONDITION, "refused", 409},
    {grpc::StatusCode::ABORTED, "refused", 409},
    {grpc::StatusCode::RESOURCE_EXHAUSTED, "busy", 429},
    {grpc::StatusCode::CANCELLED, "cancelled", 499},
    {grpc::StatusCode::UNIMPLEMENTED, "not-supported", 501},
    {grpc::StatusCode::UNAVAILABLE, "unavailable", 503},
    {grpc::StatusCode::DEADLINE_EXCEEDED, "too-slow", 504},
};
constexpr StatusRow kOther = {grpc::StatusCode::INTERNAL, "internal", 500};

const StatusRow& rowOf(grpc::StatusCode code) {
    for (const StatusRow& row : kStatuses)
        if (row.code == code) return row;
    return kOther;
}

void takeJson(const std::string& text, Message* message) {
    const Json json = Json::parse(text, nullptr, false);
    if (json.is_discarded()) throw BadRequest("the body is no JSON");
    FromJson(json, message);
}

}  // namespace

std::string BytesOfJson(const Route& route, const std::string& json) {
    const auto message = newMessage(*route.Verb().input_type());
    if (!json.empty()) takeJson(json, message.get());
    return message->SerializeAsString();
}

std::string RequestBytes(const FoundRoute& found, const Query& query, const std::string& body) {
    const auto message = newMessage(*found.route->Verb().input_type());
    if (!found.route->TakesQuery() && found.route->kind == RouteKind::kUnary && !body.empty())
        takeJson(body, message.get());
    for (const auto& [field, value] : query) SetField(message.get(), field, value);
    for (const auto& [field, value] : found.parts) SetField(message.get(), field, value);
    return message->SerializeAsString();
}

Json AnswerJson(const Route& route, const std::string& bytes) {
    const auto message = newMessage(*route.Verb().output_type());
    if (!message->ParseFromString(bytes)) return nullptr;
    return ToJson(*message);
}

Json RefusalJson(const grpc::Status& status) {
    Json error;
    error["reason"] = rowOf(status.error_code()).reason;
    if (const auto refusal = wire::RefusalIn(status)) {
        error.update(ToJson(*refusal));
    } else {
        error["rule"] = "the daemon does not answer: " + status.error_message();
        error["remedy"] = "`systemctl status oamd` tells how it is";
    }
    return {{"error", std::move(error)}};
}

Json RefusalJson(const std::string& reason, const std::string& rule, const std::string& remedy) {
    return {{"error", {{"reason", reason}, {"rule", rule}, {"remedy", remedy}}}};
}

int HttpStatusOf(grpc::StatusCode code) { return rowOf(code).http; }

}  // namespace oam::console
