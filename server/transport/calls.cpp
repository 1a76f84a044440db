#include "transport/calls.h"

#include <grpcpp/security/auth_context.h>

#include <algorithm>
#include <new>

#include "access/accounts.h"
#include "failure.h"
#include "foreign_text.h"
#include "journal/journal.h"
#include "transport/refusal_status.h"
#include "wire/daemon_channel.h"

namespace oam::server {
namespace {

// Longer than any name or value that a data file can hold.
constexpr std::size_t kLongestText = 64 * 1024;

// How long work that is to be alone waits for what runs.
constexpr auto kPatience = std::chrono::seconds(30);

// For work aside: it waits for nothing but a disk.
constexpr Lanes::Limits kAside = {.threads = 2, .waitingPerLane = 16, .waiting = 16};

// The end of one call: whoever forgets to answer has answered.
class Answer {
  public:
    explicit Answer(std::function<void(const grpc::Status&)> tell) : tell_(std::move(tell)) {}
    ~Answer() {
        if (tell_) tell_(Refused(grpc::StatusCode::UNAVAILABLE, "the daemon ends"));
    }
    Answer(const Answer&) = delete;
    Answer& operator=(const Answer&) = delete;

    void Give(const grpc::Status& status) { std::exchange(tell_, nullptr)(status); }

  private:
    std::function<void(const grpc::Status&)> tell_;
};

grpc::Status guarded(const Calls::Work& work, const Call& call) {
    try {
        return work(call);
    } catch (const CallRefusal& refusal) {
        return refusal.Status();
    } catch (const Failure& failure) {
        return RefusalOf(failure);
    } catch (const std::bad_alloc&) {
        return Refused(grpc::StatusCode::RESOURCE_EXHAUSTED, "the daemon is out of memory");
    } catch (const std::exception& error) {
        return Refused(grpc::StatusCode::INTERNAL, error.what());
    }
}

Caller callerOf(const grpc::ServerContextBase& context, const Callers& callers) {
    if (auto local = callers.Find(context.peer())) return std::move(*local);
    Caller caller;
    const auto authority = context.auth_context();
    if (authority && authority->IsPeerAuthenticated()) {
        const auto names = authority->GetPeerIdentity();
        if (!names.empty()) caller.certificate.assign(names[0].data(), names[0].size());
    }
    return caller;
}

std::optional<std::string> metadataOf(const grpc::ServerContextBase& context, const char* key) {
    const auto found = context.client_metadata().find(key);
    if (found == context.client_metadata().end()) return std::nullopt;
    return std::string(found->second.data(), found->second.size());
}

// Whom the caller says it speaks for. A user that nobody knows, and one of both kinds at once, is
// somebody without any rights.
std::optional<Caller> representedBy(const grpc::ServerContextBase& context) {
    const auto user = metadataOf(context, wire::kForUser);
    const auto certificate = metadataOf(context, wire::kForCertificate);
    if (!user && !certificate) return std::nullopt;
    Caller caller;
    if (user && certificate) return caller;
    if (certificate) {
        caller.certificate = *certificate;
    } else if (user->find('\0') == user->npos) {
        caller.user = UserNumber(*user);
        const auto primary = caller.user ? PrimaryGroup(*caller.user) : std::nullopt;
        if (primary) caller.groups = GroupsOf(*caller.user, *primary);
    }
    return caller;
}

}  // namespace

Calls::Calls(const Callers& callers, Lanes& lanes, Journal& journal)
    : callers_(callers),
      lanes_(lanes),
      journal_(journal),
      roles_(std::make_shared<const Roles>()),
      aside_(kAside) {}

Calls::~Calls() {
    if (aloneThread_.joinable()) aloneThread_.join();
}

void Calls::SetRoles(std::shared_ptr<const Roles> roles) {
    const std::lock_guard hold(mutex_);
    roles_ = std::move(roles);
}

grpc::Status Calls::Admit(const grpc::ServerContextBase& context, const Verb& verb,
                          const std::string& object, Call* call) const {
    std::shared_ptr<const Roles> roles;
    {
        const std::lock_guard hold(mutex_);
        roles = roles_;
    }
    call->caller = callerOf(context, callers_);
    call->role = roles->Of(call->caller);
    call->user = Shown(call->caller.Name());
    if (const auto represented = representedBy(context)) {
        call->role = std::min(call->role, roles->Of(*represented));
        call->user = Shown(represented->Name()) + " via " + call->user;
    }
    if (call->role >= verb.role) return grpc::Status::OK;
    journal_.Denied(call->user, RoleName(call->role), verb.name, object);
    return Refused(grpc::StatusCode::PERMISSION_DENIED,
                   call->user + " may not " + verb.name + ": this needs the role " +
                       RoleName(verb.role) + ", and theirs is " + RoleName(call->role),
                   "an administrator gives roles in the daemon's roles file");
}

grpc::ServerUnaryReactor* Calls::Take(grpc::CallbackServerContext* context, const Verb& verb,
                                      const Target& target, Work work) {
    return TakeIn(lanes_, context, verb, target, std::move(work));
}

grpc::ServerUnaryReactor* Calls::TakeAside(grpc::CallbackServerContext* context, const Verb& verb,
                                           Work work) {
    return TakeIn(aside_, context, verb, "", std::move(work));
}

grpc::ServerUnaryReactor* Calls::TakeIn(Lanes& lanes, grpc::CallbackServerContext* context,
                                        const Verb& verb, const Target& target, Work work) {
    auto* const reactor = context->DefaultReactor();
    Call call;
    const grpc::Status admitted = Admit(*context, verb, target.object, &call);
    if (admitted.ok())
        StartIn(lanes, call, verb, target.lane, std::move(work),
                [reactor](const grpc::Status& status) { reactor->Finish(status); });
    else
        reactor->Finish(admitted);
    return reactor;
}

void Calls::Start(const Call& call, const Verb& verb, const std::string& lane, Work work,
                  std::function<void(const grpc::Status&)> tell) {
    StartIn(lanes_, call, verb, lane, std::move(work), std::move(tell));
}

void Calls::StartIn(Lanes& lanes, const Call& call, const Verb& verb, const std::string& lane,
                    Work work, std::function<void(const grpc::Status&)> tell) {
    const auto answer = std::make_shared<Answer>(std::move(tell));
    const auto refusal = lanes.Post(verb.name, lane, [answer, call, work = std::move(work)] {
        answer->Give(guarded(work, call));
    });
    if (refusal)
        answer->Give(Refused(grpc::StatusCode::RESOURCE_EXHAUSTED, refusal->text,
                             "`oam doctor` tells what hangs"));
}

void Calls::StartAlone(const Call& call, const Verb& verb, Work work,
                       std::function<void(const grpc::Status&)> tell) {
    const std::lock_guard hold(aloneMutex_);
    if (isAlone_)
        return tell(Refused(grpc::StatusCode::RESOURCE_EXHAUSTED,
                            "an import, start, stop or restart is under way", "try again"));
    if (aloneThread_.joinable()) aloneThread_.join();
    isAlone_ = true;
    aloneThread_ = std::thread([this, call, verb, work = std::move(work), tell = std::move(tell)] {
        grpc::Status status = Refused(grpc::StatusCode::UNAVAILABLE,
                                      std::string(verb.name) + " waits for calls that do not end",
                                      "`oam doctor` tells what hangs");
        (void)lanes_.Alone(kPatience, [&] { status = guarded(work, call); });
        {
            const std::lock_guard holdAlone(aloneMutex_);
            isAlone_ = false;
        }
        tell(status);
    });
}

std::string TextOf(const std::string& bytes, const char* what) {
    const char* problem = nullptr;
    if (bytes.size() > kLongestText) problem = " is too long";
    if (bytes.find('\0') != std::string::npos) problem = " has a NUL byte";
    if (problem != nullptr)
        throw CallRefusal(Refused(grpc::StatusCode::INVALID_ARGUMENT, std::string(what) + problem));
    return bytes;
}

}  // namespace oam::server
