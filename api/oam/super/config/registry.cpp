#include "registry.h"

#include <cstdio>
#include <cstring>
#include <memory>

#include "base/rounds.h"
#include "doors/alert.h"
#include "doors/board.h"
#include "durable_file.h"
#include "objects/kinds.h"
#include "open_objects.h"

using oam::EqualNoCase;

namespace {

constexpr char kSupervisor[] = "Supervisor";
constexpr unsigned kNumberRoom = 13;  // a blank, a 32-bit number with its sign, and the NUL

KOR_CMObject* makeObject(const char* name, const char* dataFile) noexcept {
    if (EqualNoCase(name, kSupervisor)) return new (std::nothrow) CMOSuper();
    const char* extension = oam::LastExtension(name);
    if (EqualNoCase(extension, ".emc")) return new (std::nothrow) CMOEmc(name);
    if (EqualNoCase(extension, ".bpi")) return new (std::nothrow) CMOPlugin(name);
    return new (std::nothrow) CMOBoard(name, dataFile);
}

}  // namespace

bool CArrayPtrsToMObject::FindByFile(const char* fileName, int* index) const noexcept {
    for (*index = 0; *index < Count(); ++*index) {
        const char* own = At(*index)->DataFileName();
        if (own != nullptr && EqualNoCase(own, fileName)) return true;
    }
    return false;
}

oam_result CArrayPtrsToMObject::CreateUniqueName(const char* base, char* buffer,
                                                 unsigned size) const noexcept {
    if (buffer == nullptr || size < strlen(base) + kNumberRoom) return OAMERR_NOT_ENOUGH_MEMORY;
    int index;
    int number = strcmp(base, nextName_.base) == 0 ? nextName_.number : 0;
    for (;; ++number) {
        snprintf(buffer, size, "%s %d", base, number);
        if (!FindByName(buffer, &index)) break;
    }
    // Until one of them goes or is renamed, those below stay taken.
    nextName_ = NextName();
    if (strlen(base) < sizeof nextName_.base) {
        oam::CopyCut(base, nextName_.base, sizeof nextName_.base);
        nextName_.number = number;
    }
    return OAM_SUCCESS;
}

oam_result CArrayPtrsToMObject::CreateUniqueDataFilename(KOR_CMObject* object) const noexcept {
    if (object->DataFileName() != nullptr) return OAM_SUCCESS;
    int number = fileNumbers_.Lowest();
    if (number < 0) number = LowestDataFileNumber();
    if (number < 0) return OAMERR_NOT_ENOUGH_MEMORY;
    char name[32];
    snprintf(name, sizeof name, "Obj%d.xmo", number);
    return object->SetDataFileName(name) ? OAM_SUCCESS : OAMERR_NOT_ENOUGH_MEMORY;
}

// From every object's name; -1 without memory.
int CArrayPtrsToMObject::LowestDataFileNumber() const noexcept {
    const size_t numbers = static_cast<size_t>(Count()) + 1;
    const std::unique_ptr<bool[]> taken(new (std::nothrow) bool[numbers]());
    if (taken == nullptr) return -1;
    for (int i = 0; i < Count(); ++i) {
        const long number = DataFileNumbers::Of(At(i)->DataFileName());
        if (number >= 0 && number <= Count()) taken[static_cast<size_t>(number)] = true;
    }
    int free = 0;
    while (taken[static_cast<size_t>(free)]) ++free;
    return free;
}

oam_result CArrayPtrsToMObject::Insert(const char* name, const char* dataFile) noexcept {
    KOR_CMObject* made = nullptr;
    const oam_result inserted = InsertNew(name, [&]() -> KOR_CMObject* {
        std::unique_ptr<KOR_CMObject> object(makeObject(name, dataFile));
        if (object == nullptr || !object->IsComplete()) return nullptr;
        if (CreateUniqueDataFilename(object.get()) != OAM_SUCCESS) return nullptr;
        return made = object.release();
    });
    if (inserted == OAM_SUCCESS) fileNumbers_.Add(made->DataFileName());
    return inserted;
}

oam_result CArrayPtrsToMObject::Remove(const char* name) noexcept {
    KOR_CMObject* found = Find(name);
    return found != nullptr ? RemoveObject(found, name) : OAMERR_NOT_FOUND;
}

oam_result CArrayPtrsToMObject::RemoveCreated(const char* name) noexcept {
    KOR_CMObject* found = Find(name);
    return found != nullptr ? RemoveObject(found, name, Slots::kMayStay) : OAMERR_NOT_FOUND;
}

oam_result CArrayPtrsToMObject::RemoveObject(KOR_CMObject* found, const char* name,
                                             Slots slots) noexcept {
    if (found->OpenCount() != 0 || found->IsBeingRemoved()) return OAMERR_ACCESS_DENIED;
    // What its kind is asked may come back here: not to remove it a second time.
    found->SetBeingRemoved(true);
    const oam_result refused = found->TrapDelete();
    found->SetBeingRemoved(false);
    if (refused != OAM_SUCCESS) {
        DebugOutput("Call to Object %s TrapDelete with error code 0x%x.\n",
                    name != nullptr ? name : found->Name(), static_cast<unsigned>(refused));
        return refused;
    }
    // The plug-in may have created, removed or renamed objects meanwhile, or opened this one.
    if (found->OpenCount() != 0) return OAMERR_ACCESS_DENIED;
    int index;
    if (!FindByName(found->Name(), &index)) return OAMERR_NOT_FOUND;
    if (slots == Slots::kMayStay) {
        TakeSurely(index);
    } else if (auto failed = TakeAt(index)) {
        return failed;
    }
    const std::unique_ptr<KOR_CMObject> object(found);
    fileNumbers_.Remove(object->DataFileName());
    nextName_ = NextName();
    if (object->RemoveFile() == OAM_SUCCESS) syncDataDirectory();
    (void)AlertNotify(OAMEVN_DELETED, OAM_INFORMATION, object->Name(), "%s", "");
    return OAM_SUCCESS;
}

oam_result CArrayPtrsToMObject::RemoveFile(const char* name) noexcept {
    KOR_CMObject* object = Find(name);
    if (object == nullptr) return OAMERR_NOT_FOUND;
    return object->OpenCount() == 0 ? object->RemoveFile() : OAMERR_ACCESS_DENIED;
}

bool CArrayPtrsToMObject::RemoveAll(bool removeFiles) noexcept {
    bool areGone = true;
    for (int i = 0; i < Count(); ++i) {
        openObjects().RemoveAllOf(At(i));
        if (removeFiles && At(i)->RemoveFile() != OAM_SUCCESS && At(i)->HasFile()) areGone = false;
    }
    PointerArray::RemoveAll();
    fileNumbers_.RemoveAll();
    nextName_ = NextName();
    return areGone;
}

oam_result CArrayPtrsToMObject::RemoveAllBoards() noexcept {
    oam::Rounds rounds(Count());
    for (int i = 0; i < Count();) {
        if (!rounds.Next()) return OAMERR_ACCESS_DENIED;
        if (!At(i)->IsBoard()) {
            ++i;
        } else if (auto failed = RemoveObject(At(i), nullptr)) {
            return failed;
        }
    }
    return OAM_SUCCESS;
}

bool CArrayPtrsToMObject::AnyOpen() const noexcept {
    for (int i = 0; i < Count(); ++i) {
        if (At(i)->OpenCount() != 0) return true;
    }
    return false;
}

oam_result CArrayPtrsToMObject::OpenObject(unsigned long client, const char* name,
                                           unsigned long* handle, unsigned mode) noexcept {
    KOR_CMObject* object = Find(name);
    return object != nullptr ? object->Open(client, handle, mode) : OAMERR_NOT_FOUND;
}

oam_result CArrayPtrsToMObject::DbOpenObject(unsigned long client, const char* name,
                                             unsigned long* handle, unsigned mode) noexcept {
    KOR_CMObject* object = Find(name);
    return object != nullptr ? object->DbOpen(client, handle, mode) : OAMERR_NOT_FOUND;
}

oam_result CArrayPtrsToMObject::DbSetKeyword(unsigned long handle, const char* name,
                                             const char* value) noexcept {
    KOR_CMObject* object = getObjectFromHandle(handle);
    int index;
    if (EqualNoCase(name, "Name") && !EqualNoCase(value, object->Name()) &&
        FindByName(value, &index)) {
        return OAMERR_ALREADY_EXISTS;
    }
    if (auto refused = BoardIDsValidateSet(object->Name(), name, value)) return refused;
    return object->DbSetKeyword(name, value);
}

oam_result CArrayPtrsToMObject::DbEnumObjects(int index, char* buffer,
                                              unsigned size) const noexcept {
    if (index < 0 || index >= Count()) return OAMERR_NOT_FOUND;
    return oam::CopyText(At(index)->Name(), buffer, size);
}

oam_result CArrayPtrsToMObject::DbEnumKeywords(unsigned long handle, int index, char* buffer,
                                               unsigned size) const noexcept {
    const KOR_CMObject* object = getObjectFromHandle(handle);
    if (object->OpenCount() == 0) return OAMERR_ACCESS_DENIED;
    const CArrayPtrsToKeyword& keywords = object->Keywords();
    if (index < 0 || index >= keywords.Count()) return OAMERR_NOT_FOUND;
    return oam::CopyText(keywords.At(index)->Name(), buffer, size);
}
