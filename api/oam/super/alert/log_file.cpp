#include "log_file.h"

#include <cstring>
#include <ctime>

#include "base/forever.h"
#include "base/text.h"

namespace {

constexpr char kBackupExtension[] = ".bak";

// The path with the extension of its file name replaced by "bak"; a dot in a directory's name does
// not count.
oam_result backupPath(const char* path, char (&backup)[oam::kScanPathSize]) noexcept {
    const char* slash = strrchr(path, '/');
    const char* file = slash != nullptr ? slash + 1 : path;
    const char* dot = strrchr(file, '.');
    const size_t kept = dot != nullptr ? static_cast<size_t>(dot - path) : strlen(path);
    if (kept + sizeof kBackupExtension > sizeof backup) return OAMERR_NOT_ENOUGH_MEMORY;
    memcpy(backup, path, kept);
    memcpy(backup + kept, kBackupExtension, sizeof kBackupExtension);
    return OAM_SUCCESS;
}

}  // namespace

TimeStamp::TimeStamp() noexcept {
    constexpr size_t kYearAndNewline = 6;
    // The text of a second is made once by each thread.
    static thread_local time_t textOf = -1;
    static thread_local char known[sizeof text];
    const time_t now = time(nullptr);
    if (now == textOf) {
        memcpy(text, known, sizeof text);
        return;
    }
    char standard[32] = "";
    if (ctime_r(&now, standard) == nullptr) standard[0] = '\0';
    const size_t length = strlen(standard);
    standard[length > kYearAndNewline ? length - kYearAndNewline : 0] = '\0';
    oam::CopyCut(standard, text, sizeof text);
    memcpy(known, text, sizeof text);
    textOf = now;
}

oam_result LogFile::Begin(const char* path) noexcept {
    KorGuard hold(mutex_);
    if (stream_ != nullptr) return OAMERR_ALREADY_EXISTS;
    char backup[oam::kScanPathSize];
    if (auto failed = backupPath(path, backup)) return failed;
    (void)remove(backup);
    (void)rename(path, backup);
    stream_ = fopen(path, "we");
    if (stream_ == nullptr) return OAMERR_FILE_WRITE_ERROR;
    isOpen_.store(true, std::memory_order_release);
    fprintf(stream_, "%s - Logging start\n", TimeStamp().text);
    (void)fflush(stream_);  // who looks at the file sees that the log is on
    return OAM_SUCCESS;
}

oam_result LogFile::End() noexcept {
    const TimeStamp now;
    KorGuard hold(mutex_);
    if (stream_ == nullptr) return OAMERR_NOT_FOUND;
    fprintf(stream_, "%s - Logging stop\n", now.text);
    const bool closed = fclose(stream_) == 0;
    stream_ = nullptr;
    isOpen_.store(false, std::memory_order_release);
    return closed ? OAM_SUCCESS : OAMERR_FILE_WRITE_ERROR;
}

LogFile& alertLog() noexcept {
    static oam::Forever<LogFile> log;
    return log.Get();
}
