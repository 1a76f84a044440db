// The board shadow in this process: records, the image that a writer publishes, and the shared
// array that readers search. oam/shadow.h tells the segment's layout.
//
// A leaf: it needs the platform alone, so that a reader process can use it without the rest.
#pragma once

#include <cstdint>

#include "korcore/array.h"
#include "oam/codes.h"

// One board, copied into the segment byte for byte.
struct CBoardIDShadow {
    CBoardIDShadow() noexcept;
    // Texts are cut to what fits and always terminated.
    CBoardIDShadow(const char* boardName, unsigned boardNumber, const char* driver,
                   const char* boardId, bool aLaw) noexcept;

    // What lies in a segment.
    explicit CBoardIDShadow(const unsigned char* bytes) noexcept;

    // Ends texts that another process has left without a NUL.
    void Terminate() noexcept;

    char name[129];
    char padding[3];
    uint32_t number;
    char driverName[129];
    char driverBoardId[65];
    uint8_t isALaw;
    char lastPadding;
};
static_assert(sizeof(CBoardIDShadow) == 332);
static_assert(offsetof(CBoardIDShadow, number) == 132);
static_assert(offsetof(CBoardIDShadow, driverName) == 136);
static_assert(offsetof(CBoardIDShadow, driverBoardId) == 265);
static_assert(offsetof(CBoardIDShadow, isALaw) == 330);

constexpr int kShadowSize = 10624;
constexpr int kMostShadowBoards = 31;  // the count and the flag need room too

// The segment's next contents, built beside it.
class ShadowImage {
  public:
    explicit ShadowImage(bool isUsingVxPlugin) noexcept;
    // A board that no longer fits stays out.
    void Add(const CBoardIDShadow& board) noexcept;

    const unsigned char* Bytes() noexcept;
    size_t Size() const noexcept;

  private:
    unsigned char bytes_[kShadowSize];
    int32_t count_ = 0;
    bool isUsingVxPlugin_;
};

class CBoardIDsShadow : public CKorSharedMemoryArray<CBoardIDShadow> {
  public:
    CBoardIDsShadow() noexcept;

    bool prefix() noexcept override;
    void suffix() noexcept override;

    // Whether segment and lock could be had.
    bool IsUsable() noexcept;
    // The whole contents at once: another process sees the old or the new ones, also when this one
    // dies in the middle. OAMERR_NOT_ENOUGH_MEMORY when the segment cannot be written.
    oam_result Publish(ShadowImage& image) noexcept;

    // Calls use(contents) under the lock, on the segment in place. OAMERR_NOT_ENOUGH_MEMORY when
    // the lock cannot be had or the contents are not a shadow's.
    template <class Use>
    oam_result Read(Use use) noexcept {
        if (!LockBriefly()) return OAMERR_NOT_ENOUGH_MEMORY;
        Stream().Recover();
        const Contents contents(Stream().Bytes());
        const oam_result result = contents.IsValid() ? use(contents) : OAMERR_NOT_ENOUGH_MEMORY;
        UnlockBriefly();
        return result;
    }

    // What lies in the segment. Good under the lock; nothing in it is trusted.
    class Contents {
      public:
        explicit Contents(const unsigned char* bytes) noexcept;

        bool IsValid() const noexcept { return bytes_ != nullptr; }
        int Count() const noexcept { return count_; }
        // A terminated copy; the index is below the count.
        CBoardIDShadow At(int index) const noexcept;
        bool IsUsingVxPlugin() const noexcept;

        // True and the index. The writer keeps the records sorted by name.
        bool FindByName(const char* name, int* index) const noexcept;
        bool FindByNumber(unsigned number, int* index) const noexcept;
        bool FindByDriverIDs(const char* driverName, const char* driverBoardId,
                             int* index) const noexcept;

      private:
        // A record's text, without a copy. Another process may have left it without a NUL, or write
        // it now: never more than the field is looked at.
        const char* TextAt(int index, size_t field) const noexcept;
        unsigned NumberAt(int index) const noexcept;

        const unsigned char* bytes_;
        int count_ = 0;
    };

  private:
    bool isUsingVxPlugin_ = false;
};

// Publishes through this process's view, which nobody gives up meanwhile. OAMERR_NOT_ENOUGH_MEMORY
// also without a view.
oam_result PublishShadow(ShadowImage& image) noexcept;
