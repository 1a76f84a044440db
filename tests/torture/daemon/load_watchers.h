// Many watchers of one daemon. Each must see every number once, in order, or be told that it is
// missing; and the outcome of every operation.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "support/installation.h"

namespace oam::torture {

class LoadWatchers {
  public:
    // From behind this number on.
    LoadWatchers(const test::Installation& home, int count, std::uint64_t after);
    // Ends those that have not ended.
    ~LoadWatchers();
    LoadWatchers(const LoadWatchers&) = delete;
    LoadWatchers& operator=(const LoadWatchers&) = delete;

    // Waits until each has seen this number, or was told that it is missing.
    void AwaitAll(std::uint64_t number);

    std::uint64_t Alerts() const;  // of all together
    std::uint64_t InGaps() const;
    std::vector<std::string> Faults() const;
    // Operations whose outcome a watcher without a gap has not seen.
    std::size_t Missed(const std::set<std::string>& operations) const;

  private:
    struct Watcher;

    std::vector<std::unique_ptr<Watcher>> watchers_;
};

}  // namespace oam::torture
