// Keywords: one object's configuration as a sorted list of names and text values.
//
// Qualifiers live in the same list under "<keyword>?<qualifier>"; arrays are a "<base>.Count" and
// elements "<base>[<i>]". The list treats names as opaque. Entries are unique and sorted without
// regard to case; the spelling is that of the entry's creation. Guarded by the manager lock.
#pragma once

#include <cstddef>
#include <memory>
#include <new>

#include "base/text.h"
#include "objects/table.h"

class CKeyword {
  public:
    // Copies what is not null. A value that cannot be copied for want of memory is null.
    CKeyword(const char* name, const char* value) noexcept;

    // In a KeywordBlock: the texts are lent by the block, and so is the record's own memory.
    struct Lent {
        const char* name;
        const char* value;
    };
    explicit CKeyword(const Lent& texts) noexcept
        : lentName_(texts.name), lentValue_(texts.value) {}
    void operator delete(CKeyword* keyword, std::destroying_delete_t) noexcept {
        const bool isLent = keyword->lentName_ != nullptr;
        keyword->~CKeyword();
        if (!isLent) ::operator delete(keyword);
    }

    const char* Name() const noexcept { return lentName_ != nullptr ? lentName_ : name_.OrEmpty(); }
    // Null when it was never set, or set to null.
    const char* Value() const noexcept { return lentValue_ != nullptr ? lentValue_ : value_.Get(); }
    void SetValue(const char* value) noexcept;
    bool HasName() const noexcept { return lentName_ != nullptr || !name_.IsNull(); }

    static int Compare(const CKeyword& keyword, const char* name) noexcept;

  private:
    const char* lentName_ = nullptr;
    const char* lentValue_ = nullptr;
    oam::OwnedText name_;
    oam::OwnedText value_;
};

// The entries of a whole data file: one block of text in which they lie, and the records. Reading a
// file takes three allocations so, whatever number of keywords it has.
class KeywordBlock {
  public:
    KeywordBlock() noexcept = default;
    KeywordBlock(KeywordBlock&&) noexcept = default;
    KeywordBlock& operator=(KeywordBlock&&) noexcept = default;

    // Room for a text of so many characters and its NUL; null without memory. Frees what was there.
    char* MakeText(size_t length) noexcept;
    char* Text() const noexcept { return text_.get(); }
    // Texts within the block's own. False without memory.
    bool Add(const char* name, const char* value) noexcept {
        if (count_ == room_ && !Grow()) return false;
        new (At(count_++)) CKeyword(CKeyword::Lent{name, value});
        return true;
    }
    int Count() const noexcept { return count_; }
    CKeyword* At(int index) const noexcept {
        return reinterpret_cast<CKeyword*>(records_.get()) + index;
    }
    size_t Bytes() const noexcept;

  private:
    bool Grow() noexcept;

    std::unique_ptr<char[]> text_;
    size_t length_ = 0;
    std::unique_ptr<std::byte[]> records_;
    int count_ = 0;
    int room_ = 0;
};

class CArrayPtrsToKeyword : private oam::SortedTable<CKeyword, const char*> {
  public:
    CArrayPtrsToKeyword() noexcept : SortedTable(0, oam::kTableGrowth) {}
    ~CArrayPtrsToKeyword() { RemoveAll(); }

    using SortedTable::At;
    using SortedTable::Capacity;
    using SortedTable::Count;

    void RemoveAll() noexcept {
        SortedTable::RemoveAll();
        block_ = KeywordBlock();  // after the records that lie in it
    }
    // Takes over entries in ascending order, in place of none. False without memory: the block is
    // the caller's still.
    bool Adopt(KeywordBlock* block) noexcept;
    // What entries that were adopted, and the slots, take.
    size_t Bytes() const noexcept {
        return block_.Bytes() + static_cast<size_t>(Capacity()) * sizeof(CKeyword*);
    }

    // True and the entry's index, or false and the insertion index.
    bool Find(const char* name, int* index) const noexcept { return Search(name, index); }

    // Changes an entry, or adds it when `create` allows that. OAMERR_ACCESS_DENIED for a missing
    // entry without `create`; OAMERR_NOT_ENOUGH_MEMORY.
    oam_result Set(const char* name, const char* value, bool create) noexcept;

    // OAMERR_NOT_FOUND; a null value is the empty text.
    oam_result Get(const char* name, char* buffer, unsigned size) const noexcept;

    oam_result Remove(const char* name) noexcept;

  private:
    KeywordBlock block_;
};
