// The calls in progress in the judged child, in memory that it shares with its parent: when a call
// does not come back, the parent still knows which one it was.
//
// One record each for the calls of the module's entries and, inside them, the module's calls of the
// service. The child writes; the parent reads the numbers while the child runs, and the texts only
// when it has been stopped.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace oam::check {

enum class CallKind { Entry, Service };

struct CallRecord {
    static constexpr std::int64_t kFree = 0;
    static constexpr std::int64_t kTaken = 1;  // being written

    std::atomic<std::int64_t> since{kFree};  // nanoseconds on the steady clock
    std::atomic<CallKind> kind{CallKind::Entry};
    char name[32];
    char subject[220];
};

// How the child died, when it could still tell.
struct DeathRecord {
    enum class Kind { None, Signal, Exit };

    std::atomic<Kind> kind{Kind::None};
    int signal = 0;
    const void* address = nullptr;
    const CallRecord* call = nullptr;  // in shared memory, so it means the same to the parent
};

class CallJournal {
  public:
    // Null when there is no memory for it.
    static std::unique_ptr<CallJournal, void (*)(CallJournal*)> Make();

    CallRecord* Begin(CallKind kind, std::string_view name, std::string_view subject);
    void End(CallRecord* record);
    // Something moves on.
    void Progress() { ++progress; }

    // The entry that has been running longer than the limit.
    const CallRecord* Overdue(std::chrono::nanoseconds limit) const;
    // The call of that kind that began last, when there is one.
    const CallRecord* Latest(CallKind kind) const;

    std::atomic<std::uint64_t> progress{0};
    std::atomic<int> step{-1};
    std::atomic<bool> isFinished{false};
    std::atomic<bool> isUsable{false};  // loaded, or started with the service
    DeathRecord death;

  private:
    static constexpr std::size_t kMostCalls = 128;

    std::array<CallRecord, kMostCalls> records_;
};

}  // namespace oam::check
