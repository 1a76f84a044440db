// What is known of operations, and waiting for what is not.
#include "operations/operation_entry.h"

namespace oam::server {

std::shared_ptr<OperationBook::Entry> OperationBook::FindEntry(
    const std::string& id) const noexcept {
    const auto parsed = OperationId::Parse(id);
    if (!parsed) return nullptr;
    const auto found = entries_.find(*parsed);
    return found == entries_.end() ? nullptr : found->second;
}

std::optional<OperationRecord> OperationBook::FindRecord(const std::string& id) const {
    if (const auto entry = FindEntry(id)) return entry->record;
    const auto parsed = OperationId::Parse(id);
    if (!parsed || *parsed > OperationId{start_, given_}) return std::nullopt;
    OperationRecord forgotten;
    forgotten.id = id;
    forgotten.state = OperationState::kUnknown;
    return forgotten;
}

std::optional<OperationRecord> OperationBook::Find(const std::string& id) const {
    const std::lock_guard hold(mutex_);
    return FindRecord(id);
}

std::vector<OperationRecord> OperationBook::List(bool runningOnly, const std::string& board) const {
    std::vector<OperationRecord> records;
    const std::lock_guard hold(mutex_);
    for (auto entry = entries_.rbegin(); entry != entries_.rend(); ++entry) {
        const Entry& one = *entry->second;
        if (runningOnly && one.record.state != OperationState::kRunning) continue;
        if (board.empty() || one.IsOn(board)) records.push_back(one.record);
    }
    return records;
}

OperationTotals OperationBook::Totals() const {
    const std::lock_guard hold(mutex_);
    OperationTotals totals = totals_;
    totals.running = running_.size();
    return totals;
}

// ---- Waits

std::optional<std::uint64_t> OperationBook::Wait(const std::string& id, Done done) {
    std::optional<OperationRecord> record;
    {
        const std::lock_guard hold(mutex_);
        const auto entry = FindEntry(id);
        if (entry != nullptr && !entry->isConcluded) {
            const std::uint64_t number = lastWait_ + 1;
            const auto wait = waits_.emplace(number, entry).first;
            try {
                entry->waits.emplace_back(number, std::move(done));
            } catch (...) {
                waits_.erase(wait);
                throw;
            }
            return lastWait_ = number;
        }
        record = FindRecord(id);
    }
    if (!record) return std::nullopt;
    done(*record);
    return 0;
}

bool OperationBook::Cancel(std::uint64_t wait) {
    OperationRecord record;
    Done done;
    {
        const std::lock_guard hold(mutex_);
        const auto found = waits_.find(wait);
        if (found == waits_.end()) return false;
        record = found->second->record;
        auto& waits = found->second->waits;
        const auto own = std::find_if(waits.begin(), waits.end(),
                                      [&](const auto& one) { return one.first == wait; });
        done = std::move(own->second);
        waits.erase(own);
        waits_.erase(found);
    }
    done(record);
    return true;
}

}  // namespace oam::server
