// KOR_CMObject: opening, closing and access. Storage is in mobject_file.cpp.

#include "kept_keywords.h"
#include "object_saving.h"
#include "open_objects.h"
#include "zol/zol.h"

namespace {

// A qualifier's entry in the keyword list.
class QualifierName {
  public:
    QualifierName(const char* keyword, const char* qualifier) noexcept {
        oam::OwnedText prefix;
        if (prefix.Join(keyword, "?")) (void)name_.Join(prefix.Get(), qualifier);
    }
    bool IsNull() const noexcept { return name_.IsNull(); }
    const char* Get() const noexcept { return name_.Get(); }

  private:
    oam::OwnedText name_;
};

}  // namespace

KOR_CMObject::KOR_CMObject(const char* name, const char* dataFileName) noexcept {
    isComplete_ = name_.Assign(name) && dataFileName_.Assign(dataFileName);
}

bool KOR_CMObject::SetDataFileName(const char* name) noexcept {
    const bool assigned = name != nullptr && dataFileName_.Assign(name);
    isComplete_ = isComplete_ && assigned;
    return assigned;
}

KOR_CMObject::~KOR_CMObject() { keptKeywords().Remove(this); }

int KOR_CMObject::Compare(const KOR_CMObject& object, const char* name) noexcept {
    return zolStricmp(object.Name(), name);
}

oam_result KOR_CMObject::TrapSetKeyword(unsigned long, const char* name,
                                        const char* value) noexcept {
    return DbSetKeyword(name, value);
}

oam_result KOR_CMObject::TrapGetKeyword(unsigned long, const char* name, char* buffer,
                                        unsigned size) noexcept {
    return DbGetKeyword(name, buffer, size);
}

oam_result KOR_CMObject::TrapSetQualifier(unsigned long, const char* keyword, const char* qualifier,
                                          const char* value) noexcept {
    return DbSetQualifier(keyword, qualifier, value);
}

oam_result KOR_CMObject::TrapGetQualifier(unsigned long, const char* keyword, const char* qualifier,
                                          char* buffer, unsigned size) noexcept {
    return DbGetQualifier(keyword, qualifier, buffer, size);
}

oam_result KOR_CMObject::DbOpen(unsigned long client, unsigned long* handle,
                                unsigned mode) noexcept {
    if (IsOpen()) {
        if (((openMode_ | mode) & OAM_OPEN_WRITE) != 0) return OAMERR_ACCESS_DENIED;
    } else {
        const oam_result loaded = Load();
        if (loaded != OAM_SUCCESS && loaded != OAMERR_NOT_FOUND) {
            DropKept();  // what was read before the failure
            return loaded;
        }
        openMode_ = mode;
    }
    ++openCount_;
    unsigned long opened = 0;
    if (auto failed = openObjects().Insert(client, this, &opened)) {
        (void)DbClose(opened, true);
        return failed;
    }
    *handle = opened;
    return OAM_SUCCESS;
}

oam_result KOR_CMObject::DbClose(unsigned long handle, bool discard,
                                 ObjectSaving* saving) noexcept {
    if (!IsOpen()) return OAMERR_ACCESS_DENIED;
    oam_result result = OAM_SUCCESS;
    if (openCount_ == 1) {
        if (IsReadWrite() && !discard) result = saving != nullptr ? saving->PutInPlace() : Save();
        if (!IsReadWrite() && loadedFrom_.IsKnown()) {
            keptKeywords().Add(this, keywords_.Bytes());
        } else {
            DropKept();
        }
    }
    --openCount_;
    (void)openObjects().Remove(handle);
    return result;
}

oam_result KOR_CMObject::DbGetProviderMode(bool* provider) noexcept {
    if (!IsOpen()) return OAMERR_ACCESS_DENIED;
    if (provider != nullptr) *provider = (openMode_ & OAM_OPEN_PROVIDER) != 0;
    return OAM_SUCCESS;
}

oam_result KOR_CMObject::DbSetProviderMode(bool provider) noexcept {
    if (!IsOpen()) return OAMERR_ACCESS_DENIED;
    openMode_ =
        (openMode_ & ~unsigned{OAM_OPEN_PROVIDER}) | (provider ? unsigned{OAM_OPEN_PROVIDER} : 0u);
    return OAM_SUCCESS;
}

oam_result KOR_CMObject::DbSetKeyword(const char* name, const char* value) noexcept {
    if (!MayWrite()) return OAMERR_ACCESS_DENIED;
    return keywords_.Set(name, value, MayProvide());
}

bool KOR_CMObject::HasValue(const char* keyword) const noexcept {
    int index;
    return keywords_.Find(keyword, &index) && keywords_.At(index)->Value() != nullptr;
}

oam_result KOR_CMObject::DbGetKeyword(const char* name, char* buffer, unsigned size) noexcept {
    if (!IsOpen()) return OAMERR_ACCESS_DENIED;
    return keywords_.Get(name, buffer, size);
}

oam_result KOR_CMObject::DbRemoveKeyword(const char* name) noexcept {
    if (!MayProvide()) return OAMERR_ACCESS_DENIED;
    return keywords_.Remove(name);
}

oam_result KOR_CMObject::DbSetQualifier(const char* keyword, const char* qualifier,
                                        const char* value) noexcept {
    if (!MayProvide()) return OAMERR_ACCESS_DENIED;
    const QualifierName name(keyword, qualifier);
    return name.IsNull() ? OAMERR_NOT_ENOUGH_MEMORY : keywords_.Set(name.Get(), value, true);
}

oam_result KOR_CMObject::DbGetQualifier(const char* keyword, const char* qualifier, char* buffer,
                                        unsigned size) noexcept {
    if (!IsOpen()) return OAMERR_ACCESS_DENIED;
    const QualifierName name(keyword, qualifier);
    return name.IsNull() ? OAMERR_NOT_ENOUGH_MEMORY : keywords_.Get(name.Get(), buffer, size);
}

oam_result KOR_CMObject::DbRemoveQualifier(const char* keyword, const char* qualifier) noexcept {
    if (!MayProvide()) return OAMERR_ACCESS_DENIED;
    const QualifierName name(keyword, qualifier);
    return name.IsNull() ? OAMERR_NOT_ENOUGH_MEMORY : keywords_.Remove(name.Get());
}

oam_result KOR_CMObject::AskToOpen(unsigned long handle, unsigned mode) noexcept {
    const LentHandle lent(handle);
    return TrapOpen(handle, mode);
}

oam_result KOR_CMObject::Open(unsigned long client, unsigned long* handle, unsigned mode) noexcept {
    unsigned long opened;
    if (auto failed = DbOpen(client, &opened, mode)) return failed;
    if (auto refused = AskToOpen(opened, mode)) {
        (void)DbClose(opened, true);
        return refused;
    }
    *handle = opened;
    return OAM_SUCCESS;
}

oam_result KOR_CMObject::SetKeyword(unsigned long handle, const char* name,
                                    const char* value) noexcept {
    if (!MayWrite()) return OAMERR_ACCESS_DENIED;
    const LentHandle lent(handle);
    return TrapSetKeyword(handle, name, value);
}

oam_result KOR_CMObject::GetKeyword(unsigned long handle, const char* name, char* buffer,
                                    unsigned size) noexcept {
    if (!IsOpen()) return OAMERR_ACCESS_DENIED;
    const LentHandle lent(handle);
    return TrapGetKeyword(handle, name, buffer, size);
}

oam_result KOR_CMObject::SetQualifier(unsigned long handle, const char* keyword,
                                      const char* qualifier, const char* value) noexcept {
    return MayProvide() ? TrapSetQualifier(handle, keyword, qualifier, value)
                        : OAMERR_ACCESS_DENIED;
}

oam_result KOR_CMObject::GetQualifier(unsigned long handle, const char* keyword,
                                      const char* qualifier, char* buffer, unsigned size) noexcept {
    if (!IsOpen()) return OAMERR_ACCESS_DENIED;
    const LentHandle lent(handle);
    const oam_result result = TrapGetQualifier(handle, keyword, qualifier, buffer, size);
    return result == OAMERR_NOT_FOUND ? getQualifierDefault(qualifier, buffer, size) : result;
}
