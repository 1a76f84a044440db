#include "fleet/link/link.h"

#include <atomic>

#include "file_content.h"
#include "fleet/names.h"

namespace oam::fleet {
namespace {

constexpr int kConnectLimit = 3000;  // milliseconds, for each server
constexpr int kWriteLimit = 5000;
constexpr int kFlushLimit = 5000;
// A server that is there and does nothing is found out after three of them.
constexpr int kPing = 3000;
constexpr int kPingsOut = 2;

void onError(natsConnection* connection, natsSubscription*, natsStatus status, void* closure) {
    const char* text = nullptr;
    if (status != NATS_NOT_PERMITTED ||
        natsConnection_GetLastError(connection, &text) != NATS_NOT_PERMITTED || text == nullptr)
        return;
    Denials::Tell(reinterpret_cast<std::uintptr_t>(closure), text);
}

std::string passwordIn(const std::string& path) {
    FileContent file = LoadFile(path);
    if (!file.error.empty()) throw Failure("cannot read " + Quoted(path) + ": " + file.error);
    return file.content.substr(0, file.content.find_first_of("\r\n"));
}

OptionsHandle newOptions(const std::vector<std::string>& servers) {
    natsOptions* made = nullptr;
    Require(natsOptions_Create(&made), "cannot connect");
    OptionsHandle options(made);
    std::vector<const char*> names;
    for (const std::string& server : servers) names.push_back(server.c_str());
    Require(natsOptions_SetServers(made, names.data(), static_cast<int>(names.size())),
            "a server's address is wrong");
    Require(natsOptions_SetAllowReconnect(made, false), "cannot connect");
    Require(natsOptions_SetTimeout(made, kConnectLimit), "cannot connect");
    Require(natsOptions_SetWriteDeadline(made, kWriteLimit), "cannot connect");
    return options;
}

void setTls(natsOptions* options, const LinkSettings& settings) {
    if (!WantsTls(settings)) return;
    Require(natsOptions_SetSecure(options, true), "cannot use TLS");
    Require(natsOptions_LoadCATrustedCertificates(options, settings.authorities.c_str()),
            "cannot read " + Quoted(settings.authorities));
}

void setIdentity(natsOptions* options, const LinkSettings& settings) {
    if (!settings.certificate.empty())
        Require(natsOptions_LoadCertificatesChain(options, settings.certificate.c_str(),
                                                  settings.key.c_str()),
                "cannot use " + Quoted(settings.certificate) + " with " + Quoted(settings.key));
    if (!settings.user.empty())
        Require(natsOptions_SetUserInfo(options, settings.user.c_str(),
                                        passwordIn(settings.passwordFile).c_str()),
                "cannot use the password");
    if (!settings.credentials.empty())
        Require(
            natsOptions_SetUserCredentialsFromFiles(options, settings.credentials.c_str(), nullptr),
            "cannot use " + Quoted(settings.credentials));
}

// Whether a stranger gets in where this client has just got in.
bool letsAnyoneIn(const LinkSettings& settings, const std::string& server) {
    const OptionsHandle options = newOptions({server});
    setTls(options.get(), settings);
    natsConnection* stranger = nullptr;
    const natsStatus status = natsConnection_Connect(&stranger, options.get());
    const ConnectionHandle owned(stranger);
    // Nobody there any more: then it is not known. Everything else is a way to say no; some servers
    // answer nothing at all.
    if (status == NATS_NO_SERVER || status == NATS_TIMEOUT)
        throw EngineFailure(server + " went away", status);
    return status == NATS_OK;
}

}  // namespace

Link::Link(const LinkSettings& settings, const std::string& client)
    : client_(client),
      streamApi_(settings.domain.empty() ? kOwnApi : "$JS." + settings.domain + ".API.") {
    if (const std::string why = WhyNotAllowed(settings); !why.empty()) throw UsageError(why);
    const OptionsHandle owned = newOptions(settings.servers);
    natsOptions* const options = owned.get();
    setTls(options, settings);
    setIdentity(options, settings);
    Require(natsOptions_SetName(options, settings.name.c_str()), "cannot connect");
    Require(natsOptions_SetCustomInboxPrefix(options, InboxPrefix(client).c_str()),
            "cannot connect");
    Require(natsOptions_SetPingInterval(options, kPing), "cannot connect");
    Require(natsOptions_SetMaxPingsOut(options, kPingsOut), "cannot connect");
    Require(
        natsOptions_SetErrorHandler(options, onError, reinterpret_cast<void*>(denials_.Number())),
        "cannot connect");
    natsConnection* connection = nullptr;
    std::string names;
    for (const std::string& server : settings.servers)
        names += (names.empty() ? "" : ", ") + server;
    Require(natsConnection_Connect(&connection, options), "cannot connect to " + names);
    connection_.reset(connection);
    const std::string server = Server();
    if (letsAnyoneIn(settings, server))
        throw Failure(server + " lets anyone in",
                      "it must know its clients, by certificate or password, and have no user for "
                      "those who say nothing",
                      kNotPermitted);
    // What was found out counts for the server that this link still has.
    Flush();
    jsOptions js;
    Require(jsOptions_Init(&js), "cannot use streams");
    if (!settings.domain.empty()) js.Domain = settings.domain.c_str();
    jsCtx* streams = nullptr;
    Require(natsConnection_JetStream(&streams, connection, &js), "cannot use streams");
    streams_.reset(streams);
}

Link::~Link() = default;

bool Link::IsUp() const { return !natsConnection_IsClosed(connection_.get()); }

void Link::Close() { natsConnection_Close(connection_.get()); }

std::vector<std::string> Link::TakeDenials() { return denials_.Take(); }

std::string Link::Server() const {
    char url[512];
    return natsConnection_GetConnectedUrl(connection_.get(), url, sizeof url) == NATS_OK ? url : "";
}

std::size_t Link::LargestMessage() const {
    return static_cast<std::size_t>(natsConnection_GetMaxPayload(connection_.get()));
}

void Link::Publish(const std::string& subject, std::string_view data) {
    Require(natsConnection_Publish(connection_.get(), subject.c_str(), data.data(),
                                   static_cast<int>(data.size())),
            "cannot send to " + subject);
}

void Link::Publish(natsMsg& message) {
    Require(natsConnection_PublishMsg(connection_.get(), &message),
            std::string("cannot send to ") + natsMsg_GetSubject(&message));
}

void Link::Flush() {
    Require(natsConnection_FlushTimeout(connection_.get(), kFlushLimit),
            "the server does not answer");
}

MessageHandle Link::Request(const std::string& subject, std::string_view data,
                            std::chrono::milliseconds limit) {
    natsMsg* answer = nullptr;
    Require(natsConnection_Request(&answer, connection_.get(), subject.c_str(), data.data(),
                                   static_cast<int>(data.size()), limit.count()),
            "no answer to " + subject);
    return MessageHandle(answer);
}

SubscriptionHandle Link::Subscribe(const std::string& subject) {
    natsSubscription* subscription = nullptr;
    Require(natsConnection_SubscribeSync(&subscription, connection_.get(), subject.c_str()),
            "cannot listen to " + subject);
    return SubscriptionHandle(subscription);
}

std::string Link::NewInbox() const {
    static std::atomic<std::uint64_t> last{0};
    natsInbox* inbox = nullptr;
    Require(natsInbox_Create(&inbox), "cannot listen");
    // The library's own begins with its usual prefix; what follows is what nobody guesses.
    const std::string name = inbox;
    natsInbox_Destroy(inbox);
    return InboxPrefix(client_) + '.' + name.substr(name.rfind('.') + 1) + '-' +
           std::to_string(++last);
}

}  // namespace oam::fleet
