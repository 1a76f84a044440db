// Requests for hosts, many at a time, each with its own answers (fleet/command.h).
//
// One subject for all answers, and one thread that hears them. A request ends once: with its
// answer, or with why there is none. Who hears of it is called on that thread, and must not wait.
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <map>
#include <mutex>
#include <string>
#include <thread>

#include "fleet/link/link.h"

namespace oam::fleet {

struct HostReply {
    bool isEnd = false;
    int status = 0;    // of the end: the gRPC status
    std::string data;  // serialized: a message, or of a refusal oam.v1.Refusal
};

class HostCalls {
  public:
    // A host that is not heard of for `patience` does not answer. `link` must outlive it.
    HostCalls(Link& link, std::string caller, std::chrono::seconds patience);
    ~HostCalls();
    HostCalls(const HostCalls&) = delete;
    HostCalls& operator=(const HostCalls&) = delete;

    struct Request {
        std::string host;
        std::string role;  // the least that the verb needs
        std::string verb;
        std::string data;
    };
    using Hear = std::function<void(const HostReply& reply)>;
    // The request's number. `hear` may have been called before this returns.
    std::uint64_t Begin(const Request& request, Hear hear);
    // Nothing is heard of it any more once this returns.
    void Forget(std::uint64_t number);

  private:
    struct Waiting {
        Hear hear;
        std::string subject;
        std::chrono::steady_clock::time_point last;
        bool isTaken = false;
    };
    // Of the engine's library: a message that has come, and that none comes any more.
    static void OnMessage(natsConnection*, natsSubscription*, natsMsg* message, void* closure);
    static void OnComplete(void* closure);
    void Work();
    void Take(natsMsg& message);
    void TakeDenials();
    void GiveUpSilent();

    Link& link_;
    const std::string caller_;
    const std::chrono::seconds patience_;
    const std::string inbox_;
    SubscriptionHandle answers_;
    std::promise<void> complete_;
    std::mutex mutex_;  // also held while somebody hears
    std::map<std::uint64_t, Waiting> waiting_;
    std::uint64_t last_ = 0;
    bool isDenied_ = false;  // by the server, some of what was asked
    std::atomic<bool> isEnding_{false};
    std::thread thread_;  // the last member: it uses the others
};

}  // namespace oam::fleet
