#include "metrics/alert_counts.h"

#include <algorithm>

namespace oam::server {
namespace {

// Above the service's own: a plug-in's number that means nothing.
constexpr std::uint32_t kSenseless = 99;

}  // namespace

void AlertCounts::Note(std::uint32_t code, std::uint32_t severity) noexcept {
    const std::uint64_t kind =
        (std::uint64_t{code} << 32) | std::min<std::uint32_t>(severity, kSenseless);
    for (std::size_t i = 0; i < kKinds; ++i) {
        Slot& slot = slots_[(code + i) % kKinds];
        std::uint64_t found = slot.kind.load(std::memory_order_relaxed);
        if (found == kNone &&
            slot.kind.compare_exchange_strong(found, kind, std::memory_order_relaxed))
            found = kind;
        if (found != kind) continue;
        slot.alerts.fetch_add(1, std::memory_order_relaxed);
        return;
    }
    others_.fetch_add(1, std::memory_order_relaxed);
}

std::vector<AlertCounts::Kind> AlertCounts::All() const {
    std::vector<Kind> all;
    for (const Slot& slot : slots_) {
        const std::uint64_t kind = slot.kind.load(std::memory_order_relaxed);
        const std::uint64_t alerts = slot.alerts.load(std::memory_order_relaxed);
        if (kind != kNone && alerts != 0)
            all.push_back({static_cast<std::uint32_t>(kind >> 32),
                           static_cast<std::uint32_t>(kind & 0xffffffff), alerts});
    }
    return all;
}

}  // namespace oam::server
