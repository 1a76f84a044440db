#include <algorithm>
#include <cstddef>
#include <cstring>

#include "base/text.h"
#include "objects/shadow.h"
#include "zol/zol.h"

namespace {

constexpr char kSegment[] = "OAM_BoardIDsShadow";
constexpr size_t kRecords = sizeof(int32_t);  // where the records start
constexpr size_t kRecordSize = sizeof(CBoardIDShadow);
static_assert(kRecords + kMostShadowBoards * kRecordSize + 1 <= kShadowSize);
static_assert(kRecords + (kMostShadowBoards + 1) * kRecordSize + 1 > kShadowSize);

constexpr size_t flagOffset(int count) noexcept {
    return kRecords + static_cast<size_t>(count) * kRecordSize;
}

// As zolStricmp of the field's text, which ends at the latest where the field does.
int compareField(const char* field, size_t size, const char* text) noexcept {
    const size_t most = size - 1;
    const int order = zolStrnicmp(field, text, most);
    if (order != 0) return order;
    // Equal as far as the field goes; the text may go on.
    return text != nullptr && strnlen(text, size) == size ? -1 : 0;
}

}  // namespace

CBoardIDShadow::CBoardIDShadow() noexcept : CBoardIDShadow("", 0, "", "", false) {}

CBoardIDShadow::CBoardIDShadow(const char* boardName, unsigned boardNumber, const char* driver,
                               const char* boardId, bool aLaw) noexcept {
    memset(static_cast<void*>(this), 0, sizeof *this);
    oam::CopyCut(boardName, name, sizeof name);
    number = boardNumber;
    oam::CopyCut(driver, driverName, sizeof driverName);
    oam::CopyCut(boardId, driverBoardId, sizeof driverBoardId);
    isALaw = aLaw ? 1 : 0;
}

CBoardIDShadow::CBoardIDShadow(const unsigned char* bytes) noexcept {
    memcpy(static_cast<void*>(this), bytes, sizeof *this);
    Terminate();
}

void CBoardIDShadow::Terminate() noexcept {
    name[sizeof name - 1] = '\0';
    driverName[sizeof driverName - 1] = '\0';
    driverBoardId[sizeof driverBoardId - 1] = '\0';
}

ShadowImage::ShadowImage(bool isUsingVxPlugin) noexcept : isUsingVxPlugin_(isUsingVxPlugin) {}

void ShadowImage::Add(const CBoardIDShadow& board) noexcept {
    if (count_ == kMostShadowBoards) return;
    memcpy(bytes_ + flagOffset(count_++), &board, kRecordSize);
}

const unsigned char* ShadowImage::Bytes() noexcept {
    memcpy(bytes_, &count_, sizeof count_);
    bytes_[flagOffset(count_)] = isUsingVxPlugin_ ? 1 : 0;
    return bytes_;
}

size_t ShadowImage::Size() const noexcept { return flagOffset(count_) + 1; }

CBoardIDsShadow::CBoardIDsShadow() noexcept : CKorSharedMemoryArray(kSegment, kShadowSize) {}

bool CBoardIDsShadow::prefix() noexcept {
    if (!CKorSharedMemoryArray::prefix()) return false;
    Stream() >> isUsingVxPlugin_;
    return true;
}

void CBoardIDsShadow::suffix() noexcept {
    Store();
    Stream() << isUsingVxPlugin_;
    Unlock();
}

bool CBoardIDsShadow::IsUsable() noexcept {
    if (!Lock()) return false;
    const bool isThere = Stream().Bytes() != nullptr;
    Unlock();
    return isThere;
}

oam_result CBoardIDsShadow::Publish(ShadowImage& image) noexcept {
    if (!LockBriefly()) return OAMERR_NOT_ENOUGH_MEMORY;
    const bool written = Stream().Replace(image.Bytes(), image.Size());
    UnlockBriefly();
    return written ? OAM_SUCCESS : OAMERR_NOT_ENOUGH_MEMORY;
}

CBoardIDsShadow::Contents::Contents(const unsigned char* bytes) noexcept : bytes_(bytes) {
    if (bytes_ == nullptr) return;
    int32_t count;
    memcpy(&count, bytes_, sizeof count);
    if (count < 0 || count > kMostShadowBoards) {
        bytes_ = nullptr;
    } else {
        count_ = count;
    }
}

CBoardIDShadow CBoardIDsShadow::Contents::At(int index) const noexcept {
    return CBoardIDShadow(bytes_ + flagOffset(index));
}

const char* CBoardIDsShadow::Contents::TextAt(int index, size_t field) const noexcept {
    return reinterpret_cast<const char*>(bytes_ + flagOffset(index) + field);
}

unsigned CBoardIDsShadow::Contents::NumberAt(int index) const noexcept {
    uint32_t number;
    memcpy(&number, bytes_ + flagOffset(index) + offsetof(CBoardIDShadow, number), sizeof number);
    return number;
}

bool CBoardIDsShadow::Contents::IsUsingVxPlugin() const noexcept {
    return bytes_[flagOffset(count_)] != 0;
}

bool CBoardIDsShadow::Contents::FindByName(const char* name, int* index) const noexcept {
    int low = 0;
    int high = count_;
    while (low < high) {
        const int middle = (low + high) / 2;
        const int order = compareField(TextAt(middle, offsetof(CBoardIDShadow, name)),
                                       sizeof CBoardIDShadow::name, name);
        if (order == 0) {
            *index = middle;
            return true;
        }
        if (order < 0) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    *index = low;
    return false;
}

bool CBoardIDsShadow::Contents::FindByNumber(unsigned number, int* index) const noexcept {
    for (*index = 0; *index < count_; ++*index) {
        if (NumberAt(*index) == number) return true;
    }
    return false;
}

bool CBoardIDsShadow::Contents::FindByDriverIDs(const char* driverName, const char* driverBoardId,
                                                int* index) const noexcept {
    for (*index = 0; *index < count_; ++*index) {
        if (compareField(TextAt(*index, offsetof(CBoardIDShadow, driverName)),
                         sizeof CBoardIDShadow::driverName, driverName) == 0 &&
            compareField(TextAt(*index, offsetof(CBoardIDShadow, driverBoardId)),
                         sizeof CBoardIDShadow::driverBoardId, driverBoardId) == 0) {
            return true;
        }
    }
    return false;
}
