// A key-value bucket of the engine: the newest value of each key. Keys are tokens (names.h).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fleet/link/stream.h"

namespace oam::fleet {

class Bucket {
  public:
    Bucket(Link& link, std::string name);

    // Acknowledged when it returns.
    void Put(const std::string& key, const std::string& value);
    // Not acknowledged: for what is said again in a moment.
    void Say(const std::string& key, const std::string& value);
    void Remove(const std::string& key);
    std::optional<Stored> Get(const std::string& key);

    struct Content {
        std::vector<Stored> values;  // each key's newest; removed keys are left out
        std::int64_t now = 0;        // the server's clock, nanoseconds since 1970
    };
    Content ReadAll();

    // The key in a value's subject.
    std::string KeyOf(const Stored& value) const;

  private:
    // Where a key is published.
    std::string Target(const std::string& key) const;

    Link& link_;
    const std::string name_;
};

}  // namespace oam::fleet
