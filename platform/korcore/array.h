// Arrays of plain records by value: growable, streamable, and shared between processes.
//
// Records are copied byte for byte, so they must be trivially copyable. Nothing here throws: what
// finds no memory answers false and changes nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>
#include <type_traits>

#include "korcore/mutex.h"
#include "korcore/stream.h"

template <class T>
class CKorArray {
    static_assert(std::is_trivially_copyable_v<T>, "records are copied byte for byte");
    static_assert(sizeof(T) <= PTRDIFF_MAX / INT32_MAX,
                  "as many as can be counted can be asked for");

  public:
    // Room for `initial` records at once, then for `growBy` more whenever it is full.
    CKorArray(int initial, int growBy) noexcept : growBy_(growBy > 0 ? growBy : 1) {
        if (initial > 0) (void)realloc(initial);
    }
    virtual ~CKorArray() { delete[] items_; }
    CKorArray(const CKorArray&) = delete;
    CKorArray& operator=(const CKorArray&) = delete;

    int GetSize() const noexcept { return count_; }

    bool Add(const T& record) noexcept { return InsertAt(count_, record); }

    // At most one place behind the last record. The record may be one of the array's own.
    bool InsertAt(int index, const T& record) noexcept {
        if (index < 0 || index > count_) return false;
        const T copy = record;
        if (count_ == capacity_ &&
            (count_ > INT32_MAX - growBy_ || !realloc(capacity_ + growBy_))) {
            return false;
        }
        for (int i = count_; i > index; --i) items_[i] = items_[i - 1];
        items_[index] = copy;
        ++count_;
        return true;
    }

    // Null when there is no such record.
    const T* GetAt(int index) const noexcept {
        return index >= 0 && index < count_ ? &items_[index] : nullptr;
    }

    // The index is below GetSize.
    T& operator[](int index) noexcept { return items_[index]; }
    const T& operator[](int index) const noexcept { return items_[index]; }

    // Keeps the room: a shared array is emptied and filled at every access.
    void DeleteAll() noexcept { count_ = 0; }

  private:
    bool realloc(int capacity) noexcept {
        T* items = new (std::nothrow) T[static_cast<size_t>(capacity)]();
        if (items == nullptr) return false;
        for (int i = 0; i < count_; ++i) items[i] = items_[i];
        delete[] items_;
        items_ = items;
        capacity_ = capacity;
        return true;
    }

    T* items_ = nullptr;
    int count_ = 0;
    int capacity_ = 0;
    int growBy_;
};

// On a stream: the count as an integer, then the records' bytes.
template <class T>
class CKorStreamableArray : public CKorArray<T> {
  public:
    using CKorArray<T>::CKorArray;

    void DeleteAll() noexcept {
        CKorArray<T>::DeleteAll();
        isCutShort_ = false;
    }

    // Refused whole when it does not fit, so that a full stream keeps what it had; and when the
    // array was read without enough memory, so that it does not replace what it could not hold.
    friend CKorStream& operator<<(CKorStream& stream, const CKorStreamableArray& array) noexcept {
        const auto count = static_cast<size_t>(array.GetSize());
        const size_t room = stream.Remaining();
        if (array.isCutShort_ || room < sizeof(int) || count > (room - sizeof(int)) / sizeof(T)) {
            stream.Fail();
            return stream;
        }
        stream << array.GetSize();
        for (int i = 0; i < array.GetSize(); ++i) (void)stream.Write(&array[i], sizeof(T));
        return stream;
    }

    // A failed read leaves an empty array and a failed stream. The count is not trusted: no more
    // records are read than the rest of the stream can hold.
    friend CKorStream& operator>>(CKorStream& stream, CKorStreamableArray& array) noexcept {
        array.DeleteAll();
        int count = 0;
        stream >> count;
        if (count < 0 || static_cast<size_t>(count) > stream.Remaining() / sizeof(T)) stream.Fail();
        for (int i = 0; i < count && !stream.IsFailed(); ++i) {
            T record{};
            (void)stream.Read(static_cast<void*>(&record), sizeof record);
            array.isCutShort_ = !array.Add(record);
            if (array.isCutShort_) stream.Fail();
        }
        if (stream.IsFailed()) array.CKorArray<T>::DeleteAll();
        return stream;
    }

  private:
    bool isCutShort_ = false;
};

// An array that lives in a shared segment. Every access takes the segment's lock, reads the whole
// array and writes it back, so that a reader always sees the present contents. Lock and Unlock hold
// the same lock around several accesses; it nests. A segment whose contents make no sense is an
// empty array, and is one again after the next access. A death in the middle of writing a change
// can leave part of it; CKorStreamSharedMemory::Replace publishes contents that must be whole.
//
// The clang analysis follows neither a lock that nests nor one that outlives the function that
// takes it; it is off where this class does that.
template <class T>
class CKorSharedMemoryArray {
  public:
    CKorSharedMemoryArray(const char* name, int size) noexcept
        : array_(kInitial, kGrowBy),
          stream_(name, size > 0 ? static_cast<size_t>(size) : 0),
          mutex_(0, getMutexName(name).text, 0) {
        if (!Lock()) return;
        if (stream_.WasCreated()) {
            // Another process may have attached and written already: what it wrote stays.
            Load();
            Store();
            stream_.ClearCreated();
        }
        Unlock();
    }
    virtual ~CKorSharedMemoryArray() = default;
    CKorSharedMemoryArray(const CKorSharedMemoryArray&) = delete;
    CKorSharedMemoryArray& operator=(const CKorSharedMemoryArray&) = delete;

    // Takes the lock and reads. False: the lock cannot be had, and no suffix must follow.
    virtual bool prefix() noexcept {
        if (!Lock()) return false;
        Load();
        return true;
    }
    // Writes and gives the lock back.
    virtual void suffix() noexcept {
        Store();
        Unlock();
    }

    // 0 also when the segment or its lock cannot be had.
    int GetSize() noexcept {
        if (!prefix()) return 0;
        const int size = array_.GetSize();
        suffix();
        return size;
    }

    // By value: the array is read anew at the next access. A default record where there is none,
    // since other processes may have removed it meanwhile.
    T operator[](int index) noexcept {
        T record{};
        if (!prefix()) return record;
        if (const T* found = array_.GetAt(index)) record = *found;
        suffix();
        return record;
    }

    // False: the segment is as it was.
    bool Add(const T& record) noexcept {
        return Change([&] { return array_.Add(record); });
    }
    bool DeleteAll() noexcept {
        return Change([&] {
            array_.DeleteAll();
            return true;
        });
    }

    // False when the segment's lock cannot be had.
    bool Lock() noexcept NO_THREAD_SAFETY_ANALYSIS { return mutex_.Lock(); }
    void Unlock() noexcept NO_THREAD_SAFETY_ANALYSIS { mutex_.Unlock(); }

    // For a hold of microseconds (CKorMutex::LockBriefly).
    bool LockBriefly() noexcept NO_THREAD_SAFETY_ANALYSIS { return mutex_.LockBriefly(); }
    void UnlockBriefly() noexcept NO_THREAD_SAFETY_ANALYSIS { mutex_.UnlockBriefly(); }

    // Leaves the segment to the others; from now on this object holds nothing.
    void Close() noexcept {
        const bool held = Lock();
        array_.DeleteAll();
        stream_.Close();
        if (held) Unlock();
    }

    struct MutexName {
        char text[512];
    };
    // Too long a name is cut, but still too long for a file, so that no lock takes another's place.
    static MutexName getMutexName(const char* name) noexcept {
        MutexName made;
        std::snprintf(made.text, sizeof made.text, "%.400s%s", name != nullptr ? name : "",
                      "CKorSharedMemoryArray");
        return made;
    }

  protected:
    // Under the lock. An overriding prefix or suffix goes on in the stream from where these end.
    void Load() noexcept {
        stream_.Recover();
        stream_.Flush();
        stream_ >> array_;
    }
    void Store() noexcept {
        stream_.Flush();
        stream_ << array_;
    }
    CKorStreamSharedMemory& Stream() noexcept { return stream_; }

  private:
    static constexpr int kInitial = 5;
    static constexpr int kGrowBy = 3;

    template <class Work>
    bool Change(Work work) noexcept {
        if (!Lock()) return false;
        bool changed = false;
        if (prefix()) {
            changed = work();
            suffix();
            changed = changed && !stream_.IsFailed();
        }
        Unlock();
        return changed;
    }

    CKorStreamableArray<T> array_;
    CKorStreamSharedMemory stream_;
    CKorMutex mutex_;
};
