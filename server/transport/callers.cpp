#include "transport/callers.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>

namespace oam::server {
namespace {

// Above what the process opens for itself.
constexpr int kFirst = 1024;
constexpr int kSpan = 8192;

std::uint64_t inodeOf(int descriptor) {
    struct stat facts {};
    return fstat(descriptor, &facts) == 0 ? facts.st_ino : 0;
}

int highestDescriptor() {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return kFirst;
    return static_cast<int>(std::min<rlim_t>(limit.rlim_cur, kFirst + kSpan));
}

}  // namespace

int Callers::Adopt(int accepted) {
    ucred credentials{};
    socklen_t size = sizeof credentials;
    if (getsockopt(accepted, SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0) {
        close(accepted);
        return -1;
    }
    const std::lock_guard hold(mutex_);
    if (connections_.size() >= limit_) ForgetClosed();
    int descriptor = -1;
    if (connections_.size() < limit_) {
        const int end = highestDescriptor();
        if (next_ < kFirst || next_ >= end) next_ = kFirst;
        descriptor = fcntl(accepted, F_DUPFD_CLOEXEC, next_);
        if (descriptor < 0 && next_ != kFirst)
            descriptor = fcntl(accepted, F_DUPFD_CLOEXEC, next_ = kFirst);
        // A small limit on descriptors leaves no room up there.
        if (descriptor < 0) descriptor = fcntl(accepted, F_DUPFD_CLOEXEC, 0);
    }
    close(accepted);
    if (descriptor < 0) return -1;
    next_ = descriptor + 1;
    fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) | O_NONBLOCK);
    Caller caller;
    caller.user = credentials.uid;
    caller.groups = GroupsOf(credentials.uid, credentials.gid);
    caller.process = credentials.pid;
    connections_[descriptor] = {std::move(caller), inodeOf(descriptor)};
    return descriptor;
}

std::optional<Caller> Callers::Find(const std::string& peer) const {
    constexpr std::string_view kPrefix = "fd:";
    if (!peer.starts_with(kPrefix)) return std::nullopt;
    int descriptor = -1;
    const char* const end = peer.data() + peer.size();
    const auto [rest, error] = std::from_chars(peer.data() + kPrefix.size(), end, descriptor);
    if (error != std::errc() || rest != end) return std::nullopt;
    const std::lock_guard hold(mutex_);
    const auto found = connections_.find(descriptor);
    if (found == connections_.end()) return std::nullopt;
    return found->second.caller;
}

void Callers::ForgetClosed() {
    std::erase_if(connections_,
                  [](const auto& entry) { return inodeOf(entry.first) != entry.second.inode; });
}

}  // namespace oam::server
