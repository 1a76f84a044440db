#include "daemon/start_failure.h"

#include "foreign_text.h"
#include "installation.h"
#include "journal/journal.h"
#include "startup_log.h"

namespace oam::server {

Failure StartFailure(unsigned code, const Installation& place,
                     std::chrono::system_clock::time_point before, Journal& journal) {
    const auto since = std::chrono::system_clock::to_time_t(before);
    for (const std::string& line : StartupErrors(place.Path(kStartupLog), since))
        journal.Say(Priority::kError, "start-up log: " + Shown(line));
    return {code, "the service does not start", StartAdvice(code)};
}

}  // namespace oam::server
