#include "board_event.h"

#include <array>

#include "kit/alert_record.h"
#include "kit/kept_text.h"
#include "oam/entry.h"

namespace oam::sim {

void raiseEvents(const std::vector<BoardEvent>& events, const std::string& plugInObject) {
    for (const auto& event : events) {
        const auto& [bus, slot] = event.location;
        std::array<char, kit::kLongestName + 1> board;
        if (_oamBoardLookupByBusSlot(bus, slot, board.data(), board.size())) {
            kit::raiseAlert(event.code, event.severity, plugInObject,
                            event.location.Text() + ": " + event.text);
        } else {
            kit::raiseAlert(event.code, event.severity, board.data(), event.text);
        }
    }
}

}  // namespace oam::sim
