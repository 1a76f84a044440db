#include "detected_boards.h"

#include "failure.h"
#include "number.h"
#include "opened_object.h"

namespace oam {
namespace {

std::string configuredAs(const DetectedBoard& board) {
    unsigned number = 0;
    if (_oamBoardGetNumber(board.name.c_str(), &number) == OAM_SUCCESS) return board.name;
    if (board.bus == 0 && board.slot == 0) return {};
    return AskText([&](char* buffer, unsigned size) {
               return _oamBoardLookupByBusSlot(board.bus, board.slot, buffer, size);
           })
        .text;
}

}  // namespace

std::vector<DetectedBoard> DetectBoards() {
    const unsigned code = _oamDetectBoards();
    if (code)
        throw Failure(code, "the boards cannot be detected", "a plug-in's object cannot be opened");
    return DetectedBoards();
}

std::vector<DetectedBoard> DetectedBoards() {
    const OpenedObject supervisor("Supervisor", OAM_OPEN_READ);
    const auto number = [&](const std::string& keyword) {
        return ParseNumber(supervisor.Keyword(keyword).text).value_or(0);
    };
    std::vector<DetectedBoard> boards;
    const unsigned count = supervisor.Count("DetectedBoards");
    for (unsigned i = 0; i < count; ++i) {
        const std::string element = Element("DetectedBoards", i);
        DetectedBoard board{supervisor.Keyword(element + ".Name").text,
                            supervisor.Keyword(element + ".Product").text,
                            number(element + ".Location.PCI.Bus"),
                            number(element + ".Location.PCI.Slot"),
                            {}};
        board.configuredAs = configuredAs(board);
        boards.push_back(std::move(board));
    }
    return boards;
}

}  // namespace oam
