#include "raw_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>

namespace oam::bench {

long readWhole(const char* path, char* buffer, size_t size) {
    const int file = open(path, O_RDONLY | O_CLOEXEC);
    if (file < 0) return -1;
    struct stat status;
    long got = -1;
    if (fstat(file, &status) == 0 && static_cast<size_t>(status.st_size) <= size) {
        got = read(file, buffer, static_cast<size_t>(status.st_size));
    }
    close(file);
    return got;
}

bool replaceDurably(const std::string& path, const std::string& bytes) {
    const std::string beside = path + ".beside";
    const int file = open(beside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (file < 0) return false;
    const bool written =
        write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()) &&
        fsync(file) == 0;
    close(file);
    if (!written || rename(beside.c_str(), path.c_str()) != 0) return false;
    const std::string name = path.substr(0, path.rfind('/'));
    const int directory = open(name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory < 0) return false;
    const bool synced = fsync(directory) == 0;
    close(directory);
    return synced;
}

bool changeTime(const char* path) {
    static long tick = 0;
    const time_t anHourAgo = time(nullptr) - 3600;
    const timespec times[2] = {{anHourAgo, 0}, {anHourAgo, ++tick % 1000000000}};
    return utimensat(AT_FDCWD, path, times, 0) == 0;
}

}  // namespace oam::bench
