// The service running in this process, for one command: lock, start, work, stop.
//
// Invariants: the lock is held from before _oamInit until after _oamExit; _oamExit runs on every
// way out; whatever the service reports as a warning or error meanwhile reaches standard error.
#pragma once

#include <ctime>
#include <string>

#include "alert_inbox.h"
#include "interruption.h"
#include "lock_file.h"

namespace oam {

class Console;
class Installation;

class Session {
  public:
    // Starts the service, or throws a Failure that tells why it did not start.
    Session(const Installation& place, const std::string& command, Console& console);
    // Stops it. Boards marked for automatic stop are stopped first.
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    const Installation& Place() const { return place_; }
    AlertInbox& Inbox() { return AlertInbox::Instance(); }
    const Interruption& Interrupted() const { return interruption_; }

    // Which alerts the command wants; warnings and errors are kept besides.
    void Listen(AlertInbox::Wanted wanted);
    // Passes the alerts kept so far on to standard error.
    void ReportAlerts();
    void Report(const Alert& alert);

  private:
    [[noreturn]] void FailStart(unsigned code, time_t before);

    const Installation& place_;
    Console& console_;
    LockFile lock_;
    Interruption interruption_;
};

}  // namespace oam
