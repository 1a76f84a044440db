// Which object handles the judged module may use, and which it has to close.
//
// It opens handles of its own and is lent those of its objects, from OpenObject to CloseObject.
// Every method may be called on any thread.
#pragma once

#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace oam::check {

class EntryCall;

class HandleLedger {
  public:
    static HandleLedger& Instance();

    void Opened(unsigned long handle, const char* object, const EntryCall* by);
    void Closed(unsigned long handle);
    void Lent(unsigned long handle);
    void TakenBack(unsigned long handle);
    bool IsUsable(unsigned long handle) const;
    // A handle that was lent is not the module's to close.
    bool IsClosable(unsigned long handle) const;

    struct LeftOpen {
        unsigned long handle;
        std::string object;
    };
    // Takes out what the call opened and did not close, as closed.
    std::vector<LeftOpen> TakeLeftOpenBy(const EntryCall* call);
    // The service has stopped: no handle is good any more. What the module still had open; but what
    // an entry that is still under way had, it has not left: it learns of the end by the answer to
    // its next use.
    std::vector<LeftOpen> TakeAll();
    // Whether the handle was this call's when the service stopped.
    bool EndedWithService(unsigned long handle, const EntryCall* call) const;

  private:
    struct Opening {
        std::string object;
        const EntryCall* by;  // null: a thread of the module's own
    };

    mutable std::mutex lock_;
    std::map<unsigned long, Opening> opened_;
    std::set<unsigned long> lent_;
    std::set<std::pair<const EntryCall*, unsigned long>> ended_;
};

}  // namespace oam::check
