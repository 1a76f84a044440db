#include "configured_board.h"

#include <array>

#include "board_keywords.h"
#include "kit/db_access.h"

namespace oam::pci {
namespace {

using Text = std::array<char, kit::kLongestName + 1>;

oam_result askTable(const std::string& name, ConfiguredBoard* board) {
    Text product{};
    Text driver{};
    Text boardId{};
    PciLocation location;
    if (auto failed = _oamBoardGetBusSlot(name.c_str(), &location.bus, &location.slot)) {
        return failed;
    }
    if (auto failed = _oamBoardGetProduct(name.c_str(), product.data(), product.size())) {
        return failed;
    }
    if (auto failed = _oamBoardGetDriverIDs(name.c_str(), driver.data(), driver.size(),
                                            boardId.data(), boardId.size())) {
        return failed;
    }
    *board = {.product = product.data(), .location = location, .driver = driver.data()};
    return OAM_SUCCESS;
}

oam_result askDatabase(const std::string& name, ConfiguredBoard* board) {
    const kit::DbOpening object(name, OAM_OPEN_READ);
    if (auto failed = object.Failure()) return failed;
    const auto text = [&](const char* keyword) {
        return kit::readKeyword(object.Handle(), keyword).value_or("");
    };
    *board = {.product = text("Product"),
              .location = readLocation(object.Handle()),
              .driver = text("Driver.Name")};
    return OAM_SUCCESS;
}

}  // namespace

oam_result findConfiguredBoard(const std::string& name, ConfiguredBoard* board) {
    const auto answer = askTable(name, board);
    return answer == OAMERR_SERVER_NOT_RUNNING ? askDatabase(name, board) : answer;
}

}  // namespace oam::pci
