#include "nameless_files.h"

#include <errno.h>
#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdarg>

namespace {

Refused s_refused = Refused::kNothing;

}  // namespace

NamelessFilesRefused::NamelessFilesRefused(Refused what) { s_refused = what; }
NamelessFilesRefused::~NamelessFilesRefused() { s_refused = Refused::kNothing; }

// In the place of the C library's, for the platform's libraries as well.

extern "C" __attribute__((visibility("default"))) int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const bool hasMode = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    const unsigned mode = hasMode ? va_arg(arguments, unsigned) : 0;
    va_end(arguments);
    if (s_refused == Refused::kNamelessFiles && (flags & O_TMPFILE) == O_TMPFILE) {
        errno = EOPNOTSUPP;
        return -1;
    }
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

extern "C" __attribute__((visibility("default"))) int linkat(int fromDirectory, const char* from,
                                                             int toDirectory, const char* to,
                                                             int flags) noexcept {
    if (s_refused == Refused::kNaming) {
        errno = EACCES;
        return -1;
    }
    return static_cast<int>(syscall(SYS_linkat, fromDirectory, from, toDirectory, to, flags));
}
