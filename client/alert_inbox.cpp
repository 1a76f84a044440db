#include "alert_inbox.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstring>
#include <utility>

#include "failure.h"
#include "interruption.h"

namespace oam {
namespace {

int millisecondsUntil(const AlertInbox::Deadline& deadline) {
    if (!deadline) return -1;
    const auto left = *deadline - std::chrono::steady_clock::now();
    const auto count = std::chrono::ceil<std::chrono::milliseconds>(left).count();
    return static_cast<int>(std::clamp<decltype(count)>(count, 0, INT_MAX));
}

}  // namespace

std::string RecordText(const oam_msg_tag& message, uint32_t offset) {
    if (offset < sizeof message || offset >= message.size) return {};
    return reinterpret_cast<const char*>(&message) + offset;
}

AlertInbox& AlertInbox::Instance() {
    static AlertInbox& inbox = *new AlertInbox;
    return inbox;
}

AlertInbox::AlertInbox() : event_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (event_ < 0) throw Failure(std::string("cannot wait for alerts: ") + std::strerror(errno));
}

void AlertInbox::Listen(Wanted wanted) {
    const std::lock_guard hold(mutex_);
    wanted_ = std::move(wanted);
}

std::optional<Alert> AlertInbox::Take() {
    const std::lock_guard hold(mutex_);
    if (alerts_.empty()) return std::nullopt;
    Alert alert = std::move(alerts_.front());
    alerts_.pop_front();
    return alert;
}

std::optional<Alert> AlertInbox::Wait(const Deadline& deadline, const Interruption& interruption) {
    while (!interruption.IsRequested()) {
        if (auto alert = Take()) return alert;
        const int limit = millisecondsUntil(deadline);
        if (limit == 0) break;
        pollfd events[] = {{event_, POLLIN, 0}, {interruption.Descriptor(), POLLIN, 0}};
        if (poll(events, 2, limit) < 0 && errno != EINTR)
            throw Failure(std::string("cannot wait for alerts: ") + std::strerror(errno));
        uint64_t count;
        (void)!read(event_, &count, sizeof count);
    }
    return Take();
}

size_t AlertInbox::TakeLost() {
    const std::lock_guard hold(mutex_);
    return std::exchange(lost_, 0);
}

void AlertInbox::Put(const oam_msg_tag& message) noexcept {
    const std::lock_guard hold(mutex_);
    try {
        Alert alert{std::chrono::system_clock::now(), message.code, message.severity,
                    RecordText(message, message.sourceOffset),
                    RecordText(message, message.textOffset)};
        if (!wanted_ || !wanted_(alert)) return;
        if (alerts_.size() >= kAlertsKept) {
            alerts_.pop_front();
            ++lost_;
        }
        alerts_.push_back(std::move(alert));
    } catch (const std::exception&) {
        ++lost_;  // no memory: nothing may be thrown through the service
    }
    const uint64_t one = 1;
    (void)!write(event_, &one, sizeof one);
}

}  // namespace oam
