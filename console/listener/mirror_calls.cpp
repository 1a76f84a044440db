#include "listener/mirror_calls.h"

#include "events/alert_events.h"
#include "events/message_events.h"
#include "listener/replies.h"
#include "oam/v1/configuration.grpc.pb.h"

namespace oam::console {
namespace {

constexpr std::size_t kLongestPlain = 256 * 1024;
constexpr std::size_t kLongestFile = 64 * 1024 * 1024;
constexpr std::size_t kPiece = 64 * 1024;

// Behind which number a browser that lost its stream goes on.
std::optional<std::uint64_t> lastEventOf(const httplib::Request& request) {
    const std::string text = request.get_header_value("Last-Event-ID");
    const Json json = Json::parse(text, nullptr, false);
    if (!json.is_number_unsigned()) return std::nullopt;
    return json.get<std::uint64_t>();
}

}  // namespace

std::size_t MirrorCalls::LongestBody(const std::string& method, const std::string& path) {
    const auto found = FindRoute(method, path);
    const bool isFile = found.route && found.route->kind == RouteKind::kImport;
    return isFile ? kLongestFile : kLongestPlain;
}

void MirrorCalls::Serve(const httplib::Request& request, httplib::Response& response,
                        const Identity& identity, const std::string& path, const std::string& query,
                        const std::string& body) {
    const auto found = FindRoute(request.method, path);
    if (!found.route && found.isOtherMethod)
        return Refuse(response, 405, "wrong-method", "there is no such method for this path");
    if (!found.route) return Refuse(response, 404, "not-found", "there is no such path");
    const auto fields = ParseQuery(query);
    if (!fields) return Refuse(response, 400, "invalid", "an escape in the query is wrong");
    std::string bytes;
    try {
        bytes = RequestBytes(found, *fields, body);
    } catch (const BadRequest& error) {
        return Refuse(response, 400, "invalid", error.what());
    }
    switch (found.route->kind) {
        case RouteKind::kEvents:
            return Events(request, response, identity, *found.route, bytes);
        case RouteKind::kExport:
            return Export(response, identity, *found.route);
        case RouteKind::kImport:
            return Import(response, identity, bytes, body);
        case RouteKind::kUnary:
            break;
    }
    std::string answer;
    const auto status = daemon_.Call(found.route->FullMethod(), bytes, &answer, identity,
                                     /*mayRepeat=*/request.method == "GET");
    if (!status.ok()) return Refuse(response, status);
    Reply(response, 200, AnswerJson(*found.route, answer));
}

void MirrorCalls::Events(const httplib::Request& request, httplib::Response& response,
                         const Identity& identity, const Route& route, const std::string& bytes) {
    if (std::string_view(route.verb) == "WatchAlerts") {
        v1::WatchAlertsRequest watch;
        (void)watch.ParseFromString(bytes);
        if (const auto after = lastEventOf(request)) watch.set_after(*after);
        return streams_.Serve(response,
                              std::make_unique<AlertEvents>(daemon_, std::move(watch), identity));
    }
    const auto channel = daemon_.LivingChannel();
    if (!channel) return Refuse(response, NobodyListens(daemon_.SocketPath()));
    streams_.Serve(response, std::make_unique<MessageEvents>(
                                 route, std::make_unique<MessageStream>(channel, route.FullMethod(),
                                                                        bytes, identity)));
}

// In memory as a whole: only then is it known whether it can be sent.
void MirrorCalls::Export(httplib::Response& response, const Identity& identity,
                         const Route& route) {
    const auto channel = daemon_.LivingChannel();
    if (!channel) return Refuse(response, NobodyListens(daemon_.SocketPath()));
    MessageStream stream(channel, route.FullMethod(), "", identity);
    std::string file;
    while (!stream.End())
        if (const auto bytes = stream.Next(std::chrono::seconds(1))) {
            v1::ExportResponse piece;
            (void)piece.ParseFromString(*bytes);
            file += piece.piece();
        }
    if (const auto end = *stream.End(); !end.ok()) {
        if (IsConnectionGone(end)) daemon_.Lost(channel);
        return Refuse(response, end);
    }
    response.status = 200;
    response.set_header("Cache-Control", "no-store");
    response.set_header("Content-Disposition", "attachment; filename=\"configuration.oam\"");
    response.set_content(file, "application/octet-stream");
}

void MirrorCalls::Import(httplib::Response& response, const Identity& identity,
                         const std::string& bytes, const std::string& file) {
    const auto channel = daemon_.LivingChannel();
    if (!channel) return Refuse(response, NobodyListens(daemon_.SocketPath()));
    grpc::ClientContext context;
    Introduce(context, identity);
    v1::ImportResponse answer;
    const auto stub = v1::Configuration::NewStub(channel);
    const auto stream = stub->Import(&context, &answer);
    v1::ImportRequest request;
    (void)request.ParseFromString(bytes);
    for (std::size_t at = 0; at < file.size(); at += kPiece) {
        request.set_piece(file.substr(at, kPiece));
        if (!stream->Write(request)) break;
    }
    (void)stream->WritesDone();
    const grpc::Status status = stream->Finish();
    if (!status.ok()) {
        if (IsConnectionGone(status)) daemon_.Lost(channel);
        return Refuse(response, status);
    }
    Reply(response, 200, ToJson(answer));
}

}  // namespace oam::console
