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
    fprintf(stream,
            "\nCONFIGURATION REPORT - %s\n"
            "------------------------------\n",
            oamMessageSource(message));
    fputs(oamMessageText(message), stream);
    const bool written = ferror(stream) == 0;
    const bool closed = fclose(stream) == 0;
    return written && closed ? OAM_SUCCESS : OAMERR_FILE_WRITE_ERROR;
}
