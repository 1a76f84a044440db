// Every alert on its way into the journal, by a thread of its own: a slow journal delays nobody.
#pragma once

#include <functional>
#include <string>
#include <thread>

#include "alerts/alert_ring.h"
#include "journal/journal.h"

namespace oam::server {

class AlertJournal {
  public:
    // Who asked for an operation; empty: nobody knows.
    using UserOf = std::function<std::string(const std::string& operation)>;

    // From now on.
    AlertJournal(const AlertRing& ring, Journal& journal, UserOf userOf);
    // The ring is closed by then; what it still has is told.
    ~AlertJournal();
    AlertJournal(const AlertJournal&) = delete;
    AlertJournal& operator=(const AlertJournal&) = delete;

  private:
    void Work(std::uint64_t position);

    const AlertRing& ring_;
    Journal& journal_;
    const UserOf userOf_;
    std::thread thread_;
};

}  // namespace oam::server
