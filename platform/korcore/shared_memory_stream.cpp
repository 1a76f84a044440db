// The stream over a shared segment, and the journal that makes replacing its contents all or
// nothing.
//
// The journal, told once:
//
//   offset  size  meaning
//        0     4  state: kComplete from the moment the image is whole until it has been copied
//        4     4  unused
//        8     8  length of the image
//       16     8  checksum of length and image
//       24     -  the image
//
// A death before kComplete leaves the segment untouched; a death after it leaves an image that the
// next holder of the segment's lock copies, from the start. Copying twice does no harm.
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "korcore/stream.h"

struct CKorStreamSharedMemory::Journal {
    static constexpr uint32_t kIdle = 0;
    static constexpr uint32_t kComplete = 0x4B4A524E;

    std::atomic<uint32_t> state;
    uint32_t unused;
    uint64_t length;
    uint64_t checksum;

    unsigned char* Image() { return reinterpret_cast<unsigned char*>(this + 1); }

    // Both directions of order: nothing before it may move behind it, nothing after it before it.
    void Mark(uint32_t value) { state.exchange(value, std::memory_order_acq_rel); }
};

namespace {

// In the manner of FNV-1a, four words of eight bytes side by side, the rest by bytes. It tells an
// image that a Replace wrote from chance, not from malice.
uint64_t checksumOf(uint64_t length, const unsigned char* image) {
    constexpr uint64_t kPrime = 0x100000001B3;
    constexpr uint64_t kStart = 0xCBF29CE484222325;
    uint64_t sums[4] = {kStart ^ length, kStart + 1, kStart + 2, kStart + 3};
    uint64_t i = 0;
    for (; length - i >= sizeof sums; i += sizeof sums) {
        uint64_t words[4];
        std::memcpy(words, image + i, sizeof words);
#pragma GCC unroll 4
        for (int k = 0; k < 4; ++k) sums[k] = (sums[k] ^ words[k]) * kPrime;
    }
    uint64_t sum = kStart;
    // What a product moves upwards comes down again.
    for (const uint64_t part : sums) sum = (sum ^ part ^ part >> 32) * kPrime;
    for (; i < length; ++i) sum = (sum ^ image[i]) * kPrime;
    return sum;
}

}  // namespace

CKorStreamSharedMemory::CKorStreamSharedMemory(const char* name, size_t size) noexcept {
    journalName_[0] = '\0';
    if (!segment_.Open(name, size, nullptr)) return;
    const int length = std::snprintf(journalName_, sizeof journalName_, "%s.journal", name);
    if (static_cast<size_t>(length) >= sizeof journalName_) journalName_[0] = '\0';
    Journal* journal = FindJournal();
    // What it holds was meant for an earlier segment of this name.
    if (journal != nullptr && segment_.WasCreated()) journal->Mark(Journal::kIdle);
}

CKorStreamSharedMemory::~CKorStreamSharedMemory() = default;

bool CKorStreamSharedMemory::Write(const void* data, size_t size) noexcept {
    if (size > Remaining() || !segment_.IsWhole()) failed_ = true;
    if (failed_) return false;
    if (size > 0) std::memcpy(static_cast<unsigned char*>(segment_.Data()) + position_, data, size);
    position_ += size;
    return true;
}

bool CKorStreamSharedMemory::Read(void* data, size_t size) noexcept {
    if (size > Remaining() || !segment_.IsWhole()) failed_ = true;
    if (failed_) return false;
    if (size > 0) std::memcpy(data, static_cast<unsigned char*>(segment_.Data()) + position_, size);
    position_ += size;
    return true;
}

void CKorStreamSharedMemory::Flush() noexcept {
    position_ = 0;
    failed_ = false;
}

bool CKorStreamSharedMemory::IsFailed() const noexcept { return failed_; }

void CKorStreamSharedMemory::Fail() noexcept { failed_ = true; }

size_t CKorStreamSharedMemory::Remaining() const noexcept {
    return failed_ ? 0 : segment_.Size() - position_;
}

bool CKorStreamSharedMemory::IsOpen() const noexcept { return segment_.IsOpen(); }

void CKorStreamSharedMemory::Close() noexcept {
    segment_.Close();
    journal_.Close();
    journalName_[0] = '\0';
    position_ = 0;
}

bool CKorStreamSharedMemory::WasCreated() const noexcept { return segment_.WasCreated(); }

void CKorStreamSharedMemory::ClearCreated() noexcept { segment_.ClearCreated(); }

const unsigned char* CKorStreamSharedMemory::Bytes() const noexcept {
    return segment_.IsWhole() ? static_cast<const unsigned char*>(segment_.Data()) : nullptr;
}

size_t CKorStreamSharedMemory::Size() const noexcept { return segment_.Size(); }

bool CKorStreamSharedMemory::Replace(const void* image, size_t size) noexcept {
    if (size > segment_.Size() || !segment_.IsWhole()) return false;
    Journal* journal = FindJournal();
    if (journal == nullptr) return false;
    // Before it is written over: what another process has left unfinished.
    Recover(journal);
    journal->Mark(Journal::kIdle);
    if (size > 0) std::memcpy(journal->Image(), image, size);
    journal->length = size;
    journal->checksum = checksumOf(size, journal->Image());
    journal->Mark(Journal::kComplete);
    Finish(journal, size);
    return true;
}

void CKorStreamSharedMemory::Recover() noexcept {
    if (Journal* journal = FindJournal()) Recover(journal);
}

void CKorStreamSharedMemory::Recover(Journal* journal) noexcept {
    if (journal->state.load(std::memory_order_acquire) != Journal::kComplete) return;
    const uint64_t length = journal->length;
    if (length > segment_.Size() || !segment_.IsWhole() ||
        journal->checksum != checksumOf(length, journal->Image())) {
        return;
    }
    Finish(journal, length);
}

void CKorStreamSharedMemory::Finish(Journal* journal, size_t size) noexcept {
    std::memcpy(segment_.Data(), journal->Image(), size);
    journal->Mark(Journal::kIdle);
}

// Opened again when there was no room for it, or when another process has cut it short.
CKorStreamSharedMemory::Journal* CKorStreamSharedMemory::FindJournal() noexcept {
    static_assert(sizeof(Journal) == 24 && std::atomic<uint32_t>::is_always_lock_free);
    if (journalName_[0] == '\0') return nullptr;
    if (!journal_.IsWhole() &&
        !journal_.Open(journalName_, sizeof(Journal) + segment_.Size(), nullptr)) {
        return nullptr;
    }
    return static_cast<Journal*>(journal_.Data());
}
