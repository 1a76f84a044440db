// The host's alerts in the stream: each once, in order, without a gap that is not told.
//
// The daemon's ring numbers alerts, and the stream knows the last one that it has of this host. So
// a relay keeps nothing: it asks the stream for its last record, goes on behind that number from
// the ring, and publishes each record behind the one before ("the last on this subject is that one,
// or refuse this"). A record whose acknowledgement was lost, a second relay for the same host, a
// replica that was behind when it was asked: each shows as a refusal or a known id, and then the
// stream is asked again. After an outage of any length it is the same.
//
// What the ring does not have any more becomes a gap record. A host whose numbers begin anew (a new
// disk) tells so in a restart record and begins another series.
//
// A stream whose records of a quiet host have grown too old has no last record; then the position
// that the host's own record in the bucket tells counts, if it is of the same stream.
#pragma once

#include <mutex>
#include <stop_token>
#include <string>

#include "daemon/message_stream.h"
#include "fleet/agent/agent_figures.h"
#include "fleet/agent/say.h"
#include "fleet/link/stream.h"
#include "oam/v1/alerts.pb.h"

namespace oam::fleet {

class AlertRelay {
  public:
    AlertRelay(console::DaemonConnection& daemon, std::string host, AgentFigures& figures,
               Matter& matter);

    // Until the link is lost or `stop` is requested.
    void Serve(Link& link, const std::stop_token& stop);

    // As far as the stream has acknowledged, or was found to have.
    Position Reached() const;

  private:
    // One go from asking the stream until something is out of step or at an end.
    void Follow(Link& link, const std::stop_token& stop);
    // Where the stream is; what it has last becomes behind_.
    Position Ask(Link& link);
    Position FromBucket(Link& link, std::int64_t stream);
    void BeginSeriesIfNew(Link& link, Position* at);
    void Take(Link& link, Position* at, const v1::WatchAlertsResponse& told);
    // Publishes it, and goes on behind `sequence`.
    void Publish(Link& link, Position* at, const std::string& record, std::uint64_t sequence,
                 const std::string& id);
    void Reach(const Position& position);

    console::DaemonConnection& daemon_;
    const std::string host_;
    AgentFigures& figures_;
    Matter& matter_;
    std::uint64_t behind_ = 0;  // the stream's sequence of our last record
    mutable std::mutex mutex_;
    Position reached_;
};

}  // namespace oam::fleet
