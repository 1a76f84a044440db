#include "report.h"

#include <cstdio>

#include "base/forever.h"
#include "base/path.h"
#include "base/text.h"
#include "korcore/guard.h"

namespace {

struct Report {
    CKorMutex mutex{0, nullptr, 0};
    char path[oam::kPathSize] GUARDED_BY(mutex) = "";
};

Report& report() noexcept {
    static oam::Forever<Report> instance;
    return instance.Get();
}

}  // namespace

oam_result reportInit() noexcept {
    Report& file = report();
    KorGuard hold(file.mutex);
    if (auto failed = GetFullPath(false, "/oam/log/oam.rpt", file.path, sizeof file.path)) {
        return failed;
    }
    CreatePathDirs(file.path);
    (void)remove(file.path);
    return OAM_SUCCESS;
}

oam_result reportAppend(const oam_msg_tag* message) noexcept {
    Report& file = report();
    KorGuard hold(file.mutex);
    FILE* stream = fopen(file.path, "ae");
    if (stream == nullptr) return OAMERR_FILE_WRITE_ERROR;
    bool written = fprintf(stream,
                           "\nCONFIGURATION REPORT - %s\n"
                           "------------------------------\n",
                           oamMessageSource(message)) >= 0;
    written = fputs(oamMessageText(message), stream) >= 0 && written;
    written = fclose(stream) == 0 && written;
    return written ? OAM_SUCCESS : OAMERR_FILE_WRITE_ERROR;
}
