// A stream of the engine: what is published with an acknowledgement, and what was published last.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "fleet/link/link.h"

namespace oam::fleet {

// What a stream keeps of a message. `time` is the server's, in nanoseconds since 1970.
struct Stored {
    std::string subject;
    std::string data;
    std::uint64_t sequence = 0;  // in the stream
    std::int64_t time = 0;
};

struct StreamFacts {
    std::int64_t created = 0;  // by the server's clock, nanoseconds since 1970
    std::uint64_t messages = 0;
};
// Nothing when there is no such stream.
std::optional<StreamFacts> LookAtStream(Link& link, const std::string& stream);

// The newest message with this subject; nothing when the stream has none. It may come from a
// replica that is a moment behind, so what is built on it must be checked when it is published.
std::optional<Stored> LastWith(Link& link, const std::string& stream, const std::string& subject);

// The stream's newest message with the subject is not the one that was expected; somebody else
// publishes there, or a message counted that was not acknowledged.
class OutOfStep : public EngineFailure {
  public:
    using EngineFailure::EngineFailure;
};

struct Publishing {
    std::string subject;
    std::string id;  // the stream knows it for a while: the same again is not taken twice
    // The stream's sequence of the newest message with this subject; 0: there is none yet.
    std::uint64_t behind = 0;
};
// The sequence in the stream, once enough replicas have it. OutOfStep; an EngineFailure when nobody
// acknowledged: then it may be there or not.
struct Acknowledged {
    std::uint64_t sequence = 0;
    bool wasThere = false;  // the stream knew the id already
};
Acknowledged PublishBehind(Link& link, const std::string& stream, const Publishing& how,
                           const std::string& data);

}  // namespace oam::fleet
