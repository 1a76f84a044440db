#include "call_journal.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace oam::check {
namespace {

std::int64_t now() { return std::chrono::steady_clock::now().time_since_epoch().count(); }

template <std::size_t kSize>
void copyCut(std::string_view text, char (&field)[kSize]) {
    const auto length = text.copy(field, kSize - 1);
    field[length] = '\0';
}

}  // namespace

std::unique_ptr<CallJournal, void (*)(CallJournal*)> CallJournal::Make() {
    void* memory = mmap(nullptr, sizeof(CallJournal), PROT_READ | PROT_WRITE,
                        MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    auto* journal = memory != MAP_FAILED ? new (memory) CallJournal : nullptr;
    return {journal, [](CallJournal* made) { (void)munmap(made, sizeof(CallJournal)); }};
}

CallRecord* CallJournal::Begin(CallKind kind, std::string_view name, std::string_view subject) {
    Progress();
    for (CallRecord& record : records_) {
        auto free = CallRecord::kFree;
        if (!record.since.compare_exchange_strong(free, CallRecord::kTaken)) continue;
        record.kind = kind;
        copyCut(name, record.name);
        copyCut(subject, record.subject);
        record.since = now();
        return &record;
    }
    return nullptr;
}

void CallJournal::End(CallRecord* record) {
    Progress();
    if (record != nullptr) record->since = CallRecord::kFree;
}

const CallRecord* CallJournal::Overdue(std::chrono::nanoseconds limit) const {
    const auto latest = now() - limit.count();
    for (const CallRecord& record : records_) {
        const auto since = record.since.load();
        if (since > CallRecord::kTaken && since < latest && record.kind == CallKind::Entry)
            return &record;
    }
    return nullptr;
}

const CallRecord* CallJournal::Latest(CallKind kind) const {
    const CallRecord* latest = nullptr;
    for (const CallRecord& record : records_) {
        if (record.since <= CallRecord::kTaken || record.kind != kind) continue;
        if (latest == nullptr || record.since > latest->since) latest = &record;
    }
    return latest;
}

}  // namespace oam::check
