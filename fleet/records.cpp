#include "fleet/records.h"

#include <array>

#include "mirror/text_json.h"

namespace oam::fleet {
namespace {

using console::TextFromJson;
using console::TextToJson;

constexpr unsigned kSchema = 1;
constexpr std::array kDaemons = {"answering", "silent", "away", "ended"};

std::string dumped(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json begun(const std::string& host) { return {{"schema", kSchema}, {"host", TextToJson(host)}}; }

Json parsed(std::string_view text) {
    Json json = Json::parse(text, nullptr, false);
    if (!json.is_object()) throw BadRecord("it is no JSON object");
    if (!json.contains("host")) throw BadRecord("it has no \"host\"");
    return json;
}

// What a later version has left out, or made something else, is as good as empty.
std::string textIn(const Json& json, const char* name) {
    const auto found = json.find(name);
    if (found == json.end()) return {};
    return TextFromJson(*found).value_or("");
}

template <class Number>
Number numberIn(const Json& json, const char* name) {
    const auto found = json.find(name);
    return found != json.end() && found->is_number_integer() ? found->get<Number>() : Number{0};
}

bool flagIn(const Json& json, const char* name) {
    const auto found = json.find(name);
    return found != json.end() && found->is_boolean() && found->get<bool>();
}

Json boardJson(const BoardRecord& board) {
    Json json{{"name", TextToJson(board.name)},
              {"number", board.number},
              {"product", TextToJson(board.product)},
              {"state", board.state},
              {"tone", board.tone},
              {"bus", board.pci.first},
              {"slot", board.pci.slot}};
    if (board.shelf) {
        json["shelf"] = board.shelf->first;
        json["shelfSlot"] = board.shelf->slot;
    }
    json["serialNumber"] = TextToJson(board.serialNumber);
    if (board.outcome)
        json["outcome"] = {{"kind", board.outcome->kind},
                           {"state", board.outcome->state},
                           {"time", board.outcome->time},
                           {"text", TextToJson(board.outcome->text)}};
    return json;
}

BoardRecord boardOf(const Json& json) {
    BoardRecord board;
    board.name = textIn(json, "name");
    board.number = numberIn<unsigned>(json, "number");
    board.product = textIn(json, "product");
    board.state = textIn(json, "state");
    board.tone = textIn(json, "tone");
    board.pci = {numberIn<unsigned>(json, "bus"), numberIn<unsigned>(json, "slot")};
    if (json.contains("shelf"))
        board.shelf =
            BoardPlaceOf{numberIn<unsigned>(json, "shelf"), numberIn<unsigned>(json, "shelfSlot")};
    board.serialNumber = textIn(json, "serialNumber");
    if (const auto outcome = json.find("outcome"); outcome != json.end() && outcome->is_object())
        board.outcome = BoardOutcome{textIn(*outcome, "kind"), textIn(*outcome, "state"),
                                     textIn(*outcome, "time"), textIn(*outcome, "text")};
    return board;
}

}  // namespace

const char* DaemonText(Beat::Daemon daemon) {
    return kDaemons.at(static_cast<std::size_t>(daemon));
}

std::string ToText(const HostRecord& record) {
    Json json = begun(record.host);
    json["version"] = record.version;
    json["api"] = record.api;
    json["directory"] = TextToJson(record.directory);
    json["started"] = record.started;
    json["running"] = record.running;
    json["codeName"] = TextToJson(record.codeName);
    json["boards"] = record.boards;
    json["agent"] = record.agent;
    json["position"] = {{"stream", record.position.stream},
                        {"series", record.position.series},
                        {"sequence", record.position.sequence}};
    return dumped(json);
}

std::string ToText(const BoardsRecord& record) {
    Json json = begun(record.host);
    json["boards"] = Json::array();
    for (const BoardRecord& board : record.boards) json["boards"].push_back(boardJson(board));
    return dumped(json);
}

std::string ToText(const Beat& beat) {
    Json json = begun(beat.host);
    json["sequence"] = beat.sequence;
    json["sent"] = beat.sent;
    json["interval"] = beat.interval;
    json["daemon"] = DaemonText(beat.daemon);
    json["since"] = beat.since;
    return dumped(json);
}

std::string AlertText(const std::string& host, std::uint64_t series, const Json& alert) {
    Json json = begun(host);
    json["series"] = series;
    json.update(alert);
    return dumped(json);
}

std::string GapText(const std::string& host, std::uint64_t series, std::uint64_t first,
                    std::uint64_t last) {
    Json json = begun(host);
    json["series"] = series;
    json["gap"] = {{"first", first}, {"last", last}};
    return dumped(json);
}

std::string RestartText(const std::string& host, std::uint64_t series, std::uint64_t last) {
    Json json = begun(host);
    json["series"] = series;
    json["restart"] = {{"last", last}};
    return dumped(json);
}

HostRecord ReadHost(std::string_view text) {
    const Json json = parsed(text);
    HostRecord record;
    record.host = textIn(json, "host");
    record.version = textIn(json, "version");
    record.api = textIn(json, "api");
    record.directory = textIn(json, "directory");
    record.started = textIn(json, "started");
    record.running = flagIn(json, "running");
    record.codeName = textIn(json, "codeName");
    record.boards = numberIn<std::uint64_t>(json, "boards");
    record.agent = textIn(json, "agent");
    if (const auto at = json.find("position"); at != json.end() && at->is_object())
        record.position = {numberIn<std::int64_t>(*at, "stream"),
                           numberIn<std::uint64_t>(*at, "series"),
                           numberIn<std::uint64_t>(*at, "sequence")};
    return record;
}

BoardsRecord ReadBoards(std::string_view text) {
    const Json json = parsed(text);
    BoardsRecord record;
    record.host = textIn(json, "host");
    const auto boards = json.find("boards");
    if (boards == json.end() || !boards->is_array()) throw BadRecord("it has no \"boards\"");
    for (const Json& board : *boards)
        if (board.is_object()) record.boards.push_back(boardOf(board));
    return record;
}

Beat ReadBeat(std::string_view text) {
    const Json json = parsed(text);
    Beat beat;
    beat.host = textIn(json, "host");
    beat.sequence = numberIn<std::uint64_t>(json, "sequence");
    beat.sent = textIn(json, "sent");
    beat.interval = numberIn<unsigned>(json, "interval");
    beat.since = textIn(json, "since");
    const std::string daemon = textIn(json, "daemon");
    for (std::size_t i = 0; i < kDaemons.size(); ++i)
        if (daemon == kDaemons.at(i)) {
            beat.daemon = static_cast<Beat::Daemon>(i);
            return beat;
        }
    throw BadRecord("its \"daemon\" is unknown");
}

AlertRecord ReadAlert(std::string_view text) {
    AlertRecord record;
    record.alert = parsed(text);
    record.host = textIn(record.alert, "host");
    record.series = numberIn<std::uint64_t>(record.alert, "series");
    if (const auto gap = record.alert.find("gap"); gap != record.alert.end()) {
        if (!gap->is_object()) throw BadRecord("its \"gap\" is none");
        record.kind = AlertRecord::Kind::kGap;
        record.first = numberIn<std::uint64_t>(*gap, "first");
        record.sequence = numberIn<std::uint64_t>(*gap, "last");
    } else if (record.alert.contains("restart")) {
        record.kind = AlertRecord::Kind::kRestart;
    } else {
        record.sequence = numberIn<std::uint64_t>(record.alert, "sequence");
        if (record.sequence == 0) throw BadRecord("it has no \"sequence\"");
    }
    return record;
}

}  // namespace oam::fleet
