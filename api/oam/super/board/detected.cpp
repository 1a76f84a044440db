#include "detected.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

#include "base/database_lock.h"
#include "base/forever.h"
#include "doors/board.h"
#include "doors/config.h"
#include "product.h"

namespace {

using DetectedTable = std::unique_ptr<CArrayPtrsToDetectedBoard>;

// Null before the first detection. Guarded by the manager lock.
DetectedTable& detected() noexcept {
    static oam::Forever<DetectedTable> table;
    return table.Get();
}

class DetectedReader {
  public:
    explicit DetectedReader(unsigned long handle) noexcept : handle_(handle) {}

    // Kept: a failed read is no failure; a text keeps what it held, a number is 0.
    void ReadText(int index, const char* field, char (&text)[oam::kNameSize]) const noexcept {
        (void)GetKeyword(handle_, KeywordName(index, field).text, text, sizeof text);
        text[sizeof text - 1] = '\0';
    }
    unsigned ReadNumber(int index, const char* field) const noexcept {
        char text[oam::kNameSize] = "";
        ReadText(index, field, text);
        return static_cast<unsigned>(atoi(text));
    }

  private:
    struct KeywordName {
        KeywordName(int index, const char* field) noexcept {
            snprintf(text, sizeof text, "DetectedBoards[%d].%s", index, field);
        }
        char text[64];
    };

    unsigned long handle_;
};

void readBoards(unsigned long handle, CArrayPtrsToDetectedBoard* table) noexcept {
    const DetectedReader reader(handle);
    char name[oam::kNameSize] = "";
    char product[oam::kNameSize] = "";
    const int count = readCount(handle, "DetectedBoards.Count");
    for (int i = 0; i < count; ++i) {
        reader.ReadText(i, "Name", name);
        reader.ReadText(i, "Product", product);
        const unsigned bus = reader.ReadNumber(i, "Location.PCI.Bus");
        const unsigned slot = reader.ReadNumber(i, "Location.PCI.Slot");
        // Kept: a second board of the same name is dropped without a word.
        (void)table->Insert(name, bus, slot, product);
    }
}

oam_result askPlugin(const char* plugin, CArrayPtrsToDetectedBoard* table) noexcept {
    PluginEntries entries;
    if (plugins().EntriesOf(plugin, &entries)) (void)entries.DetectBoards();
    unsigned long handle;
    if (auto failed = OpenObject(OAM_INTERNAL_CLIENT, plugin, &handle, OAM_OPEN_READ)) {
        return failed;
    }
    readBoards(handle, table);
    return CloseObject(handle);
}

}  // namespace

oam_result CArrayPtrsToDetectedBoard::Insert(const char* name, unsigned bus, unsigned slot,
                                             const char* product) noexcept {
    return InsertNew(name, [=]() -> CDetectedBoard* {
        auto* board = new (std::nothrow) CDetectedBoard(name, bus, slot, product);
        if (board != nullptr && board->IsComplete()) return board;
        delete board;
        return nullptr;
    });
}

oam_result detectedproductsInit() noexcept {
    DetectedTable fresh(new (std::nothrow) CArrayPtrsToDetectedBoard(0, oam::kTableGrowth));
    if (fresh == nullptr) return OAMERR_NOT_ENOUGH_MEMORY;
    oam_result result = OAM_SUCCESS;
    // Nothing is held while a plug-in looks, so an import may replace the plug-ins meanwhile.
    char plugin[oam::kNameSize];
    for (int i = 0; result == OAM_SUCCESS && plugins().CopyNameAt(i, plugin); ++i) {
        result = askPlugin(plugin, fresh.get());
    }
    oam::ManagerGuard hold;
    std::swap(detected(), fresh);
    // Kept: it is the product table that a failure empties.
    if (result != OAM_SUCCESS) (void)productsExit();
    return result;
}

int DetectedBoardsGetCount() noexcept {
    oam::ManagerGuard hold;
    return detected() != nullptr ? detected()->Count() : 0;
}

const char* DetectedBoardsGetAt(int index, int field) noexcept {
    static thread_local char number[256];
    oam::ManagerGuard hold;
    if (detected() == nullptr || index < 0 || index >= detected()->Count()) return nullptr;
    const CDetectedBoard* board = detected()->At(index);
    switch (field) {
        case 1:
            return board->Name();
        case 2:
            return board->ProductName();
        case 3:
        case 4:
            snprintf(number, sizeof number, "%d",
                     static_cast<int>(field == 3 ? board->Bus() : board->Slot()));
            return number;
        default:
            return nullptr;
    }
}
