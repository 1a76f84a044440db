// What the daemon tells: to the systemd journal with fields, or to standard error where there is
// none. Any thread; nothing is thrown and nobody waits for a reader.
//
// Fields beside MESSAGE and PRIORITY: OAM_BOARD, OAM_CODE, OAM_SEVERITY, OAM_SEQ, OAM_OP, OAM_USER,
// OAM_ROLE, OAM_VERB, OAM_OBJECT.
#pragma once

#include <initializer_list>
#include <string>
#include <utility>

#include "alerts/stored_alert.h"

namespace oam::server {

struct Call;
struct Verb;

enum class Priority { kError = 3, kWarning = 4, kNotice = 5, kInfo = 6 };

class Journal {
  public:
    Journal();

    using Field = std::pair<const char*, std::string>;
    void Say(Priority priority, const std::string& message,
             std::initializer_list<Field> fields = {}) noexcept;

    void Alert(const StoredAlert& alert) noexcept;
    void Denied(const Call& call, const Verb& verb, const std::string& object) noexcept;

  private:
    bool isJournal_;
};

}  // namespace oam::server
