#include "entry_call.h"

#include <array>
#include <condition_variable>
#include <mutex>
#include <utility>

#include "finding.h"
#include "handle_ledger.h"
#include "service.h"
#include "shown.h"

namespace oam::check {
namespace {

using Clock = std::chrono::steady_clock;

// Longer than any work on the database takes, even on a busy machine.
constexpr std::chrono::seconds kLongUnderLock{2};

CallJournal* journal = nullptr;
thread_local EntryCall* current = nullptr;
thread_local std::array<unsigned int, kEntryCount> lastResults{};
thread_local std::string lastFailure;

struct Running {
    std::mutex lock;
    std::condition_variable changed;
    std::array<int, kEntryCount> begun{};
    int calls = 0;  // that run
    std::set<unsigned int> ownCodes;
};

Running& running() {
    static Running& only = *new Running;
    return only;
}

std::size_t indexOf(Entry entry) { return static_cast<std::size_t>(entry); }

void countBegin(Entry entry) {
    Running& now = running();
    const std::lock_guard hold(now.lock);
    ++now.begun[indexOf(entry)];
    ++now.calls;
    now.changed.notify_all();
}

void countEnd() {
    Running& now = running();
    const std::lock_guard hold(now.lock);
    --now.calls;
    now.changed.notify_all();
}

template <class Condition>
bool await(std::chrono::milliseconds limit, const Condition& condition) {
    Running& now = running();
    std::unique_lock hold(now.lock);
    return now.changed.wait_for(hold, limit, [&] { return condition(now); });
}

void judgeLeftOpen(const EntryCall& call) {
    for (const auto& left : HandleLedger::Instance().TakeLeftOpenBy(&call)) {
        Tell(Rule::OpenHandles, call.Which(), "it left " + Quoted(left.object) + " open");
        // So that one fault does not stand in the way of every later step.
        (void)Service().DbCloseObject(left.handle);
    }
}

}  // namespace

EntryCall::EntryCall(Entry entry, std::string subject)
    : entry_(entry),
      subject_(std::move(subject)),
      outer_(std::exchange(current, this)),
      record_(Journal().Begin(CallKind::Entry, RowOf(entry).name, subject_)),
      begin_(Clock::now()) {
    countBegin(entry);
}

EntryCall::~EntryCall() {
    const auto time = Clock::now() - begin_;
    judgeLeftOpen(*this);
    if (RowOf(entry_).underLock && time > kLongUnderLock) {
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time).count();
        Tell(Rule::LockTime, entry_, "a call took " + std::to_string(seconds) + " s");
    }
    Journal().End(record_);
    current = outer_;
    countEnd();
}

void EntryCall::EndedWith(unsigned int result) {
    lastResults[indexOf(entry_)] = result;
    if (result == OAM_SUCCESS) return;
    lastFailure =
        std::string(RowOf(entry_).name) + '(' + subject_ + ") answered " + CodeText(result);
    if (IsServiceCode(result)) return;
    const std::lock_guard hold(running().lock);
    running().ownCodes.insert(result);
}

EntryCall* EntryCall::Current() { return current; }

int EntryCall::DepthOf(Entry entry) {
    int depth = 0;
    for (const EntryCall* call = current; call != nullptr; call = call->outer_)
        depth += call->entry_ == entry ? 1 : 0;
    return depth;
}

unsigned int CallHistory::LastResult(Entry entry) { return lastResults[indexOf(entry)]; }

std::string CallHistory::LastFailure() { return lastFailure; }

std::set<unsigned int> CallHistory::OwnCodes() {
    const std::lock_guard hold(running().lock);
    return running().ownCodes;
}

int CallHistory::Begun(Entry entry) {
    const std::lock_guard hold(running().lock);
    return running().begun[indexOf(entry)];
}

bool CallHistory::AwaitBegun(Entry entry, int count, std::chrono::milliseconds limit) {
    return await(limit, [&](const Running& now) { return now.begun[indexOf(entry)] >= count; });
}

bool CallHistory::AwaitIdle(std::chrono::milliseconds limit) {
    return await(limit, [](const Running& now) { return now.calls == 0; });
}

CallJournal& Journal() { return *journal; }

void UseJournal(CallJournal* made) { journal = made; }

const char* WhoCalls() { return current != nullptr ? RowOf(current->Which()).name : "own thread"; }

}  // namespace oam::check
