#include "log_file.h"

#include <cstdio>
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
    const TimeStamp now;
    KorGuard hold(mutex_);
    if (stream_.IsOpen()) return OAMERR_ALREADY_EXISTS;
    char backup[oam::kScanPathSize];
    if (auto failed = backupPath(path, backup)) return failed;
    (void)remove(backup);
    (void)rename(path, backup);
    if (!stream_.Open(path)) return OAMERR_FILE_WRITE_ERROR;
    isOpen_.store(true, std::memory_order_release);
    (void)PutStamped(now, " - Logging start\n");
    return OAM_SUCCESS;
}

oam_result LogFile::End() noexcept {
    const TimeStamp now;
    KorGuard hold(mutex_);
    if (!stream_.IsOpen()) return OAMERR_NOT_FOUND;
    const bool written = PutStamped(now, " - Logging stop\n");
    const bool closed = stream_.Close();
    isOpen_.store(false, std::memory_order_release);
    return written && closed ? OAM_SUCCESS : OAMERR_FILE_WRITE_ERROR;
}

bool LogFile::PutStamped(const TimeStamp& now, const char* what) noexcept {
    char line[64];
    const int length = snprintf(line, sizeof line, "%s%s", now.text, what);
    return stream_.Put({line, static_cast<size_t>(length)});
}

LogFile& alertLog() noexcept {
    static oam::Forever<LogFile> log;
    return log.Get();
}
