// Export and import of the whole configuration.

#include <sys/stat.h>

#include <cstdio>
#include <utility>

#include "base/last_failure.h"
#include "base/path.h"
#include "doors/board.h"
#include "durable_file.h"
#include "import_aside.h"
#include "mobjmgr.h"
#include "object_saving.h"
#include "open_objects.h"
#include "xmo_reader.h"
#include "xmo_writer.h"

namespace {

// A device or a link given as the target of an export is not ours to remove.
void removeRegularFile(const char* path) noexcept {
    struct stat status;
    if (lstat(path, &status) == 0 && S_ISREG(status.st_mode)) (void)remove(path);
}

oam_result dataDirectory(char (&directory)[oam::kPathSize]) noexcept {
    return GetFullPath(false, "/oam/cfg", directory, sizeof directory);
}

// A receiver, or a plug-in's entry, that asks for an import in the middle of another operation,
// which would go on with objects and plug-ins that are gone. Of another import it would lose the
// files that are set aside.
bool isWithinAnother() noexcept { return oam::ManagerMutex::Depth() > 1; }

}  // namespace

oam_result CMObjMgr::Export(const char* fileName) noexcept {
    DurableFile file;
    if (auto failed = file.Begin(fileName)) return failed;
    const oam_result written = WriteExport(&file);
    if (written != OAM_SUCCESS && !file.IsBeside()) removeRegularFile(fileName);
    return file.Finish(written);
}

oam_result CMObjMgr::WriteExport(DurableFile* file) noexcept {
    CXmlExport writer;
    if (writer.Open(file->Target(), kExportRoot, file->TakeDescriptor()) != 0) {
        return OAMERR_FILE_WRITE_ERROR;
    }
    oam_result result = OAM_SUCCESS;
    for (int i = 0; result == OAM_SUCCESS && i < Count(); ++i) {
        KOR_CMObject* object = At(i);
        // For a receiver in the middle of a creation: a board that has no number yet would make the
        // import of the file fail.
        if (object->IsBeingCreated()) continue;
        unsigned long handle;
        result = object->DbOpen(OAM_INTERNAL_CLIENT, &handle, OAM_OPEN_PROVIDER);
        if (result != OAM_SUCCESS) break;
        result = object->Save(writer);
        const oam_result closed = object->DbClose(handle, false);
        if (result == OAM_SUCCESS) result = closed;
    }
    const int closed = file->IsBeside() ? writer.CloseSynced() : writer.Close();
    return result == OAM_SUCCESS && closed != 0 ? OAMERR_FILE_WRITE_ERROR : result;
}

oam_result CMObjMgr::Import(const char* fileName) noexcept {
    if (AnyOpen() || isWithinAnother()) return OAMERR_ACCESS_DENIED;
    CXmlImport reader;
    if (reader.Open(fileName, kExportRoot) != 0) return OAMERR_NOT_FOUND;
    char directory[oam::kPathSize];
    if (auto failed = dataDirectory(directory)) return failed;

    // First: when this fails, a full disk is enough, no board has been stopped.
    if (auto failed = setDataFilesAside(directory)) return failed;
    (void)_oamStopBoard(nullptr, OAM_SYNCHRONIZED);
    BoardCommExit();
    // An old file that stays would come back beside the new objects.
    oam_result result =
        RemoveAll(true) ? ReadTogether(&reader, directory) : OAMERR_FILE_WRITE_ERROR;
    if (result == OAM_SUCCESS) result = EnsureSupervisor();
    if (result == OAM_SUCCESS) result = BoardCommInit();
    if (result == OAM_SUCCESS) {
        if (dropDataFilesAside(directory)) return OAM_SUCCESS;
        BoardCommExit();
        result = OAMERR_FILE_WRITE_ERROR;
    }
    (void)RemoveAll(true);
    keepDataFilesAside(directory);
    (void)Init();
    (void)BoardCommInit();
    return result;
}

// Until the import counts, a restart brings the old files back: it is enough that the new ones are
// durable then, all at once.
oam_result CMObjMgr::ReadTogether(CXmlImport* reader, const char* directory) noexcept {
    {
        const ObjectSaving::Together together;
        if (auto failed = ReadImport(reader)) return failed;
    }
    return syncAll(directory) ? OAM_SUCCESS : OAMERR_FILE_WRITE_ERROR;
}

oam_result CMObjMgr::ReadImport(CXmlImport* reader) noexcept {
    oam::OwnedText object;
    unsigned long handle = 0;
    oam_result result = OAM_SUCCESS;
    CXmlImport::eTokenType kind;
    while (result == OAM_SUCCESS && (kind = reader->GetNextKeyword()) == CXmlImport::kText) {
        if (!isObjectName(reader->ObjectName())) {
            result = OAMERR_FILE_READ_ERROR;
        } else if (object.IsNull() || strcmp(object.Get(), reader->ObjectName()) != 0) {
            if (handle != 0) result = DbCloseObject(std::exchange(handle, 0));
            if (result == OAM_SUCCESS) result = Insert(reader->ObjectName(), nullptr);
            if (result == OAM_SUCCESS) {
                result = DbOpenObject(OAM_INTERNAL_CLIENT, reader->ObjectName(), &handle,
                                      unsigned{OAM_OPEN_WRITE} | unsigned{OAM_OPEN_PROVIDER});
            }
            if (!object.Assign(reader->ObjectName())) result = OAMERR_NOT_ENOUGH_MEMORY;
        }
        if (result == OAM_SUCCESS) {
            result = DbSetKeyword(handle, reader->Keyword(), reader->Value());
        }
        if (result == OAM_SUCCESS && !getObjectFromHandle(handle)->HasValue(reader->Keyword())) {
            result = OAMERR_NOT_ENOUGH_MEMORY;
        }
    }
    if (result == OAM_SUCCESS && kind != CXmlImport::kEndOfFile) result = OAMERR_FILE_READ_ERROR;
    if (reader->Close() != 0) result = OAMERR_FILE_READ_ERROR;
    if (handle == 0) return result;
    if (result == OAM_SUCCESS) return DbCloseObject(handle);
    (void)getObjectFromHandle(handle)->DbClose(handle, true);
    return result;
}
