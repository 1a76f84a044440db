// A look at the hub that shares no code with the programs under test.
#pragma once

#include <nats/nats.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "site.h"

namespace oam::test {

// A record of a stream.
struct Kept {
    std::uint64_t sequence = 0;
    std::string subject;
    std::string id;  // Nats-Msg-Id
    std::string data;
};

struct StreamFacts {
    std::string leader;  // empty: none
    std::uint64_t messages = 0;
    std::uint64_t bytes = 0;
    std::uint64_t last = 0;  // sequence
    std::int64_t replicas = 0;
    bool isCurrent = false;  // every copy is up to date
};

class Observer {
  public:
    // Waits for the connection up to a minute; throws with the reason.
    Observer(const std::string& urls, const Papers& papers);
    ~Observer();
    Observer(const Observer&) = delete;
    Observer& operator=(const Observer&) = delete;

    // Why one cannot come in with these; empty when one can.
    static std::string WhyRefused(const std::string& urls, const Papers& papers);

    bool CanKeep() const;
    void MakeStream(const std::string& name, const std::string& subject) const;
    std::vector<std::string> Streams() const;
    std::optional<StreamFacts> Facts(const std::string& stream) const;
    // Every record of the stream, or of one subject, in its order; up to what the leader has now (a
    // copy that is a moment behind may be the one that is read).
    std::vector<Kept> Records(const std::string& stream, const std::string& subject = "") const;

    // The newest record with the subject; empty when there is none.
    std::string Last(const std::string& stream, const std::string& subject) const;

    // False when it was not acknowledged.
    bool Publish(const std::string& subject, const std::string& data,
                 const std::string& id = {}) const;
    std::optional<std::string> Request(const std::string& subject, const std::string& data,
                                       int milliseconds) const;
    // What the server has said last about rights that this client has not, to anything so far.
    std::string LastError() const;

    natsConnection* Connection() const { return connection_; }

  private:
    natsConnection* connection_ = nullptr;
    jsCtx* streams_ = nullptr;
};

}  // namespace oam::test
