#include "fleet/agent/inventory.h"

#include "fleet/agent/stop.h"
#include "fleet/link/bucket.h"
#include "fleet/names.h"
#include "fleet/version.h"
#include "mirror/json_codec.h"
#include "mirror/time_text.h"
#include "oam/v1/boards.pb.h"
#include "oam/v1/operations.pb.h"

namespace oam::fleet {
namespace {

// Alerts come in swarms: one look for all of them.
constexpr auto kSettle = std::chrono::milliseconds(500);
constexpr auto kPatience = std::chrono::seconds(10);
constexpr auto kPause = std::chrono::seconds(2);

template <class Response>
bool ask(console::DaemonConnection& daemon, const char* method, Response* response) {
    std::string answer;
    return daemon.Call(method, "", &answer, {}, true, kPatience).ok() &&
           response->ParseFromString(answer);
}

std::string timeText(const google::protobuf::Timestamp& time) {
    return console::TimeText(time.seconds(), time.nanos());
}

// What the operations of one board tell.
struct Requests {
    const v1::Operation* running = nullptr;
    const v1::Operation* ended = nullptr;  // the newest
};

std::int64_t endOf(const v1::Operation& operation) {
    const auto& time = operation.has_ended() ? operation.ended() : operation.requested();
    constexpr std::int64_t kNanos = 1'000'000'000;
    return time.seconds() * kNanos + time.nanos();
}

std::map<std::string, Requests> byBoard(const v1::ListOperationsResponse& all) {
    std::map<std::string, Requests> boards;
    for (const v1::Operation& operation : all.operations()) {
        Requests& of = boards[FoldedName(operation.board())];
        if (operation.state() == v1::Operation::STATE_RUNNING)
            of.running = &operation;
        else if (of.ended == nullptr || endOf(operation) >= endOf(*of.ended))
            of.ended = &operation;
    }
    return boards;
}

const char* underWay(v1::Operation::Kind kind) {
    switch (kind) {
        case v1::Operation::KIND_START:
            return "being started";
        case v1::Operation::KIND_STOP:
            return "being stopped";
        case v1::Operation::KIND_TEST:
            return "being tested";
        default:
            return "busy";
    }
}

template <class Enum>
std::string enumText(const google::protobuf::EnumDescriptor& type, Enum value) {
    const auto* const known = type.FindValueByNumber(value);
    return known == nullptr ? "" : console::EnumText(*known);
}

BoardOutcome outcomeOf(const v1::Operation& operation) {
    const auto& time = operation.has_ended() ? operation.ended() : operation.requested();
    std::string text = operation.has_refusal() ? operation.refusal().rule() : operation.text();
    text.erase(text.find_last_not_of(" \n") + 1);
    return {enumText(*v1::Operation::Kind_descriptor(), operation.kind()),
            enumText(*v1::Operation::State_descriptor(), operation.state()), timeText(time), text};
}

}  // namespace

void InventoryBell::Ring() {
    const std::lock_guard hold(mutex_);
    isRung_ = true;
    rung_.notify_all();
}

bool InventoryBell::Wait(const std::stop_token& stop, std::chrono::milliseconds limit) {
    std::unique_lock hold(mutex_);
    (void)rung_.wait_for(hold, stop, limit, [&] { return isRung_; });
    return std::exchange(isRung_, false);
}

std::optional<BoardsRecord> LookAtBoards(console::DaemonConnection& daemon,
                                         const BoardStates& states, const v1::HostInfo& info,
                                         const std::string& host) {
    v1::ListBoardsResponse boards;
    v1::ListOperationsResponse operations;
    if (!ask(daemon, "/oam.v1.Boards/ListBoards", &boards) ||
        !ask(daemon, "/oam.v1.Operations/ListOperations", &operations))
        return std::nullopt;
    auto requests = byBoard(operations);
    BoardsRecord record{host, {}};
    for (const v1::Board& board : boards.boards()) {
        BoardRecord& one = record.boards.emplace_back();
        one.name = board.name();
        one.number = board.number();
        one.product = board.product();
        one.pci = {board.bus_slot().bus(), board.bus_slot().slot()};
        if (board.has_shelf_slot())
            one.shelf = BoardPlaceOf{board.shelf_slot().shelf(), board.shelf_slot().slot()};
        one.serialNumber = board.serial_number();
        const Requests& of = requests[FoldedName(board.name())];
        const BoardState state = of.running != nullptr
                                     ? BoardState{underWay(of.running->kind()), "busy"}
                                     : states.Of(board.name(), info.started().seconds());
        one.state = state.name;
        one.tone = state.tone;
        if (of.ended != nullptr) one.outcome = outcomeOf(*of.ended);
    }
    return record;
}

std::optional<HostRecord> Inventory::LookAtHost(std::size_t boards) const {
    const auto info = parts_.watch.Info();
    if (!info) return std::nullopt;
    HostRecord record;
    record.host = parts_.host;
    record.version = info->version();
    record.api = "oam.v1";
    record.directory = info->directory();
    record.started = info->has_started() ? timeText(info->started()) : "";
    record.running = info->running();
    record.codeName = info->code_name();
    record.boards = boards;
    record.agent = kVersion;
    record.position = parts_.position();
    return record;
}

void Inventory::Put(Link& link, bool mayRest) {
    const std::string key = TokenOf(parts_.host);
    const auto info = parts_.watch.Info();
    if (!info) return;
    // A service that does not run has no boards to tell of; those of before are still there.
    const auto boards =
        info->running() ? LookAtBoards(parts_.daemon, parts_.states, *info, parts_.host) : boards_;
    auto host = LookAtHost(boards ? boards->boards.size() : host_ ? host_->boards : 0);
    if (!host) return;
    if (mayRest && host_) host->position = host_->position;
    if (boards && boards_ != boards) {
        Bucket(link, kBoardBucket).Put(key, ToText(*boards));
        boards_ = boards;
        ++parts_.figures.boardsPut;
    }
    if (host_ != host) {
        Bucket(link, kHostBucket).Put(key, ToText(*host));
        host_ = host;
        ++parts_.figures.hostsPut;
    }
}

void Inventory::Serve(Link& link, const std::stop_token& stop) {
    host_.reset();
    boards_.reset();
    bool isRung = true;
    while (link.IsUp() && !stop.stop_requested()) {
        try {
            Put(link, /*mayRest=*/isRung);
            parts_.matter.IsWell("the fleet has the inventory");
            isRung = parts_.bell.Wait(stop, parts_.period);
            if (isRung && !WaitForStop(stop, kSettle))
                (void)parts_.bell.Wait(stop, std::chrono::milliseconds(0));
        } catch (const std::exception& error) {
            if (!link.IsUp()) return;
            parts_.matter.IsBad(std::string("the fleet does not take the inventory: ") +
                                error.what());
            isRung = parts_.bell.Wait(stop, kPause);
        }
    }
}

}  // namespace oam::fleet
