#include "interruption.h"

#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>

#include "failure.h"

namespace oam {
namespace {

// A handler has no argument of ours; one Interruption lives at a time.
std::atomic<bool> requested{false};
std::atomic<int> descriptor{-1};
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

void handle(int) {
    const int kept = errno;
    const uint64_t one = 1;
    requested = true;
    (void)!write(descriptor, &one, sizeof one);
    errno = kept;
}

void install(int number, void (*handler)(int), int flags) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigemptyset(&action.sa_mask);
    sigaction(number, &action, nullptr);
}

}  // namespace

Interruption::Interruption() {
    descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (descriptor < 0)
        throw Failure(std::string("cannot wait for signals: ") + std::strerror(errno));
    requested = false;
    for (const int number : {SIGINT, SIGTERM})
        install(number, handle, SA_RESTART | static_cast<int>(SA_RESETHAND));
    install(SIGPIPE, SIG_IGN, 0);
}

Interruption::~Interruption() {
    for (const int number : {SIGINT, SIGTERM}) install(number, SIG_DFL, 0);
    close(descriptor.exchange(-1));
}

bool Interruption::IsRequested() const { return requested; }

int Interruption::Descriptor() const { return descriptor; }

}  // namespace oam
