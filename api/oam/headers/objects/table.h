// Arrays of owned pointers, kept sorted: the shape of every table of the service.
//
// The slots grow and shrink in whole steps: an insert into a full array adds one step, and a
// removal gives one back as soon as the rest fits in one step less. A failed allocation leaves the
// table as it was. No lock inside; each table's owner says what guards it.
#pragma once

#include <cstring>
#include <new>

#include "oam/codes.h"

namespace oam {

constexpr int kTableGrowth = 16;

// The array itself: insertion and removal by position. Owns its records.
template <class Record>
class PointerArray {
  public:
    explicit PointerArray(int growBy) noexcept : growBy_(growBy) {}
    PointerArray(const PointerArray&) = delete;
    PointerArray& operator=(const PointerArray&) = delete;
    ~PointerArray() { RemoveAll(); }

    int Count() const noexcept { return count_; }
    int Capacity() const noexcept { return capacity_; }
    Record* At(int index) const noexcept { return items_[index]; }

    // Takes the record over on success.
    oam_result InsertAt(int index, Record* record) noexcept {
        if (count_ < capacity_) {
            memmove(items_ + index + 1, items_ + index, Bytes(count_ - index));
        } else {
            Record** grown = new (std::nothrow) Record*[capacity_ + growBy_];
            if (grown == nullptr) return OAMERR_NOT_ENOUGH_MEMORY;
            CopyAround(grown, index, index, index + 1);
            Replace(grown, capacity_ + growBy_);
        }
        items_[index] = record;
        ++count_;
        return OAM_SUCCESS;
    }

    // Takes over so many records, of which at(index) gives each, in place of none.
    template <class At>
    oam_result InsertAll(int count, At at) noexcept {
        const int capacity = (count + growBy_ - 1) / growBy_ * growBy_;
        Record** items = new (std::nothrow) Record*[static_cast<size_t>(capacity)];
        if (items == nullptr) return OAMERR_NOT_ENOUGH_MEMORY;
        for (int i = 0; i < count; ++i) items[i] = at(i);
        Replace(items, capacity);
        count_ = count;
        return OAM_SUCCESS;
    }

    // Takes the record out without freeing it.
    oam_result TakeAt(int index) noexcept {
        if (count_ - 1 > capacity_ - growBy_) {
            CloseGap(index);
            return OAM_SUCCESS;
        }
        Record** shrunk = new (std::nothrow) Record*[static_cast<size_t>(capacity_ - growBy_)];
        if (shrunk == nullptr) return OAMERR_NOT_ENOUGH_MEMORY;
        CopyAround(shrunk, index, index + 1, index);
        Replace(shrunk, capacity_ - growBy_);
        --count_;
        return OAM_SUCCESS;
    }

    oam_result RemoveAt(int index) noexcept {
        Record* record = items_[index];
        if (auto failed = TakeAt(index)) return failed;
        delete record;
        return OAM_SUCCESS;
    }

    // For records that must go: without memory for a smaller array the slots are kept.
    void TakeSurely(int index) noexcept {
        if (TakeAt(index) != OAM_SUCCESS) CloseGap(index);
    }
    void RemoveSurely(int index) noexcept {
        Record* record = items_[index];
        TakeSurely(index);
        delete record;
    }

    void RemoveAll() noexcept {
        for (int i = 0; i < count_; ++i) delete items_[i];
        Replace(nullptr, 0);
        count_ = 0;
    }

    // Moves the record at `from` to the insertion position `to` that a search gave while it was
    // still at `from`.
    void Move(int from, int to) noexcept {
        Record* record = items_[from];
        if (to < from) {
            memmove(items_ + to + 1, items_ + to, Bytes(from - to));
            items_[to] = record;
        } else if (to > from + 1) {
            memmove(items_ + from, items_ + from + 1, Bytes(to - from - 1));
            items_[to - 1] = record;
        }
    }

  private:
    static size_t Bytes(int slots) noexcept { return static_cast<size_t>(slots) * sizeof(Record*); }

    void CloseGap(int index) noexcept {
        memmove(items_ + index, items_ + index + 1, Bytes(count_ - index - 1));
        --count_;
    }

    // The first `before` slots stay where they are; those from `source` on go to `target`.
    void CopyAround(Record** other, int before, int source, int target) const noexcept {
        if (items_ == nullptr) return;
        memcpy(other, items_, Bytes(before));
        memcpy(other + target, items_ + source, Bytes(count_ - source));
    }

    void Replace(Record** items, int capacity) noexcept {
        delete[] items_;
        items_ = items;
        capacity_ = capacity;
    }

    Record** items_ = nullptr;
    int count_ = 0;
    int capacity_ = 0;
    const int growBy_;
};

// A table of records found by a key that the record type orders:
// static int Compare(const Record&, Key) gives below zero, zero or above zero.
template <class Record, class Key>
class SortedTable : public PointerArray<Record> {
  public:
    // Kept: the first argument, an initial size, is ignored; a table starts without slots.
    SortedTable(int, int growBy) noexcept : PointerArray<Record>(growBy) {}

    // True and the record's index, or false and the index at which the key would be inserted.
    bool Search(Key key, int* index) const noexcept {
        int low = 0;
        int high = this->Count();
        while (low < high) {
            const int middle = low + (high - low) / 2;
            const int order = Record::Compare(*this->At(middle), key);
            if (order == 0) {
                *index = middle;
                return true;
            }
            (order < 0 ? low : high) = order < 0 ? middle + 1 : middle;
        }
        *index = low;
        return false;
    }

    // Makes the record with `make` (null: no memory) and inserts it at its place.
    template <class Make>
    oam_result InsertNew(Key key, Make make) noexcept {
        int index;
        if (Search(key, &index)) return OAMERR_ALREADY_EXISTS;
        Record* record = make();
        if (record == nullptr) return OAMERR_NOT_ENOUGH_MEMORY;
        const oam_result result = this->InsertAt(index, record);
        if (result != OAM_SUCCESS) delete record;
        return result;
    }

    oam_result Remove(Key key) noexcept {
        int index;
        if (!Search(key, &index)) return OAMERR_NOT_FOUND;
        return this->RemoveAt(index);
    }

    // As RemoveSurely; a missing record is none.
    void Discard(Key key) noexcept {
        int index;
        if (Search(key, &index)) this->RemoveSurely(index);
    }

    Record* Find(Key key) const noexcept {
        int index;
        return Search(key, &index) ? this->At(index) : nullptr;
    }
};

// A table sorted by its records' name without regard to case; Record has `const char* Name()`.
template <class Record>
class NamedTable : public SortedTable<Record, const char*> {
  public:
    using SortedTable<Record, const char*>::SortedTable;

    bool FindByName(const char* name, int* index) const noexcept {
        return this->Search(name, index);
    }
};

}  // namespace oam
