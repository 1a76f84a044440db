#include "fleet/agent/alert_relay.h"

#include "fleet/agent/stop.h"
#include "fleet/link/bucket.h"
#include "fleet/names.h"
#include "mirror/json_codec.h"
#include "oam/v1/host.pb.h"

namespace oam::fleet {
namespace {

constexpr auto kLook = std::chrono::milliseconds(200);
constexpr auto kPause = std::chrono::seconds(1);
constexpr auto kPatience = std::chrono::seconds(5);

class NoDaemon : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace

AlertRelay::AlertRelay(console::DaemonConnection& daemon, std::string host, AgentFigures& figures,
                       Matter& matter)
    : daemon_(daemon), host_(std::move(host)), figures_(figures), matter_(matter) {}

Position AlertRelay::Reached() const {
    const std::lock_guard hold(mutex_);
    return reached_;
}

void AlertRelay::Reach(const Position& position) {
    const std::lock_guard hold(mutex_);
    reached_ = position;
    figures_.published = position.sequence;
}

void AlertRelay::Serve(Link& link, const std::stop_token& stop) {
    while (link.IsUp() && !stop.stop_requested()) {
        try {
            Follow(link, stop);
        } catch (const OutOfStep&) {
            // Asked again at once, with a breath for a replica that is behind.
            (void)WaitForStop(stop, kLook);
            continue;
        } catch (const NoDaemon&) {
            // The heartbeat tells.
        } catch (const std::exception& error) {
            if (!link.IsUp()) return;
            matter_.IsBad(std::string("alerts do not get into the stream: ") + error.what());
        }
        (void)WaitForStop(stop, kPause);
    }
}

Position AlertRelay::Ask(Link& link) {
    ++figures_.lookedAgain;
    const auto facts = LookAtStream(link, kAlertStream);
    if (!facts)
        throw Failure(std::string("there is no stream ") + kAlertStream,
                      "`oam fleet init` makes it", kNotFound);
    const auto last = LastWith(link, kAlertStream, AlertSubject(host_));
    behind_ = last ? last->sequence : 0;
    if (!last) return FromBucket(link, facts->created);
    const AlertRecord record = ReadAlert(last->data);
    return {facts->created, record.series, record.sequence};
}

Position AlertRelay::FromBucket(Link& link, std::int64_t stream) {
    Position at{stream, 0, 0};
    const auto stored = Bucket(link, kHostBucket).Get(TokenOf(host_));
    if (!stored) return at;
    const Position told = ReadHost(stored->data).position;
    return told.stream == stream ? told : at;
}

// Numbers only ever grow while their file lives, so a daemon that is behind the stream counts anew.
void AlertRelay::BeginSeriesIfNew(Link& link, Position* at) {
    std::string answer;
    v1::HostInfo info;
    const auto status = daemon_.Call("/oam.v1.Host/GetHost", "", &answer, {}, true, kPatience);
    if (!status.ok() || !info.ParseFromString(answer)) throw NoDaemon("no daemon answers");
    if (info.newest_alert() >= at->sequence) return;
    const std::uint64_t last = at->sequence;
    ++at->series;
    Publish(link, at, RestartText(host_, at->series, last), 0, AlertId(host_, at->series, 0));
    Say("the host's alerts are counted anew: the stream has number " + std::to_string(last) +
        ", the host " + std::to_string(info.newest_alert()));
}

void AlertRelay::Follow(Link& link, const std::stop_token& stop) {
    Position at = Ask(link);
    BeginSeriesIfNew(link, &at);
    Reach(at);
    const auto channel = daemon_.Channel();
    if (!channel) throw NoDaemon("no daemon answers");
    v1::WatchAlertsRequest request;
    request.set_after(at.sequence);
    console::MessageStream stream(channel, "/oam.v1.Alerts/WatchAlerts",
                                  request.SerializeAsString(), {});
    while (link.IsUp() && !stop.stop_requested()) {
        if (const auto bytes = stream.Next(kLook)) {
            v1::WatchAlertsResponse told;
            if (!told.ParseFromString(*bytes)) throw Failure("the daemon's alert cannot be read");
            Take(link, &at, told);
            matter_.IsWell("alerts get into the stream");
            continue;
        }
        const auto end = stream.End();
        if (!end) continue;
        if (console::IsConnectionGone(*end)) daemon_.Lost(channel);
        if (end->error_code() == grpc::StatusCode::UNAVAILABLE) throw NoDaemon("it ended");
        throw Failure("the daemon does not tell its alerts: " + end->error_message());
    }
}

void AlertRelay::Take(Link& link, Position* at, const v1::WatchAlertsResponse& told) {
    if (told.has_gap()) {
        const auto& gap = told.gap();
        Publish(link, at, GapText(host_, at->series, gap.first(), gap.last()), gap.last(),
                AlertId(host_, at->series, gap.last()));
        ++figures_.gaps;
    } else if (told.has_alert()) {
        const auto& alert = told.alert();
        Publish(link, at, AlertText(host_, at->series, console::ToJson(alert)), alert.sequence(),
                AlertId(host_, at->series, alert.sequence()));
        ++figures_.alerts;
    }
}

void AlertRelay::Publish(Link& link, Position* at, const std::string& record,
                         std::uint64_t sequence, const std::string& id) {
    const Acknowledged done =
        PublishBehind(link, kAlertStream, {AlertSubject(host_), id, behind_}, record);
    if (done.wasThere) ++figures_.alertsThere;
    // What the stream knew already may lie before its last record; then that one is not ours to
    // tell.
    if (done.wasThere && done.sequence < behind_)
        throw OutOfStep("the stream has " + id + " already", NATS_ERR);
    behind_ = done.sequence;
    at->sequence = sequence;
    Reach(*at);
}

}  // namespace oam::fleet
