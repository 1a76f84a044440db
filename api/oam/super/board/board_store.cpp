#include "board_store.h"

#include <cstdio>
#include <cstring>
#include <utility>

#include "board_table.h"
#include "doors/alert.h"
#include "doors/config.h"
#include "oam/shadow.h"
#include "product.h"
#include "shadow_writer.h"

namespace {

using oam::TableGuard;
using oam::TableLock;

constexpr char kVxPlugin[] = "vxplugin.bpi";

struct KeywordDefault {
    const char* keyword;
    const char* value;
};

constexpr KeywordDefault kNewBoard[] = {
    {"Driver.Name", ""},       {"Driver.BoardId", ""},          {"Location.PCI.Bus", ""},
    {"Location.PCI.Slot", ""}, {"Location.PCI.IOAddress", ""},  {"Eeprom.SerialNum", ""},
    {"Product", ""},           {"Clocking.HBus.ClockMode", ""}, {"AutoStart", "No"},
    {"AutoStop", "No"},
};

oam_result createKeywordIfNotExist(unsigned long handle, const char* keyword,
                                   const char* value) noexcept {
    if (_oamDbGetKeyword(handle, keyword, nullptr, 0) == OAM_SUCCESS) return OAM_SUCCESS;
    return _oamDbSetKeyword(handle, keyword, value);
}

// A value that cannot be copied is empty, and an empty number is 0, which another board has.
oam_result storeNumber(unsigned long handle, const char* number) noexcept {
    if (auto failed = _oamDbSetKeyword(handle, "Number", number)) return failed;
    char stored[oam::kNameSize];
    if (auto failed = _oamDbGetKeyword(handle, "Number", stored, sizeof stored)) return failed;
    return strcmp(stored, number) == 0 ? OAM_SUCCESS : OAMERR_NOT_ENOUGH_MEMORY;
}

oam_result storeKeywords(unsigned long handle, const char* number) noexcept {
    if (auto failed = storeNumber(handle, number)) return failed;
    for (const KeywordDefault& row : kNewBoard) {
        if (auto failed = createKeywordIfNotExist(handle, row.keyword, row.value)) return failed;
    }
    return OAM_SUCCESS;
}

struct NumberText {
    void Set(unsigned number) noexcept {
        snprintf(text, sizeof text, "%lu", static_cast<unsigned long>(number));
    }
    char text[24];
};

oam_result storeInDatabase(const char* name, const char* number) noexcept {
    unsigned long handle;
    if (auto failed = _oamDbOpenObject(name, &handle,
                                       unsigned{OAM_OPEN_WRITE} | unsigned{OAM_OPEN_PROVIDER})) {
        return failed;
    }
    const oam_result stored = storeKeywords(handle, number);
    const oam_result closed = _oamDbCloseObject(handle);
    return stored != OAM_SUCCESS ? stored : closed;
}

// Runs under the table lock.
oam_result makeRecord(const char* name, const CPlugin* plugin, NumberText* number) noexcept {
    BoardValues values;
    if (auto failed = boardTable().CreateUniqueNumber(&values.number)) return failed;
    number->Set(values.number);
    if (auto failed = boardTable().Insert(name, plugin, std::move(values))) return failed;
    const oam_result result = storeInDatabase(name, number->text);
    if (result != OAM_SUCCESS) boardTable().Discard(name);
    return result;
}

// Once more through the ordinary path, so that the number passes validation and change handling.
oam_result commitNumber(const char* name, const char* number) noexcept {
    unsigned long handle;
    if (auto failed = _oamOpenObject(OAM_INTERNAL_CLIENT, name, &handle, OAM_OPEN_WRITE)) {
        return failed;
    }
    const oam_result result = _oamSetKeyword(handle, "Number", number);
    (void)_oamCloseObject_WOAN(handle);
    return result;
}

// OAMERR_ACCESS_DENIED: the object is not a board.
oam_result readBoard(unsigned long handle, const CPlugin** plugin, BoardValues* values) noexcept {
    char product[oam::kNameSize];
    if (_oamDbGetKeyword(handle, "Product", product, sizeof product) != OAM_SUCCESS) {
        return OAMERR_ACCESS_DENIED;
    }
    const Product* known = products().Find(product);
    if (known == nullptr) return OAMERR_ACCESS_DENIED;
    *plugin = known->Plugin();
    (void)readBoardNumber(handle, &values->number);  // missing: 0
    return readBoardValues(handle, values);
}

oam_result boardIDsAddObjectFromDb(const char* name) noexcept {
    unsigned long handle;
    if (auto failed = DbOpenObjectAsFound(name, &handle)) return failed;
    const CPlugin* plugin = nullptr;
    BoardValues values;
    const oam_result read = readBoard(handle, &plugin, &values);
    const oam_result closed = _oamDbCloseObject(handle);
    if (read != OAM_SUCCESS) return read;
    if (closed != OAM_SUCCESS) return closed;
    TableGuard hold;
    return boardTable().Insert(name, plugin, std::move(values));
}

oam_result fillFromDatabase() noexcept {
    char name[oam::kNameSize];
    for (int i = 0;; ++i) {
        const oam_result listed = _oamDbEnumObjects(i, name, sizeof name);
        if (listed == OAMERR_NOT_ENOUGH_MEMORY) {
            (void)AlertNotify(OAMEVN_ALERT, OAM_WARNING, "Board",
                              "Object %d has a name of more than 127 characters and is passed over",
                              i);
            continue;
        }
        if (listed != OAM_SUCCESS) return OAM_SUCCESS;
        const oam_result added = boardIDsAddObjectFromDb(name);
        if (added != OAM_SUCCESS && added != OAMERR_ACCESS_DENIED) return added;
    }
}

}  // namespace

oam_result boardIDsInit() noexcept {
    oam_result result = fillFromDatabase();
    if (result == OAM_SUCCESS) result = oamShadowInit();
    if (result != OAM_SUCCESS) {
        (void)boardIDsExit();
        return result;
    }
    setUsingVxPlugin(plugins().Find(kVxPlugin) != nullptr);
    (void)boardIDsShadowUpdate();
    return OAM_SUCCESS;
}

oam_result boardIDsExit() noexcept {
    {
        TableGuard hold;
        boardTable().RemoveAll();
    }
    return oamShadowExit();
}

oam_result boardIDsCreate(const char* name,
                          const CPlugin* plugin) noexcept NO_THREAD_SAFETY_ANALYSIS {
    NumberText number;
    TableLock().Lock();
    if (auto failed = makeRecord(name, plugin, &number)) return failed;
    TableLock().Unlock();
    return commitNumber(name, number.text);
}
