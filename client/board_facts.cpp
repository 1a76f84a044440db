#include "board_facts.h"

#include "failure.h"
#include "text_answer.h"

namespace oam {
namespace {

// The shelf and the slot of a board that has none.
constexpr unsigned kNoPlace = 32;

template <class Ask>
std::string textOf(const std::string& name, Ask ask) {
    return AskText([&](char* buffer, unsigned size) { return ask(name.c_str(), buffer, size); })
        .text;
}

std::vector<std::string> macAddressesOf(const std::string& name) {
    std::vector<std::string> addresses;
    for (unsigned i = 0; i < OAM_MAC_KEPT; ++i) {
        std::string address = textOf(name, [i](const char* board, char* buffer, unsigned size) {
            return _oamBoardGetMACAddress(board, buffer, size, i);
        });
        if (!address.empty()) addresses.push_back(std::move(address));
    }
    return addresses;
}

}  // namespace

std::string BoardPlace::Text() const { return std::to_string(first) + ':' + std::to_string(slot); }

std::vector<std::string> BoardNames() { return AskNames(_oamBoardEnum); }

// The board may go meanwhile; then the questions after the first leave their defaults.
std::optional<BoardFacts> ReadBoardFacts(const std::string& name) {
    BoardFacts facts;
    const char* board = name.c_str();
    if (_oamBoardGetNumber(board, &facts.number) != OAM_SUCCESS) return std::nullopt;
    facts.name = name;
    facts.product = textOf(name, _oamBoardGetProduct);
    facts.driverName = textOf(name, [](const char* it, char* buffer, unsigned size) {
        char id[OAM_MAC_TEXT_SIZE];
        return _oamBoardGetDriverIDs(it, buffer, size, id, sizeof id);
    });
    facts.driverBoardId = textOf(name, [](const char* it, char* buffer, unsigned size) {
        char driver[OAM_MAC_TEXT_SIZE];
        return _oamBoardGetDriverIDs(it, driver, sizeof driver, buffer, size);
    });
    (void)_oamBoardGetBusSlot(board, &facts.busSlot.first, &facts.busSlot.slot);
    BoardPlace shelf{kNoPlace, kNoPlace};
    (void)_oamBoardGetShelfSlot(board, &shelf.first, &shelf.slot);
    if (shelf.first != kNoPlace || shelf.slot != kNoPlace) facts.shelfSlot = shelf;
    (void)_oamBoardGetIOAddress(board, &facts.ioAddress);
    facts.serialNumber = textOf(name, _oamBoardGetSerialNumber);
    facts.macAddresses = macAddressesOf(name);
    unsigned on = 0;
    facts.autoStart = _oamBoardGetAutoStartEnabled(board, &on) == OAM_SUCCESS && on != 0;
    facts.autoStop = IsStoppedAtExit(name);
    return facts;
}

std::vector<BoardFacts> ReadBoards() {
    std::vector<BoardFacts> boards;
    for (const std::string& name : BoardNames())
        if (auto facts = ReadBoardFacts(name)) boards.push_back(std::move(*facts));
    return boards;
}

bool IsStoppedAtExit(const std::string& board) {
    unsigned on = 0;
    return _oamBoardGetAutoStopEnabled(board.c_str(), &on) == OAM_SUCCESS && on != 0;
}

std::string RequireBoard(const std::string& name) {
    unsigned number = 0;
    const unsigned code = _oamBoardGetNumber(name.c_str(), &number);
    if (code)
        throw Failure(code, "there is no board " + Quoted(name),
                      "`oam board list` lists the boards");
    const Answer spelled = AskText([number](char* buffer, unsigned size) {
        return _oamBoardLookupByNumber(number, buffer, size);
    });
    return spelled.IsGiven() ? spelled.text : name;
}

}  // namespace oam
