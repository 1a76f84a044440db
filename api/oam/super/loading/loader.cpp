#include "loading/loader.h"

#include <errno.h>

#include <cstdio>

#include "base/path.h"
#include "base/text.h"
#include "doors/alert.h"
#include "doors/config.h"
#include "loading/listing.h"
#include "oam/entry.h"

namespace oam {

oam_result ModuleLoader::LoadAll() noexcept {
    ListingHeader(texts_.title);
    char directory[kScanPathSize];
    if (auto failed = GetFullPath(texts_.flag, "/lib", directory, sizeof directory)) return failed;
    FileListing listing;
    if (!listing.Open(directory)) {
        if (IsOutOfMeans(errno)) return OAMERR_FILE_READ_ERROR;
        DebugOutput(texts_.noDirectory, directory);
        return OAM_SUCCESS;
    }
    const char* fileName = listing.Next(texts_.extension);
    if (fileName == nullptr) {
        if (listing.HasFailed()) return OAMERR_FILE_READ_ERROR;
        DebugOutput("%s", texts_.noFiles);
        return OAM_SUCCESS;
    }
    oam_result result = OAM_SUCCESS;
    for (; result == OAM_SUCCESS && fileName != nullptr;
         fileName = listing.Next(texts_.extension)) {
        char path[kScanPathSize];
        const int length = snprintf(path, sizeof path, "%s/%s", directory, fileName);
        const bool fits = length < int{kScanPathSize};
        if (!fits && !texts_.tellsLongPaths) return OAMERR_NOT_ENOUGH_MEMORY;
        result = fits ? LoadFile(path, fileName) : OAMERR_NOT_ENOUGH_MEMORY;
    }
    if (result == OAM_SUCCESS && listing.HasFailed()) result = OAMERR_FILE_READ_ERROR;
    if (result != OAM_SUCCESS) {
        (void)AlertNotify(OAMEVN_ALERT, OAM_ERROR, texts_.source, "!! FAILED !! (0x%x)",
                          static_cast<unsigned>(result));
        (void)ExitAll();
    }
    DebugOutput("\n");
    return result;
}

oam_result ModuleLoader::LoadFile(const char* path, const char* fileName) noexcept {
    AnnounceFile(texts_.source, path, fileName);
    if (auto failed = Load(fileName)) return failed;
    // An object of that name came from its data file, or from an earlier start.
    const oam_result created = CreateObject(fileName, nullptr);
    if (created != OAM_SUCCESS && created != OAMERR_ALREADY_EXISTS) return created;
    if (auto failed = Init(fileName)) return failed;
    (void)AlertNotify(OAMEVN_ALERT, OAM_INFORMATION, texts_.source, "%s DONE", fileName);
    return OAM_SUCCESS;
}

}  // namespace oam
