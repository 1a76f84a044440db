// The board queries: look a board up, then copy or set a field, under one hold of the table lock,
// so that every answer belongs to one state of the table.

#include "base/flags.h"
#include "board_table.h"
#include "detected.h"
#include "doors/board.h"
#include "operations.h"

namespace {

using Table = CArrayPtrsToBoardID;

// The frame of them all: look(table, &index) finds the board, use(board) answers.
template <class Look, class Use>
oam_result query(Look look, Use use) noexcept {
    if (!OamIsRunning()) return OAMERR_SERVER_NOT_RUNNING;
    oam::TableGuard hold;
    int index;
    if (!look(boardTable(), &index)) return OAMERR_NOT_FOUND;
    return use(*boardTable().At(index));
}

template <class Look>
oam_result nameOf(Look look, char* buffer, unsigned size) noexcept {
    return query(look,
                 [=](const CBoardID& board) { return oam::CopyText(board.Name(), buffer, size); });
}

template <class Use>
oam_result named(const char* name, Use use) noexcept {
    return query([=](const Table& table, int* index) { return table.FindByName(name, index); },
                 use);
}

oam_result textOf(const char* name, oam::OwnedText BoardValues::*field, char* buffer,
                  unsigned size) noexcept {
    return named(name, [=](const CBoardID& board) {
        return oam::CopyText((board.values.*field).OrEmpty(), buffer, size);
    });
}

// A null place asks only whether the board exists.
void store(unsigned* place, unsigned value) noexcept {
    if (place != nullptr) *place = value;
}

// Passed on with no lock held.
template <class Call>
oam_result forward(const char* name, Call call) noexcept {
    if (!OamIsRunning()) return OAMERR_SERVER_NOT_RUNNING;
    PluginEntries entries;
    return getPluginFromBoardName(name, &entries) ? call(entries) : OAMERR_NOT_FOUND;
}

}  // namespace

oam_result _oamBoardEnum(int index, char* buffer, unsigned size) noexcept {
    return nameOf(
        [=](const Table& table, int* found) {
            *found = index;
            return index >= 0 && index < table.Count();
        },
        buffer, size);
}

oam_result _oamBoardLookupByNumber(unsigned number, char* buffer, unsigned size) noexcept {
    return nameOf([=](const Table& table, int* index) { return table.FindByNumber(number, index); },
                  buffer, size);
}

oam_result _oamBoardLookupByDriverIDs(const char* driverName, const char* driverBoardId,
                                      char* buffer, unsigned size) noexcept {
    return nameOf(
        [=](const Table& table, int* index) {
            return table.FindByDriverIDs(driverName, driverBoardId, index);
        },
        buffer, size);
}

oam_result _oamBoardLookupByBusSlot(unsigned bus, unsigned slot, char* buffer,
                                    unsigned size) noexcept {
    return nameOf(
        [=](const Table& table, int* index) { return table.FindByBusSlot(bus, slot, index); },
        buffer, size);
}

oam_result _oamBoardLookupByShelfSlot(unsigned shelf, unsigned slot, char* buffer,
                                      unsigned size) noexcept {
    return nameOf(
        [=](const Table& table, int* index) { return table.FindByShelfSlot(shelf, slot, index); },
        buffer, size);
}

oam_result _oamBoardLookupByIOAddress(unsigned address, char* buffer, unsigned size) noexcept {
    return nameOf(
        [=](const Table& table, int* index) { return table.FindByIOAddress(address, index); },
        buffer, size);
}

oam_result _oamBoardLookupBySerialNumber(const char* serialNumber, char* buffer,
                                         unsigned size) noexcept {
    return nameOf([=](const Table& table,
                      int* index) { return table.FindBySerialNumber(serialNumber, index); },
                  buffer, size);
}

oam_result _oamBoardLookupByProduct(const char* product, char* buffer, unsigned size) noexcept {
    return nameOf(
        [=](const Table& table, int* index) { return table.FindByProduct(product, index); }, buffer,
        size);
}

oam_result _oamBoardLookupByMACAddress(const char* macAddress, char* buffer,
                                       unsigned size) noexcept {
    return nameOf(
        [=](const Table& table, int* index) { return table.FindByMACAddress(macAddress, index); },
        buffer, size);
}

oam_result _oamBoardGetNumber(const char* name, unsigned* number) noexcept {
    return named(name, [=](const CBoardID& board) {
        store(number, board.values.number);
        return OAM_SUCCESS;
    });
}

oam_result _oamBoardGetDriverIDs(const char* name, char* driverName, unsigned driverNameSize,
                                 char* driverBoardId, unsigned driverBoardIdSize) noexcept {
    return named(name, [=](const CBoardID& board) {
        const BoardValues& values = board.values;
        if (auto failed = oam::CopyText(values.driverName.OrEmpty(), driverName, driverNameSize)) {
            return failed;
        }
        return oam::CopyText(values.driverBoardId.OrEmpty(), driverBoardId, driverBoardIdSize);
    });
}

oam_result _oamBoardGetBusSlot(const char* name, unsigned* bus, unsigned* slot) noexcept {
    return named(name, [=](const CBoardID& board) {
        store(bus, board.values.pciBus);
        store(slot, board.values.pciSlot);
        return OAM_SUCCESS;
    });
}

oam_result _oamBoardGetShelfSlot(const char* name, unsigned* shelf, unsigned* slot) noexcept {
    return named(name, [=](const CBoardID& board) {
        store(shelf, board.values.cpciShelf);
        store(slot, board.values.cpciSlot);
        return OAM_SUCCESS;
    });
}

// Kept: the three setters change the record in memory, neither the database nor the shadow.

oam_result _oamBoardSetShelfSlot(const char* name, unsigned shelf, unsigned slot) noexcept {
    return named(name, [=](CBoardID& board) {
        board.values.cpciShelf = shelf;
        board.values.cpciSlot = slot;
        return OAM_SUCCESS;
    });
}

oam_result _oamBoardResetMACAddressCount(const char* name) noexcept {
    return _oamBoardSetMACAddress(name, nullptr, 0);
}

oam_result _oamBoardSetMACAddress(const char* name, const char (*texts)[OAM_MAC_TEXT_SIZE],
                                  unsigned count) noexcept {
    return named(name, [=](CBoardID& board) {
        if (texts == nullptr && count != 0) return OAMERR_NOT_FOUND;
        board.values.SetMACAddress(texts, count);
        return OAM_SUCCESS;
    });
}

oam_result _oamBoardGetMACAddress(const char* name, char* buffer, unsigned size,
                                  unsigned index) noexcept {
    return named(name, [=](const CBoardID& board) {
        return oam::CopyText(board.values.MacAddressAt(index), buffer, size);
    });
}

oam_result _oamBoardGetIOAddress(const char* name, unsigned* address) noexcept {
    return named(name, [=](const CBoardID& board) {
        store(address, board.values.pciIOAddress);
        return OAM_SUCCESS;
    });
}

oam_result _oamBoardGetSerialNumber(const char* name, char* buffer, unsigned size) noexcept {
    return textOf(name, &BoardValues::serialNumber, buffer, size);
}

oam_result _oamBoardGetProduct(const char* name, char* buffer, unsigned size) noexcept {
    return textOf(name, &BoardValues::product, buffer, size);
}

oam_result _oamBoardGetAutoStartEnabled(const char* name, unsigned* on) noexcept {
    return named(name, [=](const CBoardID& board) {
        store(on, isAutoStarted(board));
        return OAM_SUCCESS;
    });
}

oam_result _oamBoardGetAutoStopEnabled(const char* name, unsigned* on) noexcept {
    return named(name, [=](const CBoardID& board) {
        store(on, isAutoStopped(board));
        return OAM_SUCCESS;
    });
}

oam_result _oamSendBuffer(const char* name, const void* buffer, unsigned length) noexcept {
    return forward(name, [=](const PluginEntries& entries) {
        return entries.SendBuffer(name, buffer, length);
    });
}

oam_result _oamBoardGetStatus(const char* name, unsigned selector, int* status) noexcept {
    return forward(name, [=](const PluginEntries& entries) {
        return entries.GetBoardStatus(name, selector, status);
    });
}

oam_result _oamDetectBoards() noexcept {
    return OamIsRunning() ? detectedproductsInit() : OAMERR_SERVER_NOT_RUNNING;
}
