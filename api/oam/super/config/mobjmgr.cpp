#include "mobjmgr.h"

#include "base/forever.h"
#include "objects/kinds.h"
#include "open_objects.h"

CMObjMgr& objMgr() noexcept {
    static oam::Forever<CMObjMgr> manager;
    return manager.Get();
}

oam_result CMObjMgr::EnsureSupervisor() noexcept {
    const oam_result result = CreateObject("Supervisor", nullptr);
    return result == OAMERR_ALREADY_EXISTS ? InitKeywords("Supervisor", nullptr) : result;
}

oam_result CMObjMgr::WriteStandardKeywords(unsigned long handle, const char* name,
                                           const char* product) noexcept {
    KOR_CMObject* object = getObjectFromHandle(handle);
    if (auto failed = DbSetKeyword(handle, "Name", name)) return failed;
    if (auto failed = object->DbSetQualifier("Name", "Description", "name of managed object")) {
        return failed;
    }
    if (auto failed = object->DbSetQualifier("Name", "Type", "Object")) return failed;
    if (product == nullptr) return OAM_SUCCESS;
    if (auto failed = DbSetKeyword(handle, "Product", product)) return failed;
    return object->DbSetQualifier("Product", "Type", "String");
}

oam_result CMObjMgr::InitKeywords(const char* name, const char* product) noexcept {
    unsigned long handle;
    if (auto failed = DbOpenObject(OAM_INTERNAL_CLIENT, name, &handle,
                                   unsigned{OAM_OPEN_WRITE} | unsigned{OAM_OPEN_PROVIDER})) {
        return failed;
    }
    const oam_result written = WriteStandardKeywords(handle, name, product);
    if (written != OAM_SUCCESS) {
        (void)DbCloseObject(handle);
        return written;
    }
    // Kept: an object that refuses here stays open.
    if (auto refused = Find(name)->InitKeywords()) return refused;
    return DbCloseObject(handle);
}

oam_result CMObjMgr::CreateObject(const char* name, const char* product) noexcept {
    if (auto failed = Insert(name, nullptr)) return failed;
    (void)RemoveFile(name);  // a stale file of the same name
    Find(name)->BeginCreation();
    oam_result result = InitKeywords(name, product);
    KOR_CMObject* object = Find(name);
    if (object == nullptr) return result != OAM_SUCCESS ? result : OAMERR_NOT_FOUND;
    if (result == OAM_SUCCESS) result = object->TrapCreate(name, product);
    object = Find(name);  // the plug-in may have removed it
    if (object == nullptr) return result != OAM_SUCCESS ? result : OAMERR_NOT_FOUND;
    if (result == OAM_SUCCESS) result = object->EndCreation();
    if (result != OAM_SUCCESS && RemoveCreated(name) != OAM_SUCCESS) (void)object->EndCreation();
    return result;
}

oam_result CMObjMgr::CreateObjectByProduct(const char* product, char* nameBuffer,
                                           unsigned size) noexcept {
    if (auto failed = CreateUniqueName(product, nameBuffer, size)) return failed;
    return CreateObject(nameBuffer, product);
}

oam_result CMObjMgr::DeleteObject(const char* name) noexcept {
    const oam_result result = name != nullptr ? Remove(name) : RemoveAllBoards();
    if (result == OAM_SUCCESS) return result;
    if (name != nullptr) {
        DebugOutput("Fail to Delete Object %s with error code 0x%x.\n", name,
                    static_cast<unsigned>(result));
    } else {
        DebugOutput("Fail to Delete All Objects with error code 0x%x.\n",
                    static_cast<unsigned>(result));
    }
    return result;
}
