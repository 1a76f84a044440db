// Adding detected boards to the configuration.

#include <cstdlib>

#include "doors/alert.h"
#include "doors/board.h"
#include "mobjmgr.h"

namespace {

enum DetectedField { kDetectedName = 1, kDetectedProduct = 2, kDetectedBus = 3, kDetectedSlot = 4 };

// A copy: a detection in between may replace the table.
struct Detected {
    char name[oam::kNameSize];
    char product[oam::kNameSize];
    char bus[oam::kNameSize];
    char slot[oam::kNameSize];
};

Detected detectedAt(int index) noexcept {
    Detected detected;
    oam::CopyCut(DetectedBoardsGetAt(index, kDetectedName), detected.name, sizeof detected.name);
    oam::CopyCut(DetectedBoardsGetAt(index, kDetectedProduct), detected.product,
                 sizeof detected.product);
    oam::CopyCut(DetectedBoardsGetAt(index, kDetectedBus), detected.bus, sizeof detected.bus);
    oam::CopyCut(DetectedBoardsGetAt(index, kDetectedSlot), detected.slot, sizeof detected.slot);
    return detected;
}

template <class... Values>
void tell(const char* format, Values... values) noexcept {
    (void)AlertNotify(OAMEVN_ALERT, OAM_INFORMATION, "AddDetectedBoard", format, values...);
}

void tellNoneDetected() noexcept {
    tell("%s",
         "No board have been detected. Don't forget to call oamDetectedBoards before calling this "
         "function");
}

oam_result refuseNameInUse(const char* name) noexcept {
    unsigned number = 0;
    if (_oamBoardGetNumber(name, &number) == OAMERR_NOT_FOUND) return OAM_SUCCESS;
    tell("The Board \"%s\" is already present in the OAM database with Number %d", name,
         static_cast<int>(number));
    return OAMERR_ALREADY_EXISTS;
}

oam_result refuseLocationInUse(const Detected& board) noexcept {
    const unsigned bus = static_cast<unsigned>(atoi(board.bus));
    const unsigned slot = static_cast<unsigned>(atoi(board.slot));
    char other[oam::kNameSize];
    if (bus == 0 && slot == 0) return OAM_SUCCESS;
    if (_oamBoardLookupByBusSlot(bus, slot, other, sizeof other) != OAM_SUCCESS) {
        return OAM_SUCCESS;
    }
    tell(
        "Cannot add the Board \"%s\". The Board \"%s\" has already the same bus:slot in the OAM "
        "database",
        board.name, other);
    return OAMERR_ALREADY_EXISTS;
}

oam_result fillIn(unsigned long handle, const char* created, const Detected& board) noexcept {
    const struct {
        const char* keyword;
        const char* value;
    } rows[] = {
        {"Name", board.name}, {"Location.PCI.Bus", board.bus}, {"Location.PCI.Slot", board.slot}};
    for (const auto& row : rows) {
        if (auto failed = _oamSetKeyword(handle, row.keyword, row.value)) {
            tell("Error when setting the keyword '%s' with board object \"%s\" (ret=0x%x)",
                 row.keyword, created, static_cast<unsigned>(failed));
            return failed;
        }
    }
    return OAM_SUCCESS;
}

oam_result addBoard(const Detected& board) noexcept {
    char created[oam::kNameSize] = "";
    if (auto failed = _oamCreateBoard(board.product, created, sizeof created)) {
        tell("The Board object \"%s\" cannot be created (ret=0x%x)", created,
             static_cast<unsigned>(failed));
        return failed;
    }
    unsigned long handle;
    if (auto failed = _oamOpenObject(OAM_INTERNAL_CLIENT, created, &handle, OAM_OPEN_WRITE)) {
        tell("The Board object \"%s\" is already open in R/W mode (ret=0x%x)", created,
             static_cast<unsigned>(failed));
        return failed;
    }
    if (auto failed = fillIn(handle, created, board)) {
        (void)_oamCloseObject(handle);
        return failed;
    }
    const oam_result closed = _oamCloseObject(handle);
    if (closed != OAM_SUCCESS) {
        tell("Error when closing the board object \"%s\" (ret=0x%x)", created,
             static_cast<unsigned>(closed));
    }
    return closed;
}

oam_result addNamed(const char* name) noexcept {
    if (auto taken = refuseNameInUse(name)) return taken;
    if (DetectedBoardsGetCount() == 0) {
        tellNoneDetected();
        return OAMERR_NOT_FOUND;
    }
    for (int i = 0; i < DetectedBoardsGetCount(); ++i) {
        const Detected board = detectedAt(i);
        if (!oam::EqualNoCase(board.name, name)) continue;
        if (auto taken = refuseLocationInUse(board)) return taken;
        return addBoard(board);
    }
    return OAMERR_NOT_FOUND;
}

oam_result addAll() noexcept {
    if (DetectedBoardsGetCount() == 0) {
        tellNoneDetected();
        return OAMERR_NOT_FOUND;
    }
    bool added = false;
    oam_result firstFailure = OAM_SUCCESS;
    for (int i = 0; i < DetectedBoardsGetCount(); ++i) {
        const Detected board = detectedAt(i);
        oam_result result = refuseNameInUse(board.name);
        if (result == OAM_SUCCESS) result = refuseLocationInUse(board);
        if (result == OAM_SUCCESS) result = addBoard(board);
        if (result == OAM_SUCCESS) added = true;
        if (firstFailure == OAM_SUCCESS) firstFailure = result;
    }
    return added ? OAM_SUCCESS : firstFailure;
}

}  // namespace

oam_result CMObjMgr::AddDetectedBoard(const char* name) noexcept {
    return name != nullptr && *name != '\0' ? addNamed(name) : addAll();
}
