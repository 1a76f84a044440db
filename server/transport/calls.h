// What every call goes through: who calls, may they, is there a thread for it, what came of it.
//
// A call's work runs on a thread of the lanes, never on the transport's: it may block as long as a
// plug-in likes. Every call is answered once, also when its work is dropped at the end.
#pragma once

#include <grpcpp/server_context.h>

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "access/roles.h"
#include "transport/callers.h"
#include "work/lanes.h"

namespace oam::server {

class Journal;

struct Verb {
    const char* name;  // "ChangeObject", for logs and refusals
    Role role;         // the least that may
};

// A verb of one caller.
struct Call {
    Caller caller;
    // The caller's; the lower one, when the caller speaks for somebody else.
    Role role = Role::kNone;
    std::string user;  // the caller's name; "alice via oam-console" for one who speaks for alice
};

// What a call is about.
struct Target {
    // Of a board or another object, which is both.
    Target(const std::string& name) : object(name), lane(name) {}
    Target(const char* name) : Target(std::string(name)) {}
    Target(std::string about, std::string hangsOn)
        : object(std::move(about)), lane(std::move(hangsOn)) {}

    std::string object;  // for a denial; empty: everything, or nothing of its own
    std::string lane;    // what the call may hang on; empty: nothing of its own
};
inline Target About(std::string object) { return {std::move(object), ""}; }

class Calls {
  public:
    Calls(const Callers& callers, Lanes& lanes, Journal& journal);
    ~Calls();

    // The rules from now on. Any thread.
    void SetRoles(std::shared_ptr<const Roles> roles);

    // The caller of a context, when they may; else the refusal, which is logged with role, verb and
    // object.
    grpc::Status Admit(const grpc::ServerContextBase& context, const Verb& verb,
                       const std::string& object, Call* call) const;

    using Work = std::function<grpc::Status(const Call& call)>;
    // What the work throws becomes the refusal.
    grpc::ServerUnaryReactor* Take(grpc::CallbackServerContext* context, const Verb& verb,
                                   const Target& target, Work work);

    // The same for work that asks the service for nothing and must be done while all of the lanes
    // hang.
    grpc::ServerUnaryReactor* TakeAside(grpc::CallbackServerContext* context, const Verb& verb,
                                        Work work);

    // The same for calls that answer in their own way: `answer` is called once.
    void Start(const Call& call, const Verb& verb, const std::string& lane, Work work,
               std::function<void(const grpc::Status&)> answer);

    // The same for work that no other call may run beside: those that run are waited for, new ones
    // wait. It is refused when one of them does not end.
    void StartAlone(const Call& call, const Verb& verb, Work work,
                    std::function<void(const grpc::Status&)> answer);

  private:
    grpc::ServerUnaryReactor* TakeIn(Lanes& lanes, grpc::CallbackServerContext* context,
                                     const Verb& verb, const Target& target, Work work);
    static void StartIn(Lanes& lanes, const Call& call, const Verb& verb, const std::string& lane,
                        Work work, std::function<void(const grpc::Status&)> answer);

    const Callers& callers_;
    Lanes& lanes_;
    Journal& journal_;
    mutable std::mutex mutex_;
    std::shared_ptr<const Roles> roles_;
    // Work that is to be alone waits for what runs, and must not be one of them: its own thread.
    std::mutex aloneMutex_;
    std::thread aloneThread_;
    bool isAlone_ = false;
    Lanes aside_;
};

// A name or value of a request: bytes without NUL, and not longer than any that the service keeps;
// anything else is refused as INVALID_ARGUMENT with `what` it is.
std::string TextOf(const std::string& bytes, const char* what);

// Thrown where a request is refused for itself; becomes its status.
class CallRefusal : public std::exception {
  public:
    explicit CallRefusal(grpc::Status status) : status_(std::move(status)) {}
    const grpc::Status& Status() const { return status_; }
    const char* what() const noexcept override { return "refused"; }

  private:
    grpc::Status status_;
};

}  // namespace oam::server
