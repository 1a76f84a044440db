// A module: one file of "/lib" that is loaded and bound to a table of entry points, and the table
// of all modules of a kind.
//
// Modules are sorted by file name without regard to case. The table changes only while the service
// starts, stops or imports; a leaf lock lets the threads that are still calling then see it whole.
// They copy the entries they need and call them without the lock. Libraries are never unloaded.
#pragma once

#include <atomic>

#include "base/text.h"
#include "korcore/guard.h"
#include "loading/object_entries.h"
#include "objects/table.h"
#include "zol/zol.h"

namespace oam {

// One entry point: its symbol, where its address goes in the record of entries, and what stands in
// when the symbol is missing (null: the module cannot be used without it).
struct EntryRow {
    const char* symbol;
    size_t offset;
    void (*fallback)();
};

// OAMERR_NOT_ENOUGH_MEMORY when the path "/lib/<file>" reaches 128 characters; kLoadFailed when the
// library cannot be loaded. The flag goes to the platform's directory lookup.
oam_result OpenLibrary(bool flag, const char* fileName, void** library) noexcept;
constexpr oam_result kLoadFailed = oam_result(0xf0027);

// Looks every row up in turn; the code of the first lookup that fails without a fallback.
oam_result BindEntries(void* library, const EntryRow* rows, size_t count, void* entries) noexcept;

template <class Entries>
class Module {
  public:
    explicit Module(const char* fileName) noexcept { (void)name_.Assign(fileName); }

    const char* Name() const noexcept { return name_.OrEmpty(); }
    bool HasName() const noexcept { return !name_.IsNull(); }
    const Entries& Calls() const noexcept { return entries_; }
    void Bind(const Entries& entries) noexcept { entries_ = entries; }

    static int Compare(const Module& module, const char* name) noexcept {
        return zolStricmp(module.Name(), name);
    }

  private:
    OwnedText name_;
    Entries entries_;  // all null until bound
};

template <class Entries>
class ModuleTable : private NamedTable<Module<Entries>> {
  public:
    using Record = Module<Entries>;

    ModuleTable() noexcept : NamedTable<Record>(0, kTableGrowth) {}

    // OAMERR_ALREADY_EXISTS, OAMERR_NOT_ENOUGH_MEMORY. Nothing is loaded.
    oam_result Insert(const char* name) noexcept {
        KorGuard hold(lock_);
        const oam_result inserted = this->InsertNew(name, [name]() -> Record* {
            auto* record = new (std::nothrow) Record(name);
            if (record != nullptr && record->HasName()) return record;
            delete record;
            return nullptr;
        });
        count_.store(NamedTable<Record>::Count(), std::memory_order_release);
        return inserted;
    }

    oam_result Bind(const char* name, const Entries& entries) noexcept {
        KorGuard hold(lock_);
        Record* record = NamedTable<Record>::Find(name);
        if (record == nullptr) return OAMERR_NOT_FOUND;
        record->Bind(entries);
        return OAM_SUCCESS;
    }

    void RemoveAll() noexcept {
        KorGuard hold(lock_);
        NamedTable<Record>::RemoveAll();
        count_.store(0, std::memory_order_release);
    }

    // Asked for each alert, so without the lock.
    bool IsEmpty() const noexcept { return count_.load(std::memory_order_acquire) == 0; }
    int Count() const noexcept {
        KorGuard hold(lock_);
        return NamedTable<Record>::Count();
    }

    // Good until the module is removed.
    const Record* Find(const char* name) const noexcept {
        KorGuard hold(lock_);
        return NamedTable<Record>::Find(name);
    }
    const char* NameAt(int index) const noexcept {
        KorGuard hold(lock_);
        return InRange(index) ? this->At(index)->Name() : nullptr;
    }
    // A copy of it, for those who hold no lock that keeps the table as it is; false past the end.
    bool CopyNameAt(int index, char (&name)[kNameSize]) const noexcept {
        KorGuard hold(lock_);
        if (!InRange(index)) return false;
        CopyCut(this->At(index)->Name(), name, sizeof name);
        return true;
    }

    // Copies of the entries of a module that is bound; false when there is none such.
    bool EntriesOf(const char* name, Entries* entries) const noexcept {
        KorGuard hold(lock_);
        const Record* record = NamedTable<Record>::Find(name);
        if (record == nullptr) return false;
        *entries = record->Calls();
        return entries->IsBound();
    }
    // False past the end. Entries that are not bound yet are all null.
    bool EntriesAt(int index, Entries* entries) const noexcept {
        // The end is met by every alert: it is seen without the lock.
        if (index >= count_.load(std::memory_order_acquire)) return false;
        KorGuard hold(lock_);
        if (!InRange(index)) return false;
        *entries = this->At(index)->Calls();
        return true;
    }

    // Calls visit(entries) for every bound module in name order, without the lock.
    template <class Visit>
    void ForEach(Visit visit) const noexcept {
        Entries entries;
        for (int i = 0; EntriesAt(i, &entries); ++i) {
            if (entries.IsBound()) visit(entries);
        }
    }

  private:
    bool InRange(int index) const noexcept {
        return index >= 0 && index < NamedTable<Record>::Count();
    }

    mutable CKorLightMutex lock_{0};
    std::atomic<int> count_{0};
};

}  // namespace oam
