#include "login/sessions.h"

#include <algorithm>

#include "login/secret.h"

namespace oam::console {

std::string Sessions::Begin(const Identity& identity) {
    const std::string secret = NewSecret();
    const auto now = Clock::now();
    const std::lock_guard hold(mutex_);
    if (entries_.size() >= kMost)
        entries_.erase(std::min_element(entries_.begin(), entries_.end(),
                                        [](const auto& left, const auto& right) {
                                            return left.second.used < right.second.used;
                                        }));
    entries_[secret] = {{identity, NewSecret()}, now, now};
    return secret;
}

std::optional<Session> Sessions::Find(const std::string& secret, Clock::time_point now) {
    const std::lock_guard hold(mutex_);
    const auto found = entries_.find(secret);
    if (found == entries_.end()) return std::nullopt;
    Entry& entry = found->second;
    if (now - entry.used > kIdle || now - entry.begun > kLongest) {
        entries_.erase(found);
        return std::nullopt;
    }
    entry.used = now;
    return entry.session;
}

void Sessions::End(const std::string& secret) {
    const std::lock_guard hold(mutex_);
    entries_.erase(secret);
}

}  // namespace oam::console
