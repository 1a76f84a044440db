// Clients of the service that need handles: each session is a client, and each handle is the
// daemon's number for one of the library's.
//
// The library does not check a handle, so none reaches it unchecked: a number is looked up in its
// session, and a session answers only the user that began it. The calls of one session run one
// after another (they share a lane), so a handle is never used while it is being closed.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "alerts/stored_alert.h"

namespace oam::server {

struct OpenedHandle {
    unsigned long handle = 0;  // the library's
    std::string object;
    bool isWrite = false;
    bool isDatabase = false;
};

class Session {
  public:
    using Sink = std::function<void(const StoredAlert& alert)>;

    Session(std::string id, std::string user, unsigned long client, Sink sink)
        : id_(std::move(id)), user_(std::move(user)), client_(client), sink_(std::move(sink)) {}

    const std::string& Id() const { return id_; }
    const std::string& User() const { return user_; }
    unsigned long Client() const { return client_; }
    std::string Lane() const { return "session " + id_; }

    // What follows runs in the session's lane.

    // The daemon's number; a refusal of the service is a Failure, too many are a SessionRefusal.
    std::uint64_t Open(const std::string& name, unsigned mode, bool isDatabase);
    // SessionRefusal for a number that is not open here.
    const OpenedHandle& Find(std::uint64_t number) const;
    // Takes it out: whatever closing it answers, it is closed.
    OpenedHandle Take(std::uint64_t number);
    // Closes (commits) what is open, and ends the client's registration.
    void End();
    bool IsEnded() const { return isEnded_; }

    // On any thread; nothing is waited for.
    void Deliver(const StoredAlert& alert) const { sink_(alert); }

  private:
    const std::string id_;
    const std::string user_;
    const unsigned long client_;
    const Sink sink_;
    std::map<std::uint64_t, OpenedHandle> handles_;
    bool isEnded_ = false;
};

// "too many", "no such".
class SessionRefusal : public std::runtime_error {
  public:
    enum class Kind { kTooMany, kUnknown };
    SessionRefusal(Kind kind, const std::string& what) : std::runtime_error(what), kind_(kind) {}
    Kind Which() const { return kind_; }

  private:
    Kind kind_;
};

// Any thread.
class SessionTable {
  public:
    // SessionRefusal when there are too many, of this user or of all.
    std::shared_ptr<Session> Begin(const std::string& user, Session::Sink sink);
    // SessionRefusal when there is none, or it is another user's.
    std::shared_ptr<Session> Find(const std::string& id, const std::string& user) const;
    // It is not found any more; its handles are for Session::End.
    void Remove(const std::string& id);

    // From the service, for the session that is this client.
    void Deliver(unsigned long client, const StoredAlert& alert) const noexcept;

    std::size_t Count() const;

  private:
    mutable std::mutex mutex_;
    std::map<std::string, std::shared_ptr<Session>> sessions_;
    std::map<unsigned long, std::shared_ptr<Session>> byClient_;
    unsigned long lastClient_ = 1;  // 1 is the daemon's own
};

}  // namespace oam::server
