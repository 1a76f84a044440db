// Which codes each exported function answered, in a file that every process of a test run maps: no
// call of the system and no memory is needed to note one, so tests that count or fail these see no
// difference.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>

namespace oam::test {

constexpr const char* kRecordedFunctions[] = {
#define OAM_RECORDED(name) #name,
#include "recorded_functions.inc"
#undef OAM_RECORDED
};
constexpr std::size_t kRecordedCount = std::size(kRecordedFunctions);

// The environment variable that names the file.
constexpr const char* kRecordVariable = "OAM_CODE_RECORD";

// Codes of plug-ins take room too; the tests know a few dozens of them.
struct CodeRecord {
    static constexpr std::size_t kCodes = 256;

    // A code and one, 0 for an empty place.
    std::array<std::array<std::atomic<unsigned>, kCodes>, kRecordedCount> answered;

    void Note(std::size_t function, unsigned code) noexcept {
        for (auto& place : answered[function]) {
            unsigned found = place.load(std::memory_order_relaxed);
            if (found == 0 && place.compare_exchange_strong(found, code + 1)) return;
            if (found == code + 1) return;
        }
    }
};

}  // namespace oam::test
