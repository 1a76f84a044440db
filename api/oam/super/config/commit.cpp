// The registry's commit protocol: what happens when a handle is closed.

#include <utility>

#include "doors/alert.h"
#include "doors/board.h"
#include "object_saving.h"
#include "open_objects.h"
#include "registry.h"

oam_result CArrayPtrsToMObject::CloseObject(unsigned long handle, ClosedObject* closed) noexcept {
    return Close(handle, true, closed);
}

oam_result CArrayPtrsToMObject::DbCloseObject(unsigned long handle) noexcept {
    return Close(handle, false, nullptr);
}

namespace {

oam_result askToClose(KOR_CMObject* object, unsigned long handle) noexcept {
    const LentHandle lent(handle);
    return object->TrapClose(handle);
}

}  // namespace

oam_result CArrayPtrsToMObject::Close(unsigned long handle, bool trap,
                                      ClosedObject* closed) noexcept {
    if (LentHandle::Is(handle)) return OAMERR_ACCESS_DENIED;
    KOR_CMObject* object = Find(getNameFromHandle(handle));
    if (object == nullptr) return OAMERR_NOT_FOUND;
    if (object->OpenCount() == 0) return OAMERR_ACCESS_DENIED;

    ObjectSaving saving(object);
    oam_result result = trap ? askToClose(object, handle) : OAM_SUCCESS;
    if (result == OAM_SUCCESS) result = ValidateChanges(handle, &saving);
    if (result != OAM_SUCCESS) {
        // A refused change is never kept: what is stored stays what the file holds.
        (void)object->DbClose(handle, true);
        return result;
    }
    if (closed != nullptr && object->IsReadWrite()) {
        closed->modified = true;
        oam::CopyCut(*pending_.newName != '\0' ? pending_.newName : object->Name(), closed->name,
                     sizeof closed->name);
    }
    result = object->DbClose(handle, false, &saving);
    if (result != OAM_SUCCESS) {
        ValidateChangesCleanup(object);
        return result;
    }
    if (!object->IsReadWrite()) return OAM_SUCCESS;
    // Found again: the plug-in may have created and removed other objects in TrapClose.
    int index;
    return FindByName(object->Name(), &index) ? HandleChanges(index, &saving) : OAM_SUCCESS;
}

oam_result CArrayPtrsToMObject::ValidateChanges(unsigned long handle,
                                                ObjectSaving* saving) noexcept {
    KOR_CMObject* object = getObjectFromHandle(handle);
    if (!object->IsReadWrite()) return OAM_SUCCESS;
    oam_result result = ReadNewName(object);
    // Before the board table is locked: look-ups need not wait for the disk.
    if (result == OAM_SUCCESS) saving->WriteAhead();
    if (result == OAM_SUCCESS) result = BoardIDsValidateChanges(object->Name(), handle);
    if (result == OAM_SUCCESS) result = object->ValidateChanges();
    if (result != OAM_SUCCESS) ValidateChangesCleanup(object);
    return result;
}

oam_result CArrayPtrsToMObject::ReadNewName(KOR_CMObject* object) noexcept {
    if (auto failed = object->DbGetKeyword("Name", pending_.newName, sizeof pending_.newName)) {
        return failed;
    }
    // A name that could not be copied would leave a file that cannot be read.
    if (!object->HasValue("Name")) return OAMERR_NOT_ENOUGH_MEMORY;
    if (strcmp(pending_.newName, object->Name()) == 0) {
        pending_.newName[0] = '\0';
        return OAM_SUCCESS;
    }
    // A change of case only finds the object itself.
    if (FindByName(pending_.newName, &pending_.newIndex) &&
        !oam::EqualNoCase(pending_.newName, object->Name())) {
        return OAMERR_ALREADY_EXISTS;
    }
    return pending_.objectName.Assign(pending_.newName) ? OAM_SUCCESS : OAMERR_NOT_ENOUGH_MEMORY;
}

oam_result CArrayPtrsToMObject::HandleChanges(int index, ObjectSaving* saving) noexcept {
    KOR_CMObject* object = At(index);
    BoardIDsHandleChanges(object->Name());
    const bool renamed = *pending_.newName != '\0';
    if (renamed) Rename(index);  // leaves the old name in the pending state
    object->HandleChanges();
    ValidateChangesCleanup(object);
    // The file is in its place: what fails now leaves the change as made.
    const oam_result synced = saving->Sync();
    if (!renamed) return synced;

    // Copied: a receiver of the alert may commit another change, or remove this object.
    char newName[oam::kNameSize];
    oam::CopyCut(object->Name(), newName, sizeof newName);
    const oam::OwnedText oldName = std::move(pending_.objectName);
    (void)AlertNotify(OAMEVN_RENAMED, OAM_INFORMATION, newName, "%s", oldName.OrEmpty());
    return synced;
}

void CArrayPtrsToMObject::Rename(int index) noexcept {
    At(index)->SwapName(&pending_.objectName);
    Move(index, pending_.newIndex);
    pending_.newName[0] = '\0';
    nextName_ = NextName();
}

void CArrayPtrsToMObject::ValidateChangesCleanup(KOR_CMObject* object) noexcept {
    BoardIDsValidateChangesCleanup();
    object->ValidateChangesCleanup();
}
