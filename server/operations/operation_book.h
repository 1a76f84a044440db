// Starts, stops and tests that were asked for, by identity.
//
// An identity holds the number of the daemon's start, so it is never given twice. What ran when the
// daemon ended is unknown for ever after.
//
// OnAlert and Number run on the service's threads, at times with its locks held: one mutex, no
// waiting, no throwing. Waits end by callbacks, which run on the thread that brought the end,
// without the mutex; they must neither wait nor throw.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "alerts/stored_alert.h"
#include "operations/operation_record.h"
#include "operations/operation_totals.h"

namespace oam::server {

class Bell;

class OperationBook {
  public:
    // `start` of the daemon (store/numbers.h). Ended operations are forgotten beyond `kept`, the
    // one that ended first before the others. `bell` is rung for every change.
    OperationBook(std::uint64_t start, std::size_t kept, Bell* bell = nullptr);
    ~OperationBook();

    // Before the service is asked: the outcome may come before it answers. Some requests get none
    // at all (a board that is deleted before its turn): of more than kMostRunning the oldest one is
    // given up, as GiveUpRunning does.
    static constexpr std::size_t kMostRunning = 10000;
    OperationRecord Begin(OperationKind kind, const std::string& board, const std::string& user);
    // The service did not take it.
    void Refuse(const std::string& id, std::uint32_t code, const std::string& text);
    // The service has stopped, and drops what it had not begun: what still runs is unknown for
    // ever.
    void GiveUpRunning(const std::string& text);

    // The identity of the operation whose outcome this alert is; empty when it is nobody's. The
    // operation has ended then; its sequence number is 0, and its waits go on, until the caller
    // gives the number with Number.
    //
    // An outcome is an OAMEVN_...BOARD_DONE of the operation's kind from its board, under the name
    // that the board has now (OAMEVN_RENAMED tells) or had. Of several it is the oldest one's.
    // "Board is currently being started." (of the same kind) is not the outcome of what runs: with
    // two operations of the kind on the board it is that of the newest one, with one it is only a
    // remark.
    std::string OnAlert(const StoredAlert& alert) noexcept;
    void Number(const std::string& id, std::uint64_t sequence) noexcept;

    // Nothing for an identity that this daemon never gave. One of an earlier start, or one that is
    // forgotten, is kUnknown, unless it was loaded.
    std::optional<OperationRecord> Find(const std::string& id) const;
    // Newest first; empty `board`: all, else those whose board has or had this name.
    std::vector<OperationRecord> List(bool runningOnly, const std::string& board) const;

    // Those that Load brought are not among them.
    OperationTotals Totals() const;

    // `done` is called once: at once when the operation has ended already, else when it ends or
    // the wait is cancelled. The wait's number, or 0 when it was called at once; nothing, and
    // `done` is never called, for an identity that Find does not know.
    using Done = std::function<void(const OperationRecord&)>;
    std::optional<std::uint64_t> Wait(const std::string& id, Done done);
    // Calls `done` with the operation as it is; false when the wait has ended already.
    bool Cancel(std::uint64_t wait);

    // For the book on disk. What it knew of earlier starts, in the order that TakeChanged gave it:
    // what ran is unknown from now on.
    void Load(const std::vector<OperationRecord>& records);
    // What changed since the last call, in the order of the last changes.
    std::vector<OperationRecord> TakeChanged();
    // They could not be written: they are changed still, as far as they are not forgotten.
    void PutBack(const std::vector<OperationRecord>& records) noexcept;
    // The book on disk is a new one: everything has changed.
    void ChangeAll() noexcept;

  private:
    struct Entry;
    struct Ending;
    using Entries = std::list<std::shared_ptr<Entry>>;
    using Changes = std::list<Entry*>;

    // These hold mutex_.
    std::shared_ptr<Entry> FindEntry(const std::string& id) const noexcept;
    std::optional<OperationRecord> FindRecord(const std::string& id) const;
    void NoteRename(const StoredAlert& alert);
    void End(Entry& entry, OperationState state) noexcept;
    Ending GiveUpOldest(std::string_view text) noexcept;
    Ending Conclude(Entry& entry) noexcept;
    void ForgetOldest() noexcept;
    void NoteChange(Entry& entry) noexcept;

    const std::uint64_t start_;
    const std::size_t kept_;
    Bell* const bell_;
    mutable std::mutex mutex_;
    std::uint64_t given_ = 0;  // operations of this start
    std::map<OperationId, std::shared_ptr<Entry>> entries_;
    Entries running_;  // in the order of their begins
    Entries ended_;    // in the order of their ends
    Changes changed_;  // in the order of their last changes
    std::map<std::uint64_t, std::shared_ptr<Entry>> waits_;
    std::uint64_t lastWait_ = 0;
    OperationTotals totals_;  // but for `running`
};

}  // namespace oam::server
