#include "listener/gateway.h"

#include <sys/socket.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <stdexcept>
#include <thread>

#include "listener/body.h"
#include "listener/live_certificates.h"
#include "listener/replies.h"
#include "mirror/openapi.h"
#include "page/files.h"

namespace oam::console {
namespace {

constexpr const char* kApi = "/api/v1";
// An import is the longest body; it is 64 MiB, and each handler has a limit of its own.
constexpr std::size_t kLongestBody = std::size_t{65} << 20;
constexpr int kBacklog = 128;

// The library listens with a backlog of five, and lets a second process take the same port.
template <class Base>
class Listening : public Base {
  public:
    using Base::Base;
    void Deepen() { (void)::listen(Base::svr_sock_, kBacklog); }
};

void setSocketOptions(int socket) {
    const int one = 1;
    (void)setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
}

std::vector<std::string> namesOf(const Settings& settings) {
    std::vector<std::string> names = settings.names;
    names.push_back(settings.host);
    if (settings.isLoopback) names.insert(names.end(), {"localhost", "127.0.0.1", "::1"});
    return names;
}

void serveFile(const httplib::Request& request, httplib::Response& response,
               const std::string& path) {
    const PageFile* const file = FindPageFile(path);
    if (file == nullptr) return Refuse(response, 404, "not-found", "there is no such page");
    if (!Guard::ChangesNothing(request.method))
        return Refuse(response, 405, "wrong-method", "a page can only be read");
    response.set_header("ETag", file->tag);
    response.set_header("Cache-Control", "no-cache");
    if (request.get_header_value("If-None-Match") == file->tag) {
        response.status = 304;
        return;
    }
    response.status = 200;
    response.set_content(file->bytes, file->size, file->type);
}

}  // namespace

Gateway::Gateway(const Settings& settings, const std::string& socketPath)
    : names_(namesOf(settings)),
      daemon_(socketPath),
      counts_(std::make_shared<Workers::Counts>(Workers::Limits{32, settings.streams})),
      streams_(counts_),
      calls_(daemon_, streams_),
      login_(settings, daemon_) {
    std::function<void()> deepen;
    if (settings.HasTls()) {
        certificates_ = std::make_unique<LiveCertificates>(settings.tls);
        auto server = std::make_unique<Listening<httplib::SSLServer>>([this](SSL_CTX& context) {
            certificates_->Serve(context);
            return true;
        });
        deepen = [raw = server.get()] { raw->Deepen(); };
        server_ = std::move(server);
    } else {
        auto server = std::make_unique<Listening<httplib::Server>>();
        deepen = [raw = server.get()] { raw->Deepen(); };
        server_ = std::move(server);
    }
    SetUp(*server_);
    const int port = settings.port == 0 ? server_->bind_to_any_port(settings.host)
                     : server_->bind_to_port(settings.host, settings.port) ? settings.port
                                                                           : -1;
    if (port < 0)
        throw std::runtime_error("cannot listen at " + settings.listen + ": " +
                                 std::strerror(errno));
    deepen();
    port_ = port;
    MakeGuard();
    login_.SetPort(port);
    const bool isV6 = settings.host.find(':') != settings.host.npos;
    address_ = std::string(settings.HasTls() ? "https" : "http") + "://" +
               (isV6 ? '[' + settings.host + ']' : settings.host) + ':' + std::to_string(port) +
               '/';
    server_->set_default_headers(Guard::Headers(settings.HasTls()));
}

Gateway::~Gateway() = default;

void Gateway::MakeGuard() {
    std::vector<std::string> names = names_;
    if (certificates_)
        for (std::string& name : certificates_->Names()) names.push_back(std::move(name));
    guard_.store(std::make_shared<Guard>(names, port_));
}

void Gateway::ReloadCertificates() {
    if (!certificates_) return;
    certificates_->Reload();
    MakeGuard();
}

void Gateway::SetUp(httplib::Server& server) {
    server.new_task_queue = [this] { return new Workers(counts_); };
    server.set_socket_options(setSocketOptions);
    server.set_tcp_nodelay(true);
    server.set_keep_alive_timeout(3);
    server.set_keep_alive_max_count(1000);
    server.set_payload_max_length(kLongestBody);
    server.set_exception_handler(
        [](const httplib::Request&, httplib::Response& response, std::exception_ptr) {
            Refuse(response, 500, "internal", "the gateway could not do this");
        });
    server.set_error_handler([](const httplib::Request&, httplib::Response& response) {
        if (response.body.empty())
            Refuse(response, response.status, "invalid", "the request makes no sense");
    });
    // Paths are ours to take apart: names in them may hold any byte.
    constexpr const char* kAny = R"([\s\S]*)";
    const auto plain = [this](const httplib::Request& request, httplib::Response& response) {
        Handle(request, response, nullptr);
    };
    const auto withBody = [this](const httplib::Request& request, httplib::Response& response,
                                 const httplib::ContentReader& reader) {
        Handle(request, response, &reader);
    };
    server.Get(kAny, plain);
    server.Options(kAny, plain);
    server.Post(kAny, withBody);
    server.Put(kAny, withBody);
    server.Patch(kAny, withBody);
    server.Delete(kAny, withBody);
}

void Gateway::Handle(const httplib::Request& request, httplib::Response& response,
                     const httplib::ContentReader* reader) {
    if (const auto objection = guard_.load()->Look(request)) {
        if (reader != nullptr) DropBody(request, *reader);
        return Refuse(response, objection->status, objection->reason, objection->rule);
    }
    const auto question = request.target.find('?');
    const std::string path = request.target.substr(0, question);
    const std::string query =
        question == std::string::npos ? "" : request.target.substr(question + 1);
    if (path.starts_with("/api/")) return HandleApi(request, response, path, query, reader);
    if (reader != nullptr) DropBody(request, *reader);
    serveFile(request, response, path);
}

void Gateway::HandleApi(const httplib::Request& request, httplib::Response& response,
                        const std::string& path, const std::string& query,
                        const httplib::ContentReader* reader) {
    const std::string inside =
        path.starts_with(std::string(kApi) + '/') ? path.substr(std::strlen(kApi)) : "";
    const bool isSession = inside == "/session";
    std::optional<Identity> identity;
    if (!isSession && inside != "/openapi.json") {
        identity = login_.Admit(request, response);
        if (!identity) {
            if (reader != nullptr) DropBody(request, *reader);
            return;
        }
    }
    std::string body;
    if (reader != nullptr) {
        constexpr std::size_t kLongestLogin = 4096;
        const std::size_t most =
            isSession ? kLongestLogin : MirrorCalls::LongestBody(request.method, inside);
        switch (TakeBody(request, *reader, most, &body)) {
            case BodyProblem::kTooLong:
                return Refuse(response, 413, "too-long", "the body is too long");
            case BodyProblem::kBroken:
                return Refuse(response, 400, "invalid", "the body did not come");
            case BodyProblem::kNone:
                break;
        }
        // A foreign page cannot send these without asking first, and it would ask in vain.
        const std::string type = request.get_header_value("Content-Type");
        if (!body.empty() && !type.starts_with("application/json") &&
            !type.starts_with("application/octet-stream"))
            return Refuse(response, 415, "wrong-type",
                          "a body is application/json or application/octet-stream");
    }
    if (isSession) return login_.Serve(request, response, body);
    if (inside == "/openapi.json") return Reply(response, 200, OpenApi());
    calls_.Serve(request, response, *identity, inside, query, body);
}

void Gateway::Serve() {
    if (!isStopping_) (void)server_->listen_after_bind();
    hasEnded_ = true;
}

// The library forgets a stop that comes before it serves, and does not take a second one.
void Gateway::Stop() {
    streams_.Stop();
    isStopping_ = true;
    constexpr auto kBetweenLooks = std::chrono::milliseconds(1);
    while (!server_->is_running() && !hasEnded_) std::this_thread::sleep_for(kBetweenLooks);
    if (!hasEnded_) server_->stop();
}

}  // namespace oam::console
