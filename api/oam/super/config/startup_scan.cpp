// The start-up scan: every data file of the configuration directory becomes an object.
//
// A file that cannot be opened stops the start; one that can be opened but not read to its end is
// renamed to "*.bak" and told in an alert, unless it is not the file that is at fault. Before the
// scan, what a death left behind is put right: an unfinished import is rolled back and files that
// were not finished are removed.

#include <errno.h>

#include <cstdio>
#include <cstring>

#include "base/path.h"
#include "data_file_image.h"
#include "doors/alert.h"
#include "durable_file.h"
#include "import_aside.h"
#include "loading/listing.h"
#include "mobjmgr.h"
#include "xmo_reader.h"
#include "xmo_writer.h"

using oam::kPathSize;

namespace {

constexpr char kDataFileExtension[] = ".xmo";
constexpr char kSource[] = "Config";

oam_result joinPath(const char* directory, const char* fileName, char (&path)[kPathSize]) noexcept {
    const int length = snprintf(path, sizeof path, "%s/%s", directory, fileName);
    return length < int{kPathSize} ? OAM_SUCCESS : OAMERR_NOT_ENOUGH_MEMORY;
}

void clearFiles(const char* directory, const char* suffix) noexcept {
    oam::FileListing listing;
    if (!listing.Open(directory)) return;
    while (const char* fileName = listing.Next(suffix)) {
        const oam::JoinedPath path(directory, fileName);
        (void)remove(path.Get());
    }
}

// A read that failed is tried once more: it tells nothing of the file's content.
bool reachFirstKeyword(CXmlImport& reader, const char* path) noexcept {
    CXmlImport::eTokenType kind = reader.GetNextKeyword();
    if (kind == CXmlImport::kReadError) {
        (void)reader.Close();
        if (reader.Open(path, kObjectRoot) == 0) kind = reader.GetNextKeyword();
    }
    return kind == CXmlImport::kText;
}

// Whether a second look, which needs no memory, finds nothing wrong with an object's file. Then
// memory ran out or the disk failed for a moment, and the object must not be dropped for that.
bool isSound(const char* path, const char* object) noexcept {
    CXmlImport reader;
    if (reader.Open(path, kObjectRoot) != 0) return true;
    CXmlImport::eTokenType kind = reader.GetNextKeyword();
    while (kind == CXmlImport::kText && strcmp(reader.ObjectName(), object) == 0) {
        kind = reader.GetNextKeyword();
    }
    return kind == CXmlImport::kEndOfFile;
}

}  // namespace

oam_result CMObjMgr::Init() noexcept {
    char directory[kPathSize];
    if (auto failed = GetFullPath(false, "/oam/cfg/", directory, sizeof directory)) return failed;
    CreatePathDirs(directory);
    directory[strlen(directory) - 1] = '\0';
    // Better no start than one on half a configuration.
    if (!rollBackImport(directory)) return OAMERR_FILE_READ_ERROR;
    clearFiles(directory, kBesideSuffix);
    clearFiles(directory, kCreationSuffix);
    oam_result result = ScanDataFiles(directory);
    if (result != OAM_SUCCESS) Exit();
    return result;
}

oam_result CMObjMgr::ScanDataFiles(const char* directory) noexcept {
    oam::FileListing listing;
    if (!listing.Open(directory)) {
        // New objects would take the files of those that were not seen.
        if (oam::IsOutOfMeans(errno)) return OAMERR_FILE_READ_ERROR;
        DebugOutput("Directory for managed object data files \"%s\" not found.\n", directory);
        return OAM_SUCCESS;
    }
    const char* fileName = listing.Next(kDataFileExtension);
    if (listing.HasFailed()) return OAMERR_FILE_READ_ERROR;
    if (fileName == nullptr) {
        DebugOutput("No managed object data files found.\n");
        return EnsureSupervisor();
    }
    oam::ListingHeader("\nListing of managed object data files found:\n");
    for (; fileName != nullptr; fileName = listing.Next(kDataFileExtension)) {
        char path[kPathSize];
        if (auto failed = joinPath(directory, fileName, path)) return failed;
        const oam_result loaded = LoadDataFile(path, fileName);
        if (loaded != OAM_SUCCESS) {
            DebugOutput("\n");
            return loaded;
        }
    }
    DebugOutput("\n");
    return listing.HasFailed() ? OAMERR_FILE_READ_ERROR : EnsureSupervisor();
}

// 0 also when the file was rejected; a failure stops the scan.
oam_result CMObjMgr::LoadDataFile(const char* path, const char* fileName) noexcept {
    DataFileImage image;
    if (image.Open(path)) {
        oam::AnnounceFile(kSource, path, fileName, image.Status());
    } else {
        oam::AnnounceFile(kSource, path, fileName);
    }
    bool isWhole = false;
    bool loaded = false;
    if (auto failed = LoadWhole(&image, path, fileName, &isWhole, &loaded)) return failed;
    if (!isWhole) {
        if (auto failed = LoadInSteps(path, fileName, &loaded)) return failed;
    }
    if (loaded) (void)AlertNotify(OAMEVN_ALERT, OAM_INFORMATION, kSource, "%s DONE", fileName);
    return OAM_SUCCESS;
}

// Name and check from one reading, for a file as the writer writes it; any other is not judged.
oam_result CMObjMgr::LoadWhole(DataFileImage* image, const char* path, const char* fileName,
                               bool* isWhole, bool* loaded) noexcept {
    if (!image->Read()) return OAM_SUCCESS;
    const oam_result inserted = Insert(image->ObjectName(), fileName);
    if (inserted == OAMERR_ALREADY_EXISTS) return OAM_SUCCESS;  // found and told in steps, too
    if (inserted != OAM_SUCCESS) return inserted;
    KOR_CMObject* object = Find(image->ObjectName());
    *isWhole = *loaded = true;
    // Some kinds of object choose their file, or spell their name, themselves.
    if (strcmp(object->Name(), image->ObjectName()) != 0 ||
        strcmp(object->DataFileName(), fileName) != 0) {
        return CheckLoading(path, fileName, object->Name(), loaded);
    }
    object->KeepFrom(image);
    return OAM_SUCCESS;
}

// For every other file: its first keyword, and then all of it.
oam_result CMObjMgr::LoadInSteps(const char* path, const char* fileName, bool* loaded) noexcept {
    CXmlImport reader;
    if (reader.Open(path, kObjectRoot) != 0) return OAMERR_FILE_READ_ERROR;
    if (!reachFirstKeyword(reader, path)) return RejectDataFile(path, fileName, nullptr);
    const char* name = reader.ObjectName();
    if (!isObjectName(name)) return RejectDataFile(path, fileName, nullptr);
    const oam_result inserted = Insert(name, fileName);
    if (inserted == OAMERR_ALREADY_EXISTS) return RejectDataFile(path, fileName, nullptr);
    if (inserted != OAM_SUCCESS) return inserted;
    const char* registered = Find(name)->Name();
    const bool isClosed = reader.Close() == 0;
    if (!isClosed && !isSound(path, registered)) return RejectDataFile(path, fileName, registered);
    *loaded = true;
    return CheckLoading(path, fileName, registered, loaded);
}

oam_result CMObjMgr::CheckLoading(const char* path, const char* fileName, const char* object,
                                  bool* loaded) noexcept {
    if (TryToLoad(object) != OAMERR_FILE_READ_ERROR) return OAM_SUCCESS;
    if (!isSound(path, object)) {
        *loaded = false;
        return RejectDataFile(path, fileName, object);
    }
    const oam_result opened = TryToLoad(object);
    return opened == OAMERR_FILE_READ_ERROR ? opened : OAM_SUCCESS;
}

// A full load as a check.
oam_result CMObjMgr::TryToLoad(const char* object) noexcept {
    unsigned long handle;
    const oam_result opened = DbOpenObject(OAM_INTERNAL_CLIENT, object, &handle, OAM_OPEN_READ);
    if (opened == OAM_SUCCESS) (void)DbCloseObject(handle);
    return opened;
}

// `object` names what was inserted for the file, or is null.
oam_result CMObjMgr::RejectDataFile(const char* path, const char* fileName,
                                    const char* object) noexcept {
    const auto withoutExtension = [](const char* name) {
        return std::string_view(name, static_cast<size_t>(oam::LastExtension(name) - name));
    };
    oam::OwnedText newPath;
    oam::OwnedText newName;
    if (!newPath.Join(withoutExtension(path), ".bak") ||
        !newName.Join(withoutExtension(fileName), ".bak")) {
        return OAMERR_NOT_ENOUGH_MEMORY;
    }
    (void)remove(newPath.Get());
    (void)rename(path, newPath.Get());
    (void)AlertNotify(OAMEVN_ALERT, OAM_ERROR, "Supervisor",
                      "Rejecting invalid object data file \"%s\", saving to \"%s\".", fileName,
                      newName.Get());
    if (object != nullptr) (void)Remove(object);
    return OAM_SUCCESS;
}
