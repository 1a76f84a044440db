// What hosts leave in the buckets and the stream, as JSON. Every record has "schema": 1; a reader
// takes what it knows and passes over members that a later version has added.
//
//   host      {"host", "version", "api", "directory", "started", "running", "codeName",
//              "boards", "agent", "position": {"stream", "series", "sequence"}}
//   boards    {"host", "boards": [{"name", "number", "product", "state", "tone", "bus", "slot",
//              "shelf", "shelfSlot", "serialNumber",
//              "outcome": {"kind", "state", "time", "text"}}]}
//   beat      {"host", "sequence", "sent", "interval", "daemon", "since"}
//   alert     {"host", "series", "sequence", "time", "code", "codeName", "severity", "source",
//              "text", "operation"}
//   gap       {"host", "series", "gap": {"first", "last"}}: numbers that the host does not have any
//             more, for whatever reason; nothing is missing otherwise
//   restart   {"host", "series", "restart": {"last"}}: the host counts anew
//
// A name or text is a string, or {"base64": "..."} when its bytes are not UTF-8. Times are
// "2026-03-01T12:00:00.000Z".
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace oam::fleet {

using Json = nlohmann::ordered_json;

// A record that cannot be read; what it says is for people.
class BadRecord : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// How far a host's alerts are in the stream.
struct Position {
    std::int64_t stream = 0;     // when that stream was created: another one has none of them
    std::uint64_t series = 0;    // how often the host has begun to count anew
    std::uint64_t sequence = 0;  // of the newest

    bool operator==(const Position&) const = default;
};

struct HostRecord {
    std::string host;
    std::string version;  // of oamd; empty: never seen
    std::string api;
    std::string directory;
    std::string started;  // oamd's start
    bool running = false;
    std::string codeName;  // why the service does not run
    std::uint64_t boards = 0;
    std::string agent;  // the version of oam-fleetd
    Position position;

    bool operator==(const HostRecord&) const = default;
};

struct BoardOutcome {
    std::string kind;   // "start", "stop", "test"
    std::string state;  // "done", "failed", "refused", "unknown"
    std::string time;
    std::string text;

    bool operator==(const BoardOutcome&) const = default;
};

struct BoardPlaceOf {
    unsigned first = 0;  // the bus, or the shelf
    unsigned slot = 0;

    bool operator==(const BoardPlaceOf&) const = default;
};

struct BoardRecord {
    std::string name;
    unsigned number = 0;
    std::string product;
    std::string state;  // "started", "being tested", "dead"
    std::string tone;   // "good", "idle", "busy", "warn", "bad"
    BoardPlaceOf pci;
    std::optional<BoardPlaceOf> shelf;
    std::string serialNumber;
    std::optional<BoardOutcome> outcome;  // of the last request that came to an end

    bool operator==(const BoardRecord&) const = default;
};

struct BoardsRecord {
    std::string host;
    std::vector<BoardRecord> boards;

    bool operator==(const BoardsRecord&) const = default;
};

struct Beat {
    enum class Daemon {
        kAnswering,
        kSilent,  // it is there and does not answer
        kAway,    // nobody listens at its socket
        kEnded,   // the agent itself has ended in good order
    };
    std::string host;
    std::uint64_t sequence = 0;  // counts from the agent's start
    std::string sent;            // by the host's own clock
    unsigned interval = 0;       // until the next one, milliseconds
    Daemon daemon = Daemon::kAnswering;
    std::string since;  // since when the daemon is as it is
};

struct AlertRecord {
    enum class Kind { kAlert, kGap, kRestart };
    Kind kind = Kind::kAlert;
    std::string host;
    std::uint64_t series = 0;
    std::uint64_t first = 0;  // of a gap
    // The number behind which the host goes on: the alert's, the last one of a gap, 0 of a restart.
    std::uint64_t sequence = 0;
    Json alert;  // the record as a whole
};

std::string ToText(const HostRecord& record);
std::string ToText(const BoardsRecord& record);
std::string ToText(const Beat& beat);
// `alert` as the console's mirror tells one.
std::string AlertText(const std::string& host, std::uint64_t series, const Json& alert);
std::string GapText(const std::string& host, std::uint64_t series, std::uint64_t first,
                    std::uint64_t last);
std::string RestartText(const std::string& host, std::uint64_t series, std::uint64_t last);

// BadRecord when it is none.
HostRecord ReadHost(std::string_view text);
BoardsRecord ReadBoards(std::string_view text);
Beat ReadBeat(std::string_view text);
AlertRecord ReadAlert(std::string_view text);

// "answering", ...
const char* DaemonText(Beat::Daemon daemon);

}  // namespace oam::fleet
