// Saving an object in steps, so that what takes long is done before locks are needed: written and
// synced beside its data file, put in its place, the place made durable. Runs under the manager
// lock; between the steps the object's keywords do not change.
#pragma once

#include "durable_file.h"
#include "objects/object.h"

struct KOR_CMObject::DataFilePath {
    char text[oam::kPathSize + sizeof kCreationSuffix];
};

class ObjectSaving {
  public:
    explicit ObjectSaving(KOR_CMObject* object) noexcept : object_(object) { path_.text[0] = '\0'; }
    // What was not put in its place is removed.
    ~ObjectSaving();
    ObjectSaving(const ObjectSaving&) = delete;
    ObjectSaving& operator=(const ObjectSaving&) = delete;

    // A failure is told by PutInPlace.
    void WriteAhead() noexcept;
    // Where no file may lie beside, or without WriteAhead, the file is written now.
    // OAMERR_FILE_WRITE_ERROR, OAMERR_NOT_ENOUGH_MEMORY: the old file stays.
    oam_result PutInPlace() noexcept;
    // OAMERR_FILE_WRITE_ERROR: the new file is there, but not known to be durable.
    oam_result Sync() noexcept;

    // Saves within the scope are not made durable one by one; whoever makes it syncs them all.
    class Together {
      public:
        Together() noexcept;
        ~Together();
        Together(const Together&) = delete;
        Together& operator=(const Together&) = delete;
    };

  private:
    oam_result Write() noexcept;
    bool IsSynced() const noexcept;

    KOR_CMObject* const object_;
    KOR_CMObject::DataFilePath path_;
    DurableFile file_;
    oam_result written_ = OAM_SUCCESS;
    bool isWritten_ = false;
};
