#include "objects/keyword.h"

#include "zol/zol.h"

CKeyword::CKeyword(const char* name, const char* value) noexcept {
    (void)name_.Assign(name);
    (void)value_.Assign(value);
}

int CKeyword::Compare(const CKeyword& keyword, const char* name) noexcept {
    return zolStricmp(keyword.Name(), name);
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
