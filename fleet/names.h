// How hosts, boards and callers are named on the wire, and what lies under which name.
//
// A name of ours may be any bytes; a subject token and a bucket's key may not. A token is the name
// with every byte but A-Z a-z 0-9 - _ written as "=" and two hexadecimal digits ("rack=2E7"); the
// empty name is "=". Each name has exactly one token, and each token at most one name.
//
//   subject or bucket                    who publishes   what
//   oam.alerts.HOST                      the host        stream OAM_ALERTS: a record an alert
//   $KV.oam_hosts.HOST                   the host        bucket: what the host is
//   $KV.oam_boards.HOST                  the host        bucket: all boards of the host
//   $KV.oam_presence.HOST                the host        bucket in memory: its last heartbeat
//   oam.command.HOST.ROLE.CALLER.VERB    the caller      a request for the host (command.h)
//   _INBOX.NAME.>                        anyone          answers for the client of this name
//
// What the engine's server must enforce, and all that it must: a host publishes under its own HOST
// alone, and no command at all; a client publishes commands under its own CALLER alone and up to
// its ROLE, and reads its own inbox alone. CALLER is the name in the client's certificate as the
// server maps it, and is the one that the host's own roles are asked about.
//
// The agent of a host needs these rights (API is "$JS.API" or "$JS.DOMAIN.API"):
//   publish    oam.alerts.HOST  $KV.*.HOST (with a domain API.$KV.*.HOST too)  _INBOX.>
//              API.STREAM.INFO.OAM_ALERTS
//              API.DIRECT.GET.OAM_ALERTS.oam.alerts.HOST
//              API.DIRECT.GET.KV_oam_hosts.$KV.oam_hosts.HOST
//   subscribe  oam.command.HOST.>  _INBOX.NAME.>
// A client that looks needs these, for each of the four streams:
//   publish    API.STREAM.INFO.STREAM  API.CONSUMER.CREATE.STREAM(.>)  API.CONSUMER.INFO.STREAM.*
//              API.CONSUMER.DELETE.STREAM.*  API.DIRECT.GET.STREAM.>  $JS.FC.>
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace oam::fleet {

std::string TokenOf(std::string_view name);
// Nothing when it is no token that TokenOf makes.
std::optional<std::string> NameOf(std::string_view token);

constexpr const char* kAlertStream = "OAM_ALERTS";
constexpr const char* kAlertSubjects = "oam.alerts.>";
constexpr const char* kHostBucket = "oam_hosts";
constexpr const char* kBoardBucket = "oam_boards";
constexpr const char* kPresenceBucket = "oam_presence";

// The stream behind a bucket, and the subject of one of its keys.
std::string BucketStream(std::string_view bucket);
std::string BucketSubject(std::string_view bucket, std::string_view key);

std::string AlertSubject(std::string_view host);

// "HOST+SEQUENCE", by which the stream knows an alert that it has already. A host that counts anew
// (its numbers were lost with its disk) begins another series: "HOST+SEQUENCE+SERIES".
std::string AlertId(std::string_view host, std::uint64_t series, std::uint64_t sequence);

// `role` is the least that the verb needs, as a word; `caller` and `host` are names, not tokens.
std::string CommandSubject(std::string_view host, std::string_view role, std::string_view caller,
                           std::string_view verb);
// All commands for a host.
std::string CommandSubjects(std::string_view host);

struct CommandName {
    std::string host;
    std::string role;
    std::string caller;
    std::string verb;
};
std::optional<CommandName> ParseCommandSubject(std::string_view subject);

// The beginning of the subjects at which a client of this name gets answers.
std::string InboxPrefix(std::string_view name);

}  // namespace oam::fleet
