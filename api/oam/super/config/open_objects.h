// The open handles: who opened which object.
//
// A handle is the address of its record, so it is unique while open and may repeat after a close.
// Records are in order of opening. Guarded by the manager lock.
#pragma once

#include "objects/object.h"

struct OpenMObject {
    unsigned long client;
    KOR_CMObject* object;  // not owned
};

class CArrayPtrsToOpenMObject : private oam::PointerArray<OpenMObject> {
  public:
    // Kept: the first argument is ignored; no slots are allocated ahead.
    CArrayPtrsToOpenMObject(int, int growBy) noexcept : PointerArray(growBy) {}

    using PointerArray::At;
    using PointerArray::Capacity;
    using PointerArray::Count;
    using PointerArray::RemoveAll;

    oam_result Insert(unsigned long client, KOR_CMObject* object, unsigned long* handle) noexcept;
    // True and the index, or false and the count.
    bool FindByHMObject(unsigned long handle, int* index) const noexcept;
    // OAMERR_NOT_FOUND.
    oam_result Remove(unsigned long handle) noexcept;
    // Every handle on an object that is about to be destroyed.
    void RemoveAllOf(const KOR_CMObject* object) noexcept;
};

// The one table of the service.
CArrayPtrsToOpenMObject& openObjects() noexcept;

// Kept: handles are not checked against the table, which keeps every access cheap; passing one that
// was never issued is the caller's fault.
KOR_CMObject* getObjectFromHandle(unsigned long handle) noexcept;
const char* getNameFromHandle(unsigned long handle) noexcept;

// A handle that an object's own operation is running with. It is lent: whoever runs further up the
// stack needs it behind the operation, so a plug-in that closes it in there is refused. Marked here,
// not in the record, since handles are not checked.
class LentHandle {
  public:
    explicit LentHandle(unsigned long handle) noexcept;
    ~LentHandle();
    LentHandle(const LentHandle&) = delete;
    LentHandle& operator=(const LentHandle&) = delete;

    static bool Is(unsigned long handle) noexcept;

  private:
    const unsigned long handle_;
    const LentHandle* const outer_;
};
