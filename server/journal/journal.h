// What the daemon tells: to the systemd journal with fields, or to standard error where there is
// none; there what is only information is left out. Any thread; nothing is thrown and nobody waits
// for a reader: a line that a pipe or the journal has no room for is left out, and so many are told
// of in the next one.
//
// Fields beside MESSAGE and PRIORITY: OAM_BOARD, OAM_CODE, OAM_SEVERITY, OAM_SEQ, OAM_OP, OAM_USER,
// OAM_ROLE, OAM_VERB, OAM_OBJECT, OAM_GENERATION (`docs/oamd.md` has them by line).
#pragma once

#include <functional>
#include <initializer_list>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "alerts/stored_alert.h"
#include "operations/operation_record.h"

namespace oam::server {

enum class Priority { kError = 3, kWarning = 4, kNotice = 5, kInfo = 6 };

class Journal {
  public:
    Journal();
    // Each line as "FIELD=value"s.
    using Send = std::function<void(const std::vector<std::string>& fields)>;
    explicit Journal(Send send) : send_(std::move(send)) {}

    using Field = std::pair<const char*, std::string>;
    void Say(Priority priority, const std::string& message,
             std::initializer_list<Field> fields = {}) noexcept;

    // `user`: who asked for the operation whose outcome it is.
    void Alert(const StoredAlert& alert, const std::string& user = {}) noexcept;
    // An operation that was asked for, as it is now: under way or refused.
    void Operation(const OperationRecord& operation) noexcept;
    // `user` did something to an object, or (no name) to any. `generation` of the configuration
    // that came of it; 0: none.
    void Deed(const std::string& user, const std::string& verb, const std::string& object,
              std::uint64_t generation = 0) noexcept;
    // `user` may not do what needs another role. A long object is cut: anybody may name one.
    void Denied(const std::string& user, const std::string& role, const std::string& verb,
                const std::string& object) noexcept;

  private:
    void SayToStandardError(const std::string& message);

    Send send_;  // none: standard error
    std::mutex mutex_;
    std::size_t leftOut_ = 0;
};

}  // namespace oam::server
