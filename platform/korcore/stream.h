// Streams of integers, booleans and raw blocks, and the stream over a shared segment.
//
// A read or write that would pass the end is refused whole and marks the stream failed; every later
// one is refused until Flush. Encodings: integer 32 bits, boolean one byte (any non-zero byte reads
// as true), both in the machine's order.
#pragma once

#include <cstddef>

#include "korcore/shared_file.h"

class KOR_API CKorStream {
  public:
    CKorStream() noexcept = default;
    CKorStream(const CKorStream&) = delete;
    CKorStream& operator=(const CKorStream&) = delete;
    virtual ~CKorStream();

    virtual bool Write(const void* data, size_t size) noexcept = 0;
    // On a failed read the data stay as they were.
    virtual bool Read(void* data, size_t size) noexcept = 0;
    // Back to the start, and usable again after a failure.
    virtual void Flush() noexcept = 0;
    virtual bool IsFailed() const noexcept = 0;
    // Marks the stream failed: for a reader that finds nonsense, a writer that knows it will not
    // fit.
    virtual void Fail() noexcept = 0;
    // The bytes from the position to the end; 0 when the stream has failed.
    virtual size_t Remaining() const noexcept = 0;

    CKorStream& operator<<(int value) noexcept;
    CKorStream& operator<<(bool value) noexcept;
    // On a failed read the value becomes 0 or false.
    CKorStream& operator>>(int& value) noexcept;
    CKorStream& operator>>(bool& value) noexcept;
};

class KOR_API CKorStreamSharedMemory : public CKorStream {
  public:
    // Opens or creates the segment; IsOpen tells whether that worked. A stream on a segment that is
    // not open, or that another process has cut short, fails every read and write.
    CKorStreamSharedMemory(const char* name, size_t size) noexcept;
    ~CKorStreamSharedMemory() override;

    bool Write(const void* data, size_t size) noexcept override;
    bool Read(void* data, size_t size) noexcept override;
    void Flush() noexcept override;
    bool IsFailed() const noexcept override;
    void Fail() noexcept override;
    size_t Remaining() const noexcept override;

    bool IsOpen() const noexcept;
    // Leaves the segment to the others; it and its contents stay.
    void Close() noexcept;
    // Whether this object created the segment, until the mark is cleared.
    bool WasCreated() const noexcept;
    void ClearCreated() noexcept;

    // The segment's bytes in place, or null when it is not open or was cut short. Callers hold the
    // segment's lock and trust nothing they read.
    const unsigned char* Bytes() const noexcept;
    size_t Size() const noexcept;

    // Replaces the first `size` bytes so that even a death in the middle leaves the old or the new
    // ones: the image goes to a journal beside the segment (the file "<name>.journal") and is
    // marked complete before it is copied. Callers hold the segment's lock. False when it does not
    // fit, or the journal cannot be had; the segment is then unchanged.
    bool Replace(const void* image, size_t size) noexcept;
    // Finishes a Replace whose process died in the middle. Every holder of the segment's lock calls
    // this before it reads; it costs a look at the journal when there is nothing to finish. A
    // journal that no Replace has completed, or that does not fit the segment, is left alone.
    void Recover() noexcept;

  private:
    struct Journal;

    Journal* FindJournal() noexcept;
    void Recover(Journal* journal) noexcept;
    void Finish(Journal* journal, size_t size) noexcept;

    KorSharedFile segment_;
    KorSharedFile journal_;
    // Enough for the name of any file; empty when there is no segment.
    char journalName_[256];
    size_t position_ = 0;
    bool failed_ = false;
};
