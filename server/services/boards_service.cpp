#include "services/boards_service.h"

#include <cstring>

#include "board_access.h"
#include "board_facts.h"
#include "board_identity.h"
#include "board_making.h"
#include "configuration/configuration_keeper.h"
#include "detected_boards.h"
#include "foreign_text.h"
#include "journal/journal.h"
#include "services/alert_message.h"
#include "transport/refusal_status.h"

namespace oam::server {
namespace {

constexpr Verb kList = {"ListBoards", Role::kViewer};
constexpr Verb kGet = {"GetBoard", Role::kViewer};
constexpr Verb kLookUp = {"LookUpBoard", Role::kViewer};
constexpr Verb kStatus = {"GetBoardStatus", Role::kViewer};
constexpr Verb kSetShelfSlot = {"SetShelfSlot", Role::kConfigurator};
constexpr Verb kResetMac = {"ResetMacAddresses", Role::kConfigurator};
constexpr Verb kSetMac = {"SetMacAddresses", Role::kConfigurator};
constexpr Verb kSend = {"SendBuffer", Role::kAdmin};
constexpr Verb kDetect = {"DetectBoards", Role::kOperator};
constexpr Verb kListDetected = {"ListDetectedBoards", Role::kViewer};
constexpr Verb kAdd = {"AddDetectedBoard", Role::kConfigurator};

constexpr std::size_t kLargestBuffer = 64 * 1024;

void tell(const BoardFacts& facts, v1::Board* board) {
    board->set_name(facts.name);
    board->set_number(facts.number);
    board->set_product(facts.product);
    board->set_driver_name(facts.driverName);
    board->set_driver_board_id(facts.driverBoardId);
    board->mutable_bus_slot()->set_bus(facts.busSlot.first);
    board->mutable_bus_slot()->set_slot(facts.busSlot.slot);
    if (facts.shelfSlot) {
        board->mutable_shelf_slot()->set_shelf(facts.shelfSlot->first);
        board->mutable_shelf_slot()->set_slot(facts.shelfSlot->slot);
    }
    board->set_io_address(facts.ioAddress);
    board->set_serial_number(facts.serialNumber);
    for (const std::string& address : facts.macAddresses) board->add_mac_addresses(address);
    board->set_auto_start(facts.autoStart);
    board->set_auto_stop(facts.autoStop);
}

BoardIdentity identityOf(const v1::LookUpBoardRequest& request) {
    using Request = v1::LookUpBoardRequest;
    switch (request.key_case()) {
        case Request::kNumber:
            return ByNumber{request.number()};
        case Request::kDriverIds:
            return ByDriver{TextOf(request.driver_ids().driver_name(), "the driver's name"),
                            TextOf(request.driver_ids().driver_board_id(), "the board id")};
        case Request::kBusSlot:
            return ByBusSlot{request.bus_slot().bus(), request.bus_slot().slot()};
        case Request::kShelfSlot:
            return ByShelfSlot{request.shelf_slot().shelf(), request.shelf_slot().slot()};
        case Request::kIoAddress:
            return ByIoAddress{request.io_address()};
        case Request::kSerialNumber:
            return BySerialNumber{TextOf(request.serial_number(), "the serial number")};
        case Request::kProduct:
            return ByProduct{TextOf(request.product(), "the product")};
        case Request::kMacAddress:
            return ByMacAddress{TextOf(request.mac_address(), "the MAC address")};
        case Request::KEY_NOT_SET:
            break;
    }
    throw CallRefusal(Refused(grpc::StatusCode::INVALID_ARGUMENT, "no identity is given"));
}

std::string boardNameOf(const std::string& name) { return TextOf(name, "the board's name"); }

// To the service an empty name means every board.
void require(unsigned code, const std::string& what, const std::string& board) {
    if (code) throw Failure(code, "cannot " + what + " of " + Quoted(board));
}

void tellDetected(const std::vector<DetectedBoard>& found, v1::DetectBoardsResponse* response) {
    for (const DetectedBoard& board : found) {
        auto* const told = response->add_boards();
        told->set_name(board.name);
        told->set_product(board.product);
        told->mutable_bus_slot()->set_bus(board.bus);
        told->mutable_bus_slot()->set_slot(board.slot);
        told->set_configured_as(board.configuredAs);
    }
}

}  // namespace

grpc::ServerUnaryReactor* BoardsService::ListBoards(grpc::CallbackServerContext* context,
                                                    const v1::ListBoardsRequest*,
                                                    v1::ListBoardsResponse* response) {
    return core_.calls.Take(context, kList, "", [response](const Call&) {
        for (const BoardFacts& facts : ReadBoards()) tell(facts, response->add_boards());
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* BoardsService::GetBoard(grpc::CallbackServerContext* context,
                                                  const v1::GetBoardRequest* request,
                                                  v1::Board* response) {
    return core_.calls.Take(context, kGet, About(request->name()), [=](const Call&) {
        const std::string name = RequireBoard(boardNameOf(request->name()));
        // It may go in between.
        const auto facts = ReadBoardFacts(name);
        if (!facts) throw Failure(OAMERR_NOT_FOUND, "there is no board " + Quoted(name));
        tell(*facts, response);
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* BoardsService::LookUpBoard(grpc::CallbackServerContext* context,
                                                     const v1::LookUpBoardRequest* request,
                                                     v1::LookUpBoardResponse* response) {
    return core_.calls.Take(context, kLookUp, About(request->ShortDebugString()), [=](const Call&) {
        const Answer name = oam::LookUpBoard(identityOf(*request));
        if (!name.IsGiven())
            throw Failure(name.code, "no such board", "`oam board list` lists the boards");
        response->set_name(name.text);
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* BoardsService::GetBoardStatus(grpc::CallbackServerContext* context,
                                                        const v1::GetBoardStatusRequest* request,
                                                        v1::GetBoardStatusResponse* response) {
    return core_.calls.Take(context, kStatus, request->board(), [=](const Call&) {
        response->set_status(BoardStatus(boardNameOf(request->board()), request->selector()));
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* BoardsService::SetShelfSlot(grpc::CallbackServerContext* context,
                                                      const v1::SetShelfSlotRequest* request,
                                                      v1::BoardChangeResponse*) {
    return core_.calls.Take(context, kSetShelfSlot, request->board(), [=, this](const Call& call) {
        const std::string board = boardNameOf(request->board());
        require(_oamBoardSetShelfSlot(board.c_str(), request->shelf_slot().shelf(),
                                      request->shelf_slot().slot()),
                "set the shelf and slot", board);
        core_.journal.Deed(call.user, kSetShelfSlot.name, board);
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* BoardsService::ResetMacAddresses(
    grpc::CallbackServerContext* context, const v1::ResetMacAddressesRequest* request,
    v1::BoardChangeResponse*) {
    return core_.calls.Take(context, kResetMac, request->board(), [=, this](const Call& call) {
        const std::string board = boardNameOf(request->board());
        require(_oamBoardResetMACAddressCount(board.c_str()), "reset the MAC addresses", board);
        core_.journal.Deed(call.user, kResetMac.name, board);
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* BoardsService::SetMacAddresses(grpc::CallbackServerContext* context,
                                                         const v1::SetMacAddressesRequest* request,
                                                         v1::BoardChangeResponse*) {
    return core_.calls.Take(context, kSetMac, request->board(), [=, this](const Call& call) {
        const std::string board = boardNameOf(request->board());
        char texts[OAM_MAC_KEPT][OAM_MAC_TEXT_SIZE] = {};
        if (request->mac_addresses_size() > OAM_MAC_KEPT)
            return Refused(grpc::StatusCode::INVALID_ARGUMENT, "a board has four MAC addresses");
        for (int i = 0; i < request->mac_addresses_size(); ++i) {
            const std::string address = TextOf(request->mac_addresses(i), "a MAC address");
            if (address.size() >= OAM_MAC_TEXT_SIZE)
                return Refused(grpc::StatusCode::INVALID_ARGUMENT, "a MAC address is too long");
            std::memcpy(texts[i], address.c_str(), address.size() + 1);
        }
        require(_oamBoardSetMACAddress(board.c_str(), texts,
                                       static_cast<unsigned>(request->mac_addresses_size())),
                "set the MAC addresses", board);
        core_.journal.Deed(call.user, kSetMac.name, board);
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* BoardsService::SendBuffer(grpc::CallbackServerContext* context,
                                                    const v1::SendBufferRequest* request,
                                                    v1::SendBufferResponse*) {
    return core_.calls.Take(context, kSend, request->board(), [=, this](const Call& call) {
        if (request->buffer().size() > kLargestBuffer)
            return Refused(grpc::StatusCode::INVALID_ARGUMENT, "the buffer is too long");
        const std::string board = boardNameOf(request->board());
        oam::SendBuffer(board, request->buffer());
        core_.journal.Deed(call.user, kSend.name, board);
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* BoardsService::DetectBoards(grpc::CallbackServerContext* context,
                                                      const v1::DetectBoardsRequest*,
                                                      v1::DetectBoardsResponse* response) {
    return core_.calls.Take(context, kDetect, "", [=](const Call&) {
        tellDetected(oam::DetectBoards(), response);
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* BoardsService::ListDetectedBoards(grpc::CallbackServerContext* context,
                                                            const v1::ListDetectedBoardsRequest*,
                                                            v1::DetectBoardsResponse* response) {
    return core_.calls.Take(context, kListDetected, "", [=](const Call&) {
        tellDetected(DetectedBoards(), response);
        return grpc::Status::OK;
    });
}

grpc::ServerUnaryReactor* BoardsService::AddDetectedBoard(
    grpc::CallbackServerContext* context, const v1::AddDetectedBoardRequest* request,
    v1::AddDetectedBoardResponse* response) {
    return core_.calls.Take(context, kAdd, About(request->name()), [=, this](const Call& call) {
        std::optional<std::string> name;
        if (!request->all()) {
            name = boardNameOf(request->name());
            if (name->empty())
                return Refused(grpc::StatusCode::INVALID_ARGUMENT, "no board is named");
        }
        (void)oam::DetectBoards();
        const std::uint64_t before = core_.ring.Newest();
        BoardSetChange change{{}, 0};
        response->set_generation(core_.configuration.Change(
            call.user, "add", "", [&] { change = AddDetectedBoards(name); }));
        for (const std::string& board : change.boards) response->add_added(board);
        response->set_code(change.code);
        if (const char* text = change.code ? _oamGetText(change.code) : nullptr)
            response->set_code_name(Shown(text));
        // Why a board is not added, the service tells in alerts of this source.
        constexpr std::size_t kMost = 10000;
        for (const auto& alert : core_.ring.Read(before, kMost).alerts)
            if (alert->source == "AddDetectedBoard")
                Tell(*alert, core_.names, response->add_remarks());
        return grpc::Status::OK;
    });
}

}  // namespace oam::server
