#include "open_objects.h"

#include <memory>

#include "base/forever.h"

namespace {

unsigned long handleOf(const OpenMObject* record) noexcept {
    return reinterpret_cast<unsigned long>(record);
}

// One for the service: an object's operations run under the manager lock.
constinit const LentHandle* innermostLent = nullptr;

}  // namespace

oam_result CArrayPtrsToOpenMObject::Insert(unsigned long client, KOR_CMObject* object,
                                           unsigned long* handle) noexcept {
    std::unique_ptr<OpenMObject> record(new (std::nothrow) OpenMObject{client, object});
    if (record == nullptr) return OAMERR_NOT_ENOUGH_MEMORY;
    if (auto failed = InsertAt(Count(), record.get())) return failed;
    *handle = handleOf(record.release());
    return OAM_SUCCESS;
}

bool CArrayPtrsToOpenMObject::FindByHMObject(unsigned long handle, int* index) const noexcept {
    for (*index = 0; *index < Count(); ++*index) {
        if (handleOf(At(*index)) == handle) return true;
    }
    return false;
}

oam_result CArrayPtrsToOpenMObject::Remove(unsigned long handle) noexcept {
    int index;
    if (!FindByHMObject(handle, &index)) return OAMERR_NOT_FOUND;
    // A record that stayed would outlive its object.
    RemoveSurely(index);
    return OAM_SUCCESS;
}

void CArrayPtrsToOpenMObject::RemoveAllOf(const KOR_CMObject* object) noexcept {
    for (int i = Count() - 1; i >= 0; --i) {
        if (At(i)->object == object) RemoveSurely(i);
    }
}

CArrayPtrsToOpenMObject& openObjects() noexcept {
    static oam::Forever<CArrayPtrsToOpenMObject> table(0, oam::kTableGrowth);
    return table.Get();
}

KOR_CMObject* getObjectFromHandle(unsigned long handle) noexcept {
    return reinterpret_cast<OpenMObject*>(handle)->object;
}

const char* getNameFromHandle(unsigned long handle) noexcept {
    return getObjectFromHandle(handle)->Name();
}

LentHandle::LentHandle(unsigned long handle) noexcept : handle_(handle), outer_(innermostLent) {
    innermostLent = this;
}

LentHandle::~LentHandle() { innermostLent = outer_; }

bool LentHandle::Is(unsigned long handle) noexcept {
    for (const LentHandle* lent = innermostLent; lent != nullptr; lent = lent->outer_) {
        if (lent->handle_ == handle) return true;
    }
    return false;
}
