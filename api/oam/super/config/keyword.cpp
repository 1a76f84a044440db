#include "objects/keyword.h"

#include <utility>

#include "zol/zol.h"

CKeyword::CKeyword(const char* name, const char* value) noexcept {
    (void)name_.Assign(name);
    (void)value_.Assign(value);
}

void CKeyword::SetValue(const char* value) noexcept {
    lentValue_ = nullptr;
    (void)value_.Assign(value);
}

int CKeyword::Compare(const CKeyword& keyword, const char* name) noexcept {
    return zolStricmp(keyword.Name(), name);
}

char* KeywordBlock::MakeText(size_t length) noexcept {
    *this = KeywordBlock();
    text_.reset(new (std::nothrow) char[length + 1]);
    length_ = length;
    return text_.get();
}

// A line of a data file has some forty characters.
bool KeywordBlock::Grow() noexcept {
    const int room = room_ == 0 ? static_cast<int>(length_ / 40) + 8 : 2 * room_;
    std::unique_ptr<std::byte[]> grown(new (std::nothrow)
                                           std::byte[static_cast<size_t>(room) * sizeof(CKeyword)]);
    if (grown == nullptr) return false;
    for (int i = 0; i < count_; ++i) {
        new (grown.get() + static_cast<size_t>(i) * sizeof(CKeyword))
            CKeyword(CKeyword::Lent{At(i)->Name(), At(i)->Value()});
    }
    records_ = std::move(grown);
    room_ = room;
    return true;
}

size_t KeywordBlock::Bytes() const noexcept {
    return text_ == nullptr ? 0 : length_ + 1 + static_cast<size_t>(room_) * sizeof(CKeyword);
}

bool CArrayPtrsToKeyword::Adopt(KeywordBlock* block) noexcept {
    if (InsertAll(block->Count(), [block](int index) { return block->At(index); }) != OAM_SUCCESS) {
        return false;
    }
    block_ = std::move(*block);
    return true;
}

oam_result CArrayPtrsToKeyword::Set(const char* name, const char* value, bool create) noexcept {
    if (CKeyword* keyword = SortedTable::Find(name)) {
        keyword->SetValue(value);
        return OAM_SUCCESS;
    }
    if (!create) return OAMERR_ACCESS_DENIED;
    return InsertNew(name, [name, value]() -> CKeyword* {
        auto* keyword = new (std::nothrow) CKeyword(name, value);
        if (keyword != nullptr && keyword->HasName()) return keyword;
        delete keyword;
        return nullptr;
    });
}

oam_result CArrayPtrsToKeyword::Get(const char* name, char* buffer, unsigned size) const noexcept {
    const CKeyword* keyword = SortedTable::Find(name);
    if (keyword == nullptr) return OAMERR_NOT_FOUND;
    return oam::CopyText(keyword->Value(), buffer, size);
}

oam_result CArrayPtrsToKeyword::Remove(const char* name) noexcept {
    return SortedTable::Remove(name);
}
