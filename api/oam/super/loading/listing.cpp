#include "loading/listing.h"

#include <errno.h>
#include <sys/stat.h>

#include <ctime>

#include "base/text.h"
#include "doors/alert.h"
#include "oam/entry.h"

namespace oam {

namespace {

// Many files of a directory were written in one second; its text is made once by each thread.
const char* timeText(time_t time) noexcept {
    static thread_local time_t known = 0;
    static thread_local char text[32] = "";
    if (*text == '\0' || time != known) {
        known = time;
        if (ctime_r(&time, text) == nullptr) text[0] = '\0';
    }
    return text;
}

}  // namespace

FileListing::~FileListing() {
    if (directory_ != nullptr) closedir(directory_);
}

bool FileListing::Open(const char* directory) noexcept {
    directory_ = opendir(directory);
    return directory_ != nullptr;
}

const char* FileListing::Next(const char* extension) noexcept {
    errno = 0;
    while (const dirent* entry = readdir(directory_)) {
        if (EqualNoCase(LastExtension(entry->d_name), extension)) return entry->d_name;
        errno = 0;
    }
    hasFailed_ = errno != 0;
    return nullptr;
}

void ListingHeader(const char* title) noexcept {
    DebugOutput("%s", title);
    DebugOutput("\nFILENAME %6c SIZE  DATE %20c ATTR\n", ' ', ' ');
    DebugOutput("-------- %6c ----  ---- %20c ----\n", ' ', ' ');
}

void AnnounceFile(const char* source, const char* path, const char* fileName) noexcept {
    struct stat status;
    if (stat(path, &status) != 0) {
        DebugOutput("Can't get file info for \"%s\"\n", path);
        return;
    }
    AnnounceFile(source, path, fileName, status);
}

void AnnounceFile(const char* source, const char* path, const char* fileName,
                  const struct stat& status) noexcept {
    const long size = static_cast<long>(status.st_size);
    const char* modified = timeText(status.st_mtime);
    DebugOutput("%-12s %7ld  %.24s  ", fileName, size, modified);
    (void)AlertNotify(OAMEVN_ALERT, OAM_INFORMATION, source, "=> Loading %s (%ld %.24s)  ", path,
                      size, modified);
    DebugOutput("%s", (status.st_mode & S_IRUSR) != 0 ? "R" : " ");
    DebugOutput("%s", (status.st_mode & S_IWUSR) != 0 ? "W" : " ");
    DebugOutput("%s", (status.st_mode & S_IXUSR) != 0 ? "X" : " ");
    DebugOutput("\n");
}

}  // namespace oam
