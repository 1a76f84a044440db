// CArrayPtrsToMObject: all managed objects, sorted by name, and the two-phase commit.
//
// Owns the objects. Every call runs under the manager lock, which also guards the one pending
// commit.
//
// A commit runs when a read-write handle is closed: ValidateChanges asks the board table and the
// object itself, the object is saved, HandleChanges applies the change (and renames the object when
// its "Name" changed). From validation until handling or clean-up the board table stays locked;
// what the disk takes long for is done before and after that.
#pragma once

#include "data_file_numbers.h"
#include "objects/object.h"

class ObjectSaving;

// What a successful close did, for the alert that follows it.
struct ClosedObject {
    bool modified = false;  // the handle was read-write
    char name[oam::kNameSize] = "";
};

class CArrayPtrsToMObject : public oam::NamedTable<KOR_CMObject> {
  public:
    using NamedTable::NamedTable;

    // The first object with this data file, in name order; the count when there is none.
    bool FindByFile(const char* fileName, int* index) const noexcept;
    // "<base> <n>" with the lowest n from 0 that is free. Needs the base's length + 13 bytes.
    oam_result CreateUniqueName(const char* base, char* buffer, unsigned size) const noexcept;
    // "Obj<n>.xmo" with the lowest free n, for an object without a data file name.
    oam_result CreateUniqueDataFilename(KOR_CMObject* object) const noexcept;

    // The object's kind follows from its name. No file is written, no alert raised.
    oam_result Insert(const char* name, const char* dataFile) noexcept;
    // OAMERR_NOT_FOUND; OAMERR_ACCESS_DENIED while open, or inside another removal of the object;
    // what the kind's TrapDelete answers.
    // Removes the data file and raises OAMEVN_DELETED.
    // OAMERR_NOT_ENOUGH_MEMORY, and the object stays, without memory for a smaller array.
    oam_result Remove(const char* name) noexcept;
    // The same of an object whose creation failed; it goes without memory too.
    oam_result RemoveCreated(const char* name) noexcept;
    oam_result RemoveFile(const char* name) noexcept;
    // Destroys every object, without traps and alerts.
    // False when a data file that was to be removed is still there.
    bool RemoveAll(bool removeFiles) noexcept;
    // OAMERR_ACCESS_DENIED also when there is a new board after each.
    oam_result RemoveAllBoards() noexcept;
    bool AnyOpen() const noexcept;

    oam_result OpenObject(unsigned long client, const char* name, unsigned long* handle,
                          unsigned mode) noexcept;
    oam_result CloseObject(unsigned long handle, ClosedObject* closed = nullptr) noexcept;
    oam_result DbOpenObject(unsigned long client, const char* name, unsigned long* handle,
                            unsigned mode) noexcept;
    oam_result DbCloseObject(unsigned long handle) noexcept;

    // OAMERR_ALREADY_EXISTS for a "Name" or a board's "Number" that another one has.
    oam_result DbSetKeyword(unsigned long handle, const char* name, const char* value) noexcept;
    oam_result DbEnumObjects(int index, char* buffer, unsigned size) const noexcept;
    oam_result DbEnumKeywords(unsigned long handle, int index, char* buffer,
                              unsigned size) const noexcept;

  private:
    struct PendingRename {
        char newName[oam::kNameSize] = "";  // empty: the commit does not rename
        oam::OwnedText objectName;          // the same, made ahead: applying it cannot fail
        int newIndex = 0;
    };

    // What a removal does without memory for a smaller array.
    enum class Slots { kMustShrink, kMayStay };
    // `name` is what the sink is told in a refusal; null: the object's own.
    oam_result RemoveObject(KOR_CMObject* found, const char* name,
                            Slots slots = Slots::kMustShrink) noexcept;
    oam_result Close(unsigned long handle, bool trap, ClosedObject* closed) noexcept;
    oam_result ValidateChanges(unsigned long handle, ObjectSaving* saving) noexcept;
    oam_result ReadNewName(KOR_CMObject* object) noexcept;
    oam_result HandleChanges(int index, ObjectSaving* saving) noexcept;
    void Rename(int index) noexcept;
    void ValidateChangesCleanup(KOR_CMObject* object) noexcept;

    int LowestDataFileNumber() const noexcept;

    // The names "<base> 0" to "<base> <number - 1>" are taken.
    struct NextName {
        char base[oam::kNameSize] = "";
        int number = 0;
    };

    PendingRename pending_;
    DataFileNumbers fileNumbers_;
    mutable NextName nextName_;
};
