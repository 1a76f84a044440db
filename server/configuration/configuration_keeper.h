// Every change of the configuration goes through here, so that the history knows who made it.
//
// A history that cannot be written stops nothing: the journal tells, and what was changed is
// recorded when it can be written again. Any thread.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "history/history.h"

namespace oam::server {

class Journal;

class ConfigurationKeeper {
  public:
    // `book`: the database's file.
    ConfigurationKeeper(const Installation& place, const std::string& book, Journal& journal);

    // Before each start of the service: what a loss of power or a hand has spoiled is put back,
    // said loudly.
    void BeforeStart();
    // After it: what the start itself has changed.
    void AfterStart();

    // Does the change on behalf of `user`: of one object, or (no name) of any. Its generation; 0
    // when nothing was changed. What `change` throws goes on, after what it did is recorded.
    std::uint64_t Change(const std::string& user, const std::string& action,
                         const std::string& object, const std::function<void()>& change);

    History& Book() { return history_; }

  private:
    void Complain(const std::string& text) const;

    Journal& journal_;
    History history_;
};

}  // namespace oam::server
