// Starts, stops and tests that were asked for, by identity.
//
// An identity is "<boot>-<n>": the boot counts the daemon's starts, so an identity is never given
// twice. What ran when the daemon ended is unknown for ever after.
//
// OnAlert runs on the service's threads, at times with its locks held: one mutex, no waiting, no
// throwing. Waits end by callbacks, which run on the thread that brought the end, without the mutex;
// they must not wait either.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "alerts/stored_alert.h"

namespace oam::server {

enum class OperationKind { kStart, kStop, kTest };
enum class OperationState { kRunning, kDone, kFailed, kRefused, kUnknown };

struct OperationRecord {
    std::string id;
    OperationKind kind = OperationKind::kStart;
    std::string board;
    OperationState state = OperationState::kRunning;
    std::chrono::system_clock::time_point requested;
    std::optional<std::chrono::system_clock::time_point> ended;
    std::string user;
    std::string text;                // of the outcome
    std::uint64_t sequence = 0;      // of the outcome's alert
    std::uint32_t code = 0;          // of a refusal
};

class OperationBook {
  public:
    // `boot` of this start. Ended operations are forgotten beyond `kept`, the oldest first.
    OperationBook(std::uint64_t boot, std::size_t kept);

    // Before the service is asked: the outcome may come before it answers.
    OperationRecord Begin(OperationKind kind, const std::string& board, const std::string& user);
    // The service did not take it.
    void Refuse(const std::string& id, std::uint32_t code, const std::string& text);

    // The identity of the operation whose outcome this alert is; empty when it is nobody's. The
    // sequence number is given by the caller afterwards with Number.
    //
    // An outcome is an OAMEVN_...BOARD_DONE of the operation's kind from its board, under the name
    // that the board has now (OAMEVN_RENAMED tells) or had. "Board is currently being started." (of
    // the same kind) is not the outcome of what runs: with two operations of the kind on the board
    // it is that of the newer one, with one it is only a remark.
    std::string OnAlert(const StoredAlert& alert) noexcept;
    void Number(const std::string& id, std::uint64_t sequence) noexcept;

    // Nothing for an identity that this daemon never gave. One of an earlier boot is kUnknown,
    // unless it was loaded.
    std::optional<OperationRecord> Find(const std::string& id) const;
    // Newest first; empty `board`: all.
    std::vector<OperationRecord> List(bool runningOnly, const std::string& board) const;

    // `done` is called once: at once when the operation has ended already, else when it ends or
    // the wait is cancelled. The wait's number, or 0 when it was called at once.
    using Done = std::function<void(const OperationRecord&)>;
    std::uint64_t Wait(const std::string& id, Done done);
    // Calls `done` with the operation as it is; false when the wait has ended already.
    bool Cancel(std::uint64_t wait);

    // For the book on disk: what it knew of earlier boots, and what changed since the last call.
    void Load(const std::vector<OperationRecord>& records);
    std::vector<OperationRecord> TakeChanged();

  private:
    struct Entry;
    mutable std::mutex mutex_;
    // (left to the implementation)
};

}  // namespace oam::server
