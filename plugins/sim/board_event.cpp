#include "board_event.h"

#include <array>

#include "alert_record.h"
#include "kept_text.h"
#include "oam/entry.h"

namespace oam::sim {

void raiseEvents(const std::vector<BoardEvent>& events, const std::string& plugInObject) {
    for (const auto& event : events) {
        const auto& [bus, slot] = event.location;
        std::array<char, kLongestObjectName + 1> board;
        if (_oamBoardLookupByBusSlot(bus, slot, board.data(), board.size())) {
            raiseAlert(event.code, event.severity, plugInObject,
                       event.location.Text() + ": " + event.text);
        } else {
            raiseAlert(event.code, event.severity, board.data(), event.text);
        }
    }
}

}  // namespace oam::sim
