#include "library/foreign_calls.h"

#include <algorithm>

#include "korcore/call_marks.h"

namespace oam::server {

namespace {

// They come oldest first.
void addUnderWay(const std::vector<ForeignCall>& calls, ForeignEntryUse* use) {
    for (const ForeignCall& call : calls) {
        if (call.module != use->module || call.entry != use->entry) continue;
        if (use->underWay++ == 0) use->oldest = call.age;
    }
}

}  // namespace

std::vector<ForeignCall> ForeignCallsUnderWay() {
    std::vector<ForeignCall> calls;
    KorCallInside call;
    for (unsigned mark = 0; mark < kKorMarks; ++mark) {
        if (!KorCallAt(mark, &call)) continue;
        const std::uint64_t now = KorMarkTime();
        const std::uint64_t age = now > call.since ? now - call.since : 0;
        calls.push_back({call.module, call.entry, call.about, call.thread,
                         std::chrono::nanoseconds(static_cast<std::int64_t>(age))});
    }
    std::sort(calls.begin(), calls.end(),
              [](const auto& left, const auto& right) { return left.age > right.age; });
    return calls;
}

std::vector<ForeignEntryUse> ForeignEntryUses() {
    const std::vector<ForeignCall> underWay = ForeignCallsUnderWay();
    std::vector<ForeignEntryUse> uses;
    KorEntryUse use;
    for (unsigned module = 0; module < kKorMarkedModules; ++module)
        for (unsigned entry = 0; entry < kKorMarkedEntries; ++entry) {
            if (!KorUseAt(module, entry, &use)) continue;
            uses.push_back({use.module, use.entry, use.calls,
                            std::chrono::nanoseconds(static_cast<std::int64_t>(use.nanoseconds)), 0,
                            {}});
            addUnderWay(underWay, &uses.back());
        }
    return uses;
}

}  // namespace oam::server
