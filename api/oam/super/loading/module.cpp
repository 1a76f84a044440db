#include "loading/module.h"

#include <dlfcn.h>

#include "base/path.h"

namespace oam {

oam_result OpenLibrary(bool flag, const char* fileName, void** library) noexcept {
    char path[kPathSize];
    if (auto failed = GetFullPath(flag, "/lib/", path, sizeof path)) return failed;
    const size_t length = strlen(path);
    if (auto failed =
            CopyText(fileName, path + length, static_cast<unsigned>(kPathSize - length))) {
        return failed;
    }
    *library = dlopen(path, RTLD_LAZY);
    if (*library != nullptr) return OAM_SUCCESS;
    const char* error = dlerror();
    DebugOutput("dlopen %s fail: %s\n", path, error != nullptr ? error : "");
    return kLoadFailed;
}

oam_result BindEntries(void* library, const EntryRow* rows, size_t count, void* entries) noexcept {
    for (size_t i = 0; i < count; ++i) {
        void* address = nullptr;
        const unsigned failed = zolGetFunctionAddr(library, rows[i].symbol, &address);
        if (failed != 0) {
            if (rows[i].fallback == nullptr) return oam_result(failed);
            address = reinterpret_cast<void*>(rows[i].fallback);
        }
        memcpy(static_cast<char*>(entries) + rows[i].offset, &address, sizeof address);
    }
    return OAM_SUCCESS;
}

}  // namespace oam
