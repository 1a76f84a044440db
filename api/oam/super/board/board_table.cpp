#include "board_table.h"

#include <atomic>
#include <memory>
#include <utility>

#include "base/forever.h"
#include "doors/board.h"

using oam::EqualNoCase;

namespace {

std::atomic<bool> s_bIsUsingVxPlugin{false};
std::atomic<unsigned long> lastIdentity{0};

bool equal(const oam::OwnedText& own, const char* text) noexcept {
    return EqualNoCase(own.OrEmpty(), text);
}

}  // namespace

CBoardID::CBoardID(const char* boardName, const CPlugin* servedBy,
                   BoardValues&& boardValues) noexcept
    : plugin(servedBy), values(std::move(boardValues)), identity(++lastIdentity) {
    (void)name.Assign(boardName);
}

bool CArrayPtrsToBoardID::FindByNumber(unsigned number, int* index) const noexcept {
    return FindFirst([=](const CBoardID& board) { return board.values.number == number; }, index);
}

bool CArrayPtrsToBoardID::FindByDriverIDs(const char* name, const char* boardId,
                                          int* index) const noexcept {
    return FindFirst(
        [=](const CBoardID& board) {
            return equal(board.values.driverName, name) &&
                   equal(board.values.driverBoardId, boardId);
        },
        index);
}

bool CArrayPtrsToBoardID::FindByBusSlot(unsigned bus, unsigned slot, int* index) const noexcept {
    return FindFirst(
        [=](const CBoardID& board) {
            return board.values.pciBus == bus && board.values.pciSlot == slot;
        },
        index);
}

bool CArrayPtrsToBoardID::FindByIOAddress(unsigned address, int* index) const noexcept {
    return FindFirst([=](const CBoardID& board) { return board.values.pciIOAddress == address; },
                     index);
}

bool CArrayPtrsToBoardID::FindBySerialNumber(const char* text, int* index) const noexcept {
    return FindFirst([=](const CBoardID& board) { return equal(board.values.serialNumber, text); },
                     index);
}

bool CArrayPtrsToBoardID::FindByProduct(const char* text, int* index) const noexcept {
    return FindFirst([=](const CBoardID& board) { return equal(board.values.product, text); },
                     index);
}

bool CArrayPtrsToBoardID::FindByClockMode(const char* text, int* index) const noexcept {
    return FindFirst([=](const CBoardID& board) { return equal(board.values.clockMode, text); },
                     index);
}

bool CArrayPtrsToBoardID::FindByAutoStart(bool on, int* index) const noexcept {
    return FindFirst([=](const CBoardID& board) { return board.values.autoStart == on; }, index);
}

bool CArrayPtrsToBoardID::FindByAutoStop(bool on, int* index) const noexcept {
    return FindFirst([=](const CBoardID& board) { return board.values.autoStop == on; }, index);
}

bool CArrayPtrsToBoardID::FindByShelfSlot(unsigned shelf, unsigned slot,
                                          int* index) const noexcept {
    return FindFirst(
        [=](const CBoardID& board) {
            return board.values.cpciShelf == shelf && board.values.cpciSlot == slot;
        },
        index);
}

bool CArrayPtrsToBoardID::FindByMACAddress(const char* text, int* index) const noexcept {
    return FindFirst(
        [=](const CBoardID& board) {
            for (unsigned i = 0; i < board.values.macAddressCount; ++i) {
                if (EqualNoCase(board.values.macAddresses[i], text)) return true;
            }
            return false;
        },
        index);
}

bool CArrayPtrsToBoardID::FindByIdentity(unsigned long identity, int* index) const noexcept {
    return FindFirst([=](const CBoardID& board) { return board.identity == identity; }, index);
}

oam_result CArrayPtrsToBoardID::CreateUniqueNumber(unsigned* number) const noexcept {
    const unsigned numbers = static_cast<unsigned>(Count()) + 1;
    const std::unique_ptr<bool[]> taken(new (std::nothrow) bool[numbers]());
    if (taken == nullptr) return OAMERR_NOT_ENOUGH_MEMORY;
    for (int i = 0; i < Count(); ++i) {
        if (At(i)->values.number < numbers) taken[At(i)->values.number] = true;
    }
    *number = 0;
    while (taken[*number]) ++*number;
    return OAM_SUCCESS;
}

oam_result CArrayPtrsToBoardID::Insert(const char* name, const CPlugin* plugin,
                                       BoardValues&& values) noexcept {
    int index;
    if (FindByNumber(values.number, &index)) return OAMERR_ALREADY_EXISTS;
    return InsertNew(name, [&]() -> CBoardID* {
        auto* board = new (std::nothrow) CBoardID(name, plugin, std::move(values));
        if (board != nullptr && !board->name.IsNull()) return board;
        delete board;
        return nullptr;
    });
}

CArrayPtrsToBoardID& boardTable() noexcept {
    static oam::Forever<CArrayPtrsToBoardID> s_apBoardIDs(0, oam::kTableGrowth);
    return s_apBoardIDs.Get();
}

void setUsingVxPlugin(bool isUsing) noexcept { s_bIsUsingVxPlugin = isUsing; }

bool isUsingVxPlugin() noexcept { return s_bIsUsingVxPlugin; }

bool getPluginFromBoardName(const char* board, PluginEntries* entries) noexcept {
    oam::TableGuard hold;
    const CBoardID* found = boardTable().Find(board);
    if (found == nullptr || found->plugin == nullptr) return false;
    *entries = found->plugin->Calls();
    return true;
}

int BoardsGetCount() noexcept { return boardTable().Count(); }

const char* BoardsGetAt(int index) noexcept { return boardTable().At(index)->Name(); }
