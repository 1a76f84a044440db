#include "handle_ledger.h"

namespace oam::check {

HandleLedger& HandleLedger::Instance() {
    static HandleLedger& only = *new HandleLedger;
    return only;
}

void HandleLedger::Opened(unsigned long handle, const char* object, const EntryCall* by) {
    const std::lock_guard hold(lock_);
    opened_[handle] = {object != nullptr ? object : "", by};
}

void HandleLedger::Closed(unsigned long handle) {
    const std::lock_guard hold(lock_);
    opened_.erase(handle);
}

void HandleLedger::Lent(unsigned long handle) {
    const std::lock_guard hold(lock_);
    lent_.insert(handle);
}

void HandleLedger::TakenBack(unsigned long handle) {
    const std::lock_guard hold(lock_);
    lent_.erase(handle);
}

bool HandleLedger::IsUsable(unsigned long handle) const {
    const std::lock_guard hold(lock_);
    return opened_.contains(handle) || lent_.contains(handle);
}

bool HandleLedger::IsClosable(unsigned long handle) const {
    const std::lock_guard hold(lock_);
    return opened_.contains(handle);
}

std::vector<HandleLedger::LeftOpen> HandleLedger::TakeLeftOpenBy(const EntryCall* call) {
    const std::lock_guard hold(lock_);
    std::vector<LeftOpen> left;
    for (auto row = opened_.begin(); row != opened_.end();) {
        if (row->second.by != call) {
            ++row;
            continue;
        }
        left.push_back({row->first, row->second.object});
        row = opened_.erase(row);
    }
    std::erase_if(ended_, [&](const auto& row) { return row.first == call; });
    return left;
}

std::vector<HandleLedger::LeftOpen> HandleLedger::TakeAll() {
    const std::lock_guard hold(lock_);
    std::vector<LeftOpen> left;
    for (const auto& [handle, opening] : opened_) {
        if (opening.by != nullptr)
            ended_.emplace(opening.by, handle);
        else
            left.push_back({handle, opening.object});
    }
    opened_.clear();
    lent_.clear();
    return left;
}

bool HandleLedger::EndedWithService(unsigned long handle, const EntryCall* call) const {
    const std::lock_guard hold(lock_);
    return ended_.contains({call, handle});
}

}  // namespace oam::check
