// CMObjMgr: the configuration database as a whole, the registry with the operations above it.
//
// There is one, and one manager lock (base/database_lock.h) that serialises it; every operation
// here runs under that lock, which is re-entrant because the operations call entry points that take
// it.
#pragma once

#include "base/database_lock.h"
#include "registry.h"

class CXmlImport;

class CMObjMgr : public CArrayPtrsToMObject {
  public:
    CMObjMgr() noexcept : CArrayPtrsToMObject(0, oam::kTableGrowth) {}

    // Loads every data file of "/oam/cfg/"; spoiled ones are set aside as "*.bak". Makes sure that
    // the Supervisor exists. OAMERR_FILE_READ_ERROR when a data file cannot even be opened.
    // Kept: without the directory the result is 0 and there is no Supervisor.
    oam_result Init() noexcept;
    // Destroys every object and keeps the files.
    void Exit() noexcept { (void)RemoveAll(false); }

    oam_result Export(const char* fileName) noexcept;
    oam_result Import(const char* fileName) noexcept;

    // Writes the standard keywords and lets the object add its own; product may be null.
    oam_result InitKeywords(const char* name, const char* product) noexcept;
    oam_result CreateObject(const char* name, const char* product) noexcept;
    oam_result CreateObjectByProduct(const char* product, char* nameBuffer, unsigned size) noexcept;
    // Every board when name is null.
    oam_result DeleteObject(const char* name) noexcept;
    // Every detected board when name is null or empty.
    oam_result AddDetectedBoard(const char* name) noexcept;

  private:
    oam_result EnsureSupervisor() noexcept;
    oam_result WriteStandardKeywords(unsigned long handle, const char* name,
                                     const char* product) noexcept;
    oam_result ScanDataFiles(const char* directory) noexcept;
    oam_result LoadDataFile(const char* path, const char* fileName) noexcept;
    // Both leave *loaded false when the file was rejected, or (the first) is for the second.
    oam_result LoadWhole(DataFileImage* image, const char* path, const char* fileName,
                         bool* isWhole, bool* loaded) noexcept;
    oam_result LoadInSteps(const char* path, const char* fileName, bool* loaded) noexcept;
    oam_result CheckLoading(const char* path, const char* fileName, const char* object,
                            bool* loaded) noexcept;
    oam_result TryToLoad(const char* object) noexcept;
    oam_result RejectDataFile(const char* path, const char* fileName, const char* object) noexcept;
    oam_result WriteExport(DurableFile* file) noexcept;
    oam_result ReadTogether(CXmlImport* reader, const char* directory) noexcept;
    oam_result ReadImport(CXmlImport* reader) noexcept;
};

CMObjMgr& objMgr() noexcept;
