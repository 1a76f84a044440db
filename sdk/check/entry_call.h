// One call of an entry of the judged module, from its beginning to its end, on its thread.
//
// While it lives it stands in the journal. At its end it is judged: how long it kept the manager
// lock, and what it left open.
#pragma once

#include <chrono>
#include <set>
#include <string>

#include "call_journal.h"
#include "module_kind.h"

namespace oam::check {

class EntryCall {
  public:
    EntryCall(Entry entry, std::string subject);
    ~EntryCall();
    EntryCall(const EntryCall&) = delete;
    EntryCall& operator=(const EntryCall&) = delete;

    void EndedWith(unsigned int result);

    // The innermost call on this thread; null when there is none.
    static EntryCall* Current();
    // How many calls of the entry are one inside the other on this thread.
    static int DepthOf(Entry entry);
    Entry Which() const { return entry_; }
    const CallRecord* Record() const { return record_; }

  private:
    Entry entry_;
    std::string subject_;
    EntryCall* outer_;
    CallRecord* record_;
    std::chrono::steady_clock::time_point begin_;
};

// What the calls have come to. Every function may be called on any thread.
struct CallHistory {
    // What an entry answered last on this thread, 0 before its first call.
    static unsigned int LastResult(Entry entry);
    // The last failure of any entry on this thread, as a text; empty when there was none.
    static std::string LastFailure();
    // The codes answered so far that are none of the service's.
    static std::set<unsigned int> OwnCodes();

    // How many calls of the entry have begun so far.
    static int Begun(Entry entry);
    static bool AwaitBegun(Entry entry, int count, std::chrono::milliseconds limit);
    // Whether no call of any entry runs any more within the time.
    static bool AwaitIdle(std::chrono::milliseconds limit);
};

// The child's journal; set once, before the first call.
CallJournal& Journal();
void UseJournal(CallJournal* journal);

// What the thread's innermost call of the module is called in a finding.
const char* WhoCalls();

}  // namespace oam::check
