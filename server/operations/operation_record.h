// A start, stop or test that was asked for, as it is told and kept.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace oam::server {

// The numbers are in the book on disk: new ones come at the end.
enum class OperationKind { kStart, kStop, kTest };
enum class OperationState { kRunning, kDone, kFailed, kRefused, kUnknown };

struct OperationRecord {
    std::string id;
    OperationKind kind = OperationKind::kStart;
    std::string board;  // as it was asked for
    OperationState state = OperationState::kRunning;
    std::chrono::system_clock::time_point requested;
    std::optional<std::chrono::system_clock::time_point> ended;
    std::string user;
    std::string text;            // of the outcome; while it runs a remark on it, or empty
    std::uint64_t sequence = 0;  // of the outcome's alert
    std::uint32_t code = 0;      // of a refusal
};

// An identity is "<start>-<n>": the n-th operation of the daemon's start with this number, both
// from 1 on and without leading zeros.
struct OperationId {
    std::uint64_t start = 0;
    std::uint64_t n = 0;

    static std::optional<OperationId> Parse(std::string_view text) noexcept;
    std::string Text() const;

    auto operator<=>(const OperationId&) const = default;
};

}  // namespace oam::server
