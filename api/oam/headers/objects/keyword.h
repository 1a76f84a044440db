// Keywords: one object's configuration as a sorted list of names and text values.
//
// Qualifiers live in the same list under "<keyword>?<qualifier>"; arrays are a "<base>.Count" and
// elements "<base>[<i>]". The list treats names as opaque. Entries are unique and sorted without
// regard to case; the spelling is that of the entry's creation. Guarded by the manager lock.
#pragma once

#include "base/text.h"
#include "objects/table.h"

class CKeyword {
  public:
    // Copies what is not null. A value that cannot be copied for want of memory is null.
    CKeyword(const char* name, const char* value) noexcept;

    const char* Name() const noexcept { return name_.OrEmpty(); }
    // Null when it was never set, or set to null.
    const char* Value() const noexcept { return value_.Get(); }
    void SetValue(const char* value) noexcept { (void)value_.Assign(value); }
    bool HasName() const noexcept { return !name_.IsNull(); }

    static int Compare(const CKeyword& keyword, const char* name) noexcept;

  private:
    oam::OwnedText name_;
    oam::OwnedText value_;
};

class CArrayPtrsToKeyword : private oam::SortedTable<CKeyword, const char*> {
  public:
    CArrayPtrsToKeyword() noexcept : SortedTable(0, oam::kTableGrowth) {}

    using SortedTable::At;
    using SortedTable::Capacity;
    using SortedTable::Count;
    using SortedTable::RemoveAll;

    // True and the entry's index, or false and the insertion index.
    bool Find(const char* name, int* index) const noexcept { return Search(name, index); }

    // Changes an entry, or adds it when `create` allows that. OAMERR_ACCESS_DENIED for a missing
    // entry without `create`; OAMERR_NOT_ENOUGH_MEMORY.
    oam_result Set(const char* name, const char* value, bool create) noexcept;

    // OAMERR_NOT_FOUND; a null value is the empty text.
    oam_result Get(const char* name, char* buffer, unsigned size) const noexcept;

    oam_result Remove(const char* name) noexcept;
};
