// What an OperationBook gives to the book on disk, and gets from it.
#include "operations/operation_entry.h"

namespace oam::server {

void OperationBook::Load(const std::vector<OperationRecord>& records) {
    const std::lock_guard hold(mutex_);
    for (const OperationRecord& record : records) {
        const auto id = OperationId::Parse(record.id);
        if (!id || id->start >= start_ || entries_.count(*id) != 0) continue;
        const auto entry = std::make_shared<Entry>();
        entry->record = record;
        entry->id = *id;
        entry->names.push_back(record.board);
        entry->isConcluded = true;
        Entries one{entry};
        entry->place = one.begin();
        entries_.emplace(*id, entry);
        ended_.splice(ended_.end(), one);
        if (record.state != OperationState::kRunning) continue;
        entry->record.state = OperationState::kUnknown;
        NoteChange(*entry);
    }
    ForgetOldest();
}

std::vector<OperationRecord> OperationBook::TakeChanged() {
    std::vector<OperationRecord> changed;
    const std::lock_guard hold(mutex_);
    for (const Entry* entry : changed_) changed.push_back(entry->record);
    while (!changed_.empty()) {
        Entry& entry = *changed_.front();
        entry.unchanged.splice(entry.unchanged.end(), changed_, entry.change);
        entry.isChanged = false;
    }
    return changed;
}

// Before what changed meanwhile.
void OperationBook::PutBack(const std::vector<OperationRecord>& records) noexcept {
    const std::lock_guard hold(mutex_);
    for (auto record = records.rbegin(); record != records.rend(); ++record) {
        const auto entry = FindEntry(record->id);
        if (entry == nullptr || entry->isChanged) continue;
        changed_.splice(changed_.begin(), entry->unchanged, entry->change);
        entry->isChanged = true;
    }
}

void OperationBook::ChangeAll() noexcept {
    const std::lock_guard hold(mutex_);
    for (const Entries* entries : {&ended_, &running_})
        for (const auto& entry : *entries) NoteChange(*entry);
}

}  // namespace oam::server
