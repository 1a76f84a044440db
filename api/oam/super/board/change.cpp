// The board table's share of a commit: what a board object's pending keywords mean for its record.
//
// A validated change is an object that holds the table lock; handling applies it, and either
// handling or clean-up lets it go. There is one at a time: commits run under the manager lock.

#include <cstring>
#include <utility>

#include "base/forever.h"
#include "board_table.h"
#include "doors/board.h"
#include "shadow_writer.h"

namespace {

using oam::EqualNoCase;

// A hold on the table lock that outlives the call that takes it. Letting go twice is harmless.
class TableHold {
  public:
    void Take() noexcept NO_THREAD_SAFETY_ANALYSIS {
        oam::TableLock().Lock();
        s_bBoardIDsLocked_ = true;
    }
    void LetGo() noexcept NO_THREAD_SAFETY_ANALYSIS {
        if (std::exchange(s_bBoardIDsLocked_, false)) oam::TableLock().Unlock();
    }

  private:
    bool s_bBoardIDsLocked_ = false;
};

struct PendingChange {
    TableHold hold;
    oam::OwnedText newName;  // null: no rename
    int newIndex = 0;
    BoardValues values;
};

PendingChange& pending() noexcept {
    static oam::Forever<PendingChange> change;
    return change.Get();
}

oam_result validateName(unsigned long handle, const char* current) noexcept {
    char name[oam::kNameSize];
    if (auto failed = _oamDbGetKeyword(handle, "Name", name, sizeof name)) return failed;
    (void)pending().newName.Assign(nullptr);
    if (strcmp(name, current) == 0) return OAM_SUCCESS;
    // A change of case only finds the board itself.
    if (boardTable().FindByName(name, &pending().newIndex) && !EqualNoCase(name, current)) {
        return OAMERR_ALREADY_EXISTS;
    }
    return pending().newName.Assign(name) ? OAM_SUCCESS : OAMERR_NOT_ENOUGH_MEMORY;
}

bool isNumberTaken(const CBoardID& board, unsigned number) noexcept {
    int index;
    return number != board.values.number && boardTable().FindByNumber(number, &index);
}

oam_result validateBoard(unsigned long handle, const CBoardID& board) noexcept {
    if (auto failed = validateName(handle, board.Name())) return failed;
    pending().values = BoardValues();
    if (auto failed = readBoardNumber(handle, &pending().values.number)) return failed;
    if (isNumberTaken(board, pending().values.number)) return OAMERR_ALREADY_EXISTS;
    return readBoardValues(handle, &pending().values);
}

void applyChange(int index) noexcept {
    CBoardID* board = boardTable().At(index);
    // The plug-in stays, even when "Product" changed.
    board->values = std::move(pending().values);
    if (pending().newName.IsNull()) return;
    board->name = std::move(pending().newName);
    boardTable().Move(index, pending().newIndex);
}

}  // namespace

oam_result BoardIDsValidateChanges(const char* object, unsigned long handle) noexcept {
    pending().hold.Take();
    const CBoardID* board = boardTable().Find(object);
    if (board == nullptr) return OAM_SUCCESS;
    const oam_result result = validateBoard(handle, *board);
    if (result != OAM_SUCCESS) BoardIDsValidateChangesCleanup();
    return result;
}

void BoardIDsHandleChanges(const char* object) noexcept {
    int index;
    if (!boardTable().FindByName(object, &index)) return;
    applyChange(index);
    BoardIDsValidateChangesCleanup();
    (void)boardIDsShadowUpdate();
}

void BoardIDsValidateChangesCleanup() noexcept { pending().hold.LetGo(); }

oam_result BoardIDsValidateSet(const char* object, const char* keyword,
                               const char* value) noexcept {
    if (!EqualNoCase(keyword, "Number")) return OAM_SUCCESS;
    const CBoardID* board = boardTable().Find(object);
    if (board == nullptr || value == nullptr) return OAM_SUCCESS;
    return isNumberTaken(*board, boardNumberFromText(value)) ? OAMERR_ALREADY_EXISTS : OAM_SUCCESS;
}
