#include "fleet/agent/command_server.h"

#include <atomic>
#include <system_error>
#include <thread>

#include "daemon/message_stream.h"
#include "fleet/agent/say.h"
#include "foreign_text.h"
#include "mirror/mirror.h"
#include "oam/v1/configuration.grpc.pb.h"
#include "wire/daemon_channel.h"

namespace oam::fleet {
namespace {

constexpr std::int64_t kLook = 250;  // milliseconds
constexpr std::size_t kMostAtOnce = 32;
// No verb: the server must not let it through.
constexpr const char* kQuestion = "MayAHostAsk";
constexpr std::size_t kPiece = 64 * 1024;
constexpr auto kStreamLook = std::chrono::milliseconds(500);
// Nobody follows operations for longer.
constexpr auto kStreamLimit = std::chrono::hours(24);

grpc::Status refused(grpc::StatusCode code, const std::string& rule,
                     const std::string& remedy = {}) {
    v1::Refusal refusal;
    refusal.set_party(v1::Refusal::PARTY_DAEMON);
    refusal.set_rule(rule);
    refusal.set_remedy(remedy);
    return {code, rule, refusal.SerializeAsString()};
}

// Sessions and alerts live as long as a connection does, and a request has none.
const console::Route* routeOf(const std::string& verb) {
    for (const console::Route& route : console::Routes())
        if (verb == route.verb && std::string_view(route.service) != "Sessions" &&
            verb != "WatchAlerts")
            return &route;
    return nullptr;
}

bool hasSeveral(const console::Route& route) {
    return route.kind == console::RouteKind::kEvents || route.kind == console::RouteKind::kExport;
}

// The request's bytes; BadRequest tells what does not fit.
std::string bytesOf(const console::Route& route, const CommandAnswer& answer) {
    if (answer.IsProtobuf()) return answer.Data();
    return console::BytesOfJson(route, answer.Data());
}

}  // namespace

struct CommandServer::Running {
    std::shared_ptr<CommandAnswer> answer;
    std::atomic<bool> isOver{false};
    std::thread thread;
};

CommandServer::CommandServer(console::DaemonConnection& daemon, const DaemonWatch& watch,
                             std::string host, AgentFigures& figures)
    : daemon_(daemon), watch_(watch), host_(std::move(host)), figures_(figures) {}

CommandServer::~CommandServer() = default;

bool CommandServer::LetsHostsAsk(Link& link, const std::string& host) {
    const auto heard = link.Subscribe(CommandSubjects(host));
    link.Publish(CommandSubject(host, "admin", host, kQuestion), "");
    link.Flush();
    std::uint64_t waiting = 0;
    Require(natsSubscription_QueuedMsgs(heard.get(), &waiting), "cannot listen to commands");
    // Others may ask at this very moment.
    for (; waiting > 0; --waiting) {
        natsMsg* message = nullptr;
        if (natsSubscription_NextMsg(&message, heard.get(), kLook) != NATS_OK) break;
        const auto owned = Taken(message);
        const auto name = ParseCommandSubject(natsMsg_GetSubject(message));
        if (name && name->verb == kQuestion && name->caller == host) return true;
    }
    return false;
}

bool CommandServer::IsOfThatQuestion(const std::string& denial) {
    return denial.find(std::string(".") + kQuestion + '"') != denial.npos;
}

void CommandServer::Serve(const std::shared_ptr<Link>& link, const std::stop_token& stop) {
    const auto requests = link->Subscribe(CommandSubjects(host_));
    while (link->IsUp() && !stop.stop_requested()) {
        natsMsg* message = nullptr;
        if (natsSubscription_NextMsg(&message, requests.get(), kLook) == NATS_OK) {
            const auto owned = Taken(message);
            Take(link, *message);
        }
        Tend();
    }
}

bool CommandServer::Finish(std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    for (;;) {
        Tend();
        if (running_.empty()) return true;
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

// Joins what is over, and tells that the rest is at work.
void CommandServer::Tend() {
    std::erase_if(running_, [](const std::shared_ptr<Running>& one) {
        if (!one->isOver) {
            one->answer->Working();
            return false;
        }
        one->thread.join();
        return true;
    });
}

void CommandServer::Take(const std::shared_ptr<Link>& link, natsMsg& request) {
    const auto answer = std::make_shared<CommandAnswer>(link, request);
    if (running_.size() >= kMostAtOnce)
        return RefuseForNow(*answer, "the host is at work on " + std::to_string(running_.size()) +
                                         " requests of the fleet already");
    answer->Taken();
    const auto running = std::make_shared<Running>();
    running->answer = answer;
    running_.push_back(running);
    ++figures_.commandsRunning;
    try {
        running->thread = std::thread([this, running] {
            Do(running->answer);
            --figures_.commandsRunning;
            running->isOver = true;
        });
    } catch (const std::system_error& error) {
        --figures_.commandsRunning;
        running_.pop_back();
        RefuseForNow(*answer, std::string("the host has no thread for it: ") + error.what());
    }
}

void CommandServer::RefuseForNow(CommandAnswer& answer, const std::string& rule) {
    figures_.Count(CommandEnd::kRefused);
    answer.Refuse(refused(grpc::StatusCode::RESOURCE_EXHAUSTED, rule, "try again"));
}

void CommandServer::Do(const std::shared_ptr<CommandAnswer>& answer) {
    grpc::Status status;
    try {
        const auto name = ParseCommandSubject(answer->Subject());
        status = name ? Call(*answer, *name)
                      : refused(grpc::StatusCode::INVALID_ARGUMENT,
                                "the subject is none of a request: " + Shown(answer->Subject()));
    } catch (const console::BadRequest& error) {
        status = refused(grpc::StatusCode::INVALID_ARGUMENT, error.what());
    } catch (const std::exception& error) {
        status = refused(grpc::StatusCode::INTERNAL, error.what());
    }
    if (status.ok()) return figures_.Count(CommandEnd::kDone);
    figures_.Count(status.error_code() == grpc::StatusCode::UNAVAILABLE ? CommandEnd::kNoDaemon
                                                                        : CommandEnd::kRefused);
    answer->Refuse(status);
}

grpc::Status CommandServer::Call(CommandAnswer& answer, const CommandName& name) {
    const console::Route* const route = routeOf(name.verb);
    if (route == nullptr)
        return refused(grpc::StatusCode::UNIMPLEMENTED,
                       "no host does " + Shown(name.verb) + " for the fleet");
    // The server has let the caller through for this role; so the verb must be one of that role.
    if (name.role != route->role)
        return refused(
            grpc::StatusCode::PERMISSION_DENIED,
            name.verb + " is asked for as " + route->role + ", not as " + Shown(name.role));
    if (hasSeveral(*route) && !answer.HasProgress())
        return refused(grpc::StatusCode::INVALID_ARGUMENT,
                       name.verb + " answers with several messages: ask with Oam-Progress");
    if (watch_.Now().daemon != Beat::Daemon::kAnswering)
        return refused(grpc::StatusCode::UNAVAILABLE,
                       std::string("the host's daemon is ") + DaemonText(watch_.Now().daemon) +
                           " since " + watch_.Now().since,
                       "`systemctl status oamd` on the host tells how it is");
    const console::Identity identity{console::Identity::Kind::kCertificate, name.caller};
    const std::string request = bytesOf(*route, answer);
    if (hasSeveral(*route)) return Stream(answer, *route, request, identity);
    if (route->kind == console::RouteKind::kImport)
        return Import(answer, *route, request, identity);
    std::string bytes;
    const bool mayRepeat = std::string_view(route->method) == "GET";
    const auto status = daemon_.Call(route->FullMethod(), request, &bytes, identity, mayRepeat);
    if (status.ok()) answer.End(*route, bytes);
    return status;
}

grpc::Status CommandServer::Stream(CommandAnswer& answer, const console::Route& route,
                                   const std::string& request, const console::Identity& identity) {
    const auto channel = daemon_.LivingChannel();
    if (!channel) return console::NobodyListens(daemon_.SocketPath());
    console::MessageStream stream(channel, route.FullMethod(), request, identity);
    const auto end = std::chrono::steady_clock::now() + kStreamLimit;
    while (!stream.End()) {
        if (const auto bytes = stream.Next(kStreamLook)) answer.Message(route, *bytes);
        if (std::chrono::steady_clock::now() > end || !answer.IsWanted())
            return refused(grpc::StatusCode::CANCELLED, "nobody waits for it any more");
    }
    const grpc::Status status = *stream.End();
    if (console::IsConnectionGone(status)) daemon_.Lost(channel);
    if (status.ok()) answer.End(route, "");
    return status;
}

// The request is one piece, and goes on in smaller ones.
grpc::Status CommandServer::Import(CommandAnswer& answer, const console::Route& route,
                                   const std::string& request, const console::Identity& identity) {
    const auto channel = daemon_.LivingChannel();
    if (!channel) return console::NobodyListens(daemon_.SocketPath());
    v1::ImportRequest whole;
    if (!whole.ParseFromString(request))
        return refused(grpc::StatusCode::INVALID_ARGUMENT, "the request cannot be read");
    grpc::ClientContext context;
    console::Introduce(context, identity);
    v1::ImportResponse response;
    const auto stub = v1::Configuration::NewStub(channel);
    const auto stream = stub->Import(&context, &response);
    v1::ImportRequest piece = whole;
    for (std::size_t at = 0; at < whole.piece().size(); at += kPiece) {
        piece.set_piece(whole.piece().substr(at, kPiece));
        if (!stream->Write(piece)) break;
    }
    (void)stream->WritesDone();
    const grpc::Status status = stream->Finish();
    if (console::IsConnectionGone(status)) daemon_.Lost(channel);
    if (status.ok()) answer.End(route, response.SerializeAsString());
    return status;
}

}  // namespace oam::fleet
