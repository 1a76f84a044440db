// Who is logged in: a secret in a cookie (a browser) or in a header (a script), and for whom it
// stands.
//
// A browser sends its cookie along with whatever a foreign page makes it ask. So a session also has
// a second secret, which only our own page can know; a request that changes anything must name it.
#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "daemon/identity.h"

namespace oam::console {

struct Session {
    Identity identity;
    std::string formToken;  // the second secret
};

class Sessions {
  public:
    using Clock = std::chrono::steady_clock;

    // Its secret. The oldest session makes room when there are very many.
    std::string Begin(const Identity& identity);
    // Nothing when it is none, or was not used for too long. Counts as a use.
    std::optional<Session> Find(const std::string& secret, Clock::time_point now = Clock::now());
    void End(const std::string& secret);

    static constexpr auto kIdle = std::chrono::hours(8);
    static constexpr auto kLongest = std::chrono::hours(24);
    static constexpr std::size_t kMost = 1000;

  private:
    struct Entry {
        Session session;
        Clock::time_point begun;
        Clock::time_point used;
    };

    std::mutex mutex_;
    std::map<std::string, Entry> entries_;
};

}  // namespace oam::console
