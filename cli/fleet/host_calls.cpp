#include "cli/fleet/host_calls.h"

#include <grpcpp/support/status.h>

#include <charconv>

#include "fleet/command.h"
#include "fleet/names.h"
#include "oam/v1/refusal.pb.h"

namespace oam::fleet {
namespace {

constexpr std::int64_t kLook = 100;  // milliseconds
constexpr const char* kLost =
    "the link to the fleet is lost; what became of the request is unknown";

std::uint64_t numberAtEnd(std::string_view subject) {
    subject.remove_prefix(subject.rfind('.') + 1);
    std::uint64_t number = 0;
    (void)std::from_chars(subject.data(), subject.data() + subject.size(), number);
    return number;
}

HostReply ended(grpc::StatusCode status, const std::string& rule, const std::string& remedy) {
    v1::Refusal refusal;
    refusal.set_party(v1::Refusal::PARTY_DAEMON);
    refusal.set_rule(rule);
    refusal.set_remedy(remedy);
    return {true, static_cast<int>(status), refusal.SerializeAsString()};
}

HostReply denied() {
    return ended(grpc::StatusCode::PERMISSION_DENIED,
                 "the fleet's server does not let you ask this",
                 "the fleet's keeper gives rights in the server's settings");
}

}  // namespace

// Not one that is asked for messages: that would keep to itself that nobody listens.
HostCalls::HostCalls(Link& link, std::string caller, std::chrono::seconds patience)
    : link_(link), caller_(std::move(caller)), patience_(patience), inbox_(link.NewInbox()) {
    natsSubscription* made = nullptr;
    Require(natsConnection_Subscribe(&made, link.Get(), (inbox_ + ".*").c_str(), OnMessage, this),
            "cannot listen to answers");
    answers_.reset(made);
    Require(natsSubscription_SetOnCompleteCB(made, OnComplete, this), "cannot listen to answers");
    thread_ = std::thread([this] { Work(); });
}

HostCalls::~HostCalls() {
    isEnding_ = true;
    thread_.join();
    // When the link is lost it is over already.
    (void)natsSubscription_Unsubscribe(answers_.get());
    complete_.get_future().wait();
}

void HostCalls::OnMessage(natsConnection*, natsSubscription*, natsMsg* message, void* closure) {
    const auto owned = Taken(message);
    static_cast<HostCalls*>(closure)->Take(*message);
}

void HostCalls::OnComplete(void* closure) {
    static_cast<HostCalls*>(closure)->complete_.set_value();
}

std::uint64_t HostCalls::Begin(const Request& request, Hear hear) {
    const std::string subject = CommandSubject(request.host, request.role, caller_, request.verb);
    std::uint64_t number = 0;
    {
        const std::lock_guard hold(mutex_);
        number = ++last_;
        waiting_[number] = {std::move(hear), subject, std::chrono::steady_clock::now()};
    }
    const std::string reply = inbox_ + '.' + std::to_string(number);
    natsMsg* made = nullptr;
    Require(natsMsg_Create(&made, subject.c_str(), reply.c_str(), request.data.data(),
                           static_cast<int>(request.data.size())),
            "cannot ask " + request.host);
    const MessageHandle message(made);
    Require(natsMsgHeader_Set(made, kContentHeader, kProtobuf), "cannot ask " + request.host);
    Require(natsMsgHeader_Set(made, kProgressHeader, kYes), "cannot ask " + request.host);
    link_.Publish(*made);
    return number;
}

void HostCalls::Forget(std::uint64_t number) {
    const std::lock_guard hold(mutex_);
    waiting_.erase(number);
}

void HostCalls::Work() {
    while (!isEnding_) {
        nats_Sleep(kLook);
        TakeDenials();
        GiveUpSilent();
    }
}

void HostCalls::Take(natsMsg& message) {
    const std::lock_guard hold(mutex_);
    const auto found = waiting_.find(numberAtEnd(natsMsg_GetSubject(&message)));
    if (found == waiting_.end()) return;
    Waiting& waiting = found->second;
    waiting.last = std::chrono::steady_clock::now();
    const std::string kind = HeaderOf(message, kAnswerHeader);
    if (natsMsg_IsNoResponders(&message)) {
        waiting.hear(ended(grpc::StatusCode::UNAVAILABLE, "no agent of this host is connected",
                           "`systemctl status oam-fleetd` on the host tells how it is"));
    } else if (kind == kMessage) {
        return waiting.hear({false, 0, DataOf(message)});
    } else if (kind == kEnd) {
        const std::string status = HeaderOf(message, kStatusHeader);
        int code = static_cast<int>(grpc::StatusCode::UNKNOWN);
        (void)std::from_chars(status.data(), status.data() + status.size(), code);
        waiting.hear({true, code, DataOf(message)});
    } else {
        waiting.isTaken = true;
        return;
    }
    waiting_.erase(found);
}

// `Permissions Violation for Publish to "oam.command...."`
void HostCalls::TakeDenials() {
    for (const std::string& denial : link_.TakeDenials()) {
        const std::lock_guard hold(mutex_);
        isDenied_ = true;
        std::erase_if(waiting_, [&](const auto& one) {
            const bool isMeant = denial.find('"' + one.second.subject + '"') != denial.npos;
            if (isMeant) one.second.hear(denied());
            return isMeant;
        });
    }
}

void HostCalls::GiveUpSilent() {
    const std::lock_guard hold(mutex_);
    const auto now = std::chrono::steady_clock::now();
    const bool isUp = link_.IsUp();
    std::erase_if(waiting_, [&](const auto& one) {
        const Waiting& waiting = one.second;
        if (isUp && now - waiting.last < patience_) return false;
        std::string rule =
            "nothing was heard of it for " + std::to_string(patience_.count()) + " s";
        if (waiting.isTaken)
            rule = "it took the request and fell silent; what became of it is unknown";
        if (!isUp) rule = kLost;
        // Not every denial names its request.
        waiting.hear(isDenied_ && !waiting.isTaken
                         ? denied()
                         : ended(grpc::StatusCode::UNAVAILABLE, rule, ""));
        return true;
    });
}

}  // namespace oam::fleet
