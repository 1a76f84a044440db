#include "daemon/signals.h"

#include <signal.h>

#include <cerrno>
#include <ctime>

namespace oam::server {
namespace {

sigset_t ours() {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) sigaddset(&set, number);
    return set;
}

}  // namespace

Signals::Signals() {
    const sigset_t set = ours();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    signal(SIGPIPE, SIG_IGN);
}

Signal Signals::Next(std::chrono::milliseconds limit) const {
    const sigset_t set = ours();
    const timespec time = {limit.count() / 1000, limit.count() % 1000 * 1000000};
    switch (sigtimedwait(&set, nullptr, &time)) {
        case SIGHUP:
            return Signal::kReload;
        case SIGTERM:
        case SIGINT:
            return Signal::kEnd;
        default:
            return Signal::kNone;
    }
}

}  // namespace oam::server
