#include "sessions/session_table.h"

#include <algorithm>
#include <random>

#include "failure.h"
#include "oam/entry.h"

namespace oam::server {
namespace {

constexpr std::size_t kMostHandles = 256;
constexpr std::size_t kMostOfOneUser = 64;
constexpr std::size_t kMost = 512;

using Kind = SessionRefusal::Kind;

// Handle numbers are given once in the daemon's life.
std::atomic<std::uint64_t> lastHandle{0};

// Nobody guesses another one's.
std::string newId() {
    constexpr char kDigits[] = "0123456789abcdef";
    std::random_device random;
    std::string id;
    for (int i = 0; i < 4; ++i)
        for (unsigned part = random(), k = 0; k < 8; ++k, part >>= 4) id += kDigits[part & 15];
    return id;
}

}  // namespace

std::uint64_t Session::Open(const std::string& name, unsigned mode, bool isDatabase) {
    if (isEnded_) throw SessionRefusal(Kind::kUnknown, "the session has ended");
    if (handles_.size() >= kMostHandles)
        throw SessionRefusal(Kind::kTooMany, "the session has too many handles open");
    OpenedHandle opened;
    opened.object = name;
    opened.isWrite = (mode & OAM_OPEN_WRITE) != 0;
    opened.isDatabase = isDatabase;
    const unsigned code = isDatabase ? _oamDbOpenObject(name.c_str(), &opened.handle, mode)
                                     : _oamOpenObject(client_, name.c_str(), &opened.handle, mode);
    if (code) throw Failure(code, "cannot open the object " + Quoted(name)).About({name, {}, {}});
    const std::uint64_t number = ++lastHandle;
    handles_[number] = std::move(opened);
    return number;
}

const OpenedHandle& Session::Find(std::uint64_t number) const {
    const auto found = handles_.find(number);
    if (found == handles_.end())
        throw SessionRefusal(Kind::kUnknown,
                             "handle " + std::to_string(number) + " is not open in this session");
    return found->second;
}

OpenedHandle Session::Take(std::uint64_t number) {
    OpenedHandle taken = Find(number);
    handles_.erase(number);
    return taken;
}

void Session::End() {
    isEnded_ = true;
    // Those of the database are the service's own client's.
    for (const auto& [number, opened] : handles_)
        if (opened.isDatabase) (void)_oamDbCloseObject(opened.handle);
    handles_.clear();
    (void)_oamClientExit(client_);
}

std::shared_ptr<Session> SessionTable::Begin(const std::string& user, Session::Sink sink) {
    const std::lock_guard hold(mutex_);
    const auto ofUser = std::count_if(sessions_.begin(), sessions_.end(), [&](const auto& entry) {
        return entry.second->User() == user;
    });
    if (sessions_.size() >= kMost || static_cast<std::size_t>(ofUser) >= kMostOfOneUser)
        throw SessionRefusal(Kind::kTooMany, "there are too many sessions already");
    do {
        ++lastClient_;
    } while (lastClient_ == OAM_INTERNAL_CLIENT || byClient_.contains(lastClient_));
    auto session = std::make_shared<Session>(newId(), user, lastClient_, std::move(sink));
    sessions_[session->Id()] = session;
    byClient_[session->Client()] = session;
    return session;
}

std::shared_ptr<Session> SessionTable::Find(const std::string& id, const std::string& user) const {
    const std::lock_guard hold(mutex_);
    const auto found = sessions_.find(id);
    if (found == sessions_.end() || found->second->User() != user)
        throw SessionRefusal(Kind::kUnknown, "there is no such session");
    return found->second;
}

void SessionTable::Remove(const std::string& id) {
    const std::lock_guard hold(mutex_);
    const auto found = sessions_.find(id);
    if (found == sessions_.end()) return;
    byClient_.erase(found->second->Client());
    sessions_.erase(found);
}

void SessionTable::Deliver(unsigned long client, const StoredAlert& alert) const noexcept try {
    std::shared_ptr<Session> session;
    {
        const std::lock_guard hold(mutex_);
        const auto found = byClient_.find(client);
        if (found == byClient_.end()) return;
        session = found->second;
    }
    session->Deliver(alert);
} catch (const std::exception&) {
    // No memory: the stream tells that some are lost when it can tell again.
}

std::size_t SessionTable::Count() const {
    const std::lock_guard hold(mutex_);
    return sessions_.size();
}

}  // namespace oam::server
