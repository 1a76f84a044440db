// How many alerts there were of each code and severity.
//
// Counted on the service's threads, at times with its locks held: no lock, no memory. A plug-in may
// make codes up; beyond kKinds pairs they are counted together.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace oam::server {

class AlertCounts {
  public:
    static constexpr std::size_t kKinds = 256;

    void Note(std::uint32_t code, std::uint32_t severity) noexcept;

    struct Kind {
        std::uint32_t code;
        std::uint32_t severity;
        std::uint64_t alerts;
    };
    std::vector<Kind> All() const;
    std::uint64_t Others() const { return others_.load(std::memory_order_relaxed); }

  private:
    struct Slot {
        std::atomic<std::uint64_t> kind{kNone};
        std::atomic<std::uint64_t> alerts{0};
    };
    // No kind: a severity is one of a few.
    static constexpr std::uint64_t kNone = ~std::uint64_t{0};

    std::array<Slot, kKinds> slots_;
    std::atomic<std::uint64_t> others_{0};
};

}  // namespace oam::server
