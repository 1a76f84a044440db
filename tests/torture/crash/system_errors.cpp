#include "system_errors.h"

#include <errno.h>
#include <sys/syscall.h>

namespace oam::torture {
namespace {

using Kind = Decision::Kind;

struct Row {
    long number;
    const char* name;
    std::vector<int> errors;
    Kind kind = Kind::kFail;
    bool canBeShort = false;
};

const std::vector<Row>& rows() {
    static const std::vector<Row> kRows = {
        {SYS_open, "open", {EACCES, EIO, EMFILE, ENOMEM, ENOSPC, EROFS, EINTR}},
        {SYS_openat, "openat", {EACCES, EIO, EMFILE, ENOMEM, ENOSPC, EROFS, EINTR}},
        {SYS_read, "read", {EIO, EINTR, ENOMEM}},
        {SYS_write, "write", {EIO, ENOSPC, EDQUOT, EINTR}, Kind::kFail, true},
        {SYS_fsync, "fsync", {EIO, ENOSPC, EDQUOT}},
        {SYS_syncfs, "syncfs", {EIO, ENOSPC, EDQUOT}},
        {SYS_rename, "rename", {EACCES, EIO, ENOSPC, EDQUOT, EROFS, ENOMEM}},
        {SYS_unlink, "unlink", {EACCES, EIO, EROFS}},
        {SYS_link, "link", {EACCES, EIO, ENOSPC, EMLINK}},
        {SYS_close, "close", {EIO, ENOSPC, EDQUOT, EINTR}, Kind::kFailAfter},
        {SYS_getdents64, "getdents64", {EIO, ENOMEM}},
        {SYS_stat, "stat", {EACCES, EIO, ENOMEM}},
        {SYS_lstat, "lstat", {EACCES, EIO, ENOMEM}},
        {SYS_fstat, "fstat", {EIO, ENOMEM}},
        {SYS_newfstatat, "newfstatat", {EACCES, EIO, ENOMEM}},
        {SYS_access, "access", {EACCES, EIO}},
        {SYS_mkdir, "mkdir", {EACCES, EIO, ENOSPC, EROFS}},
        {SYS_rmdir, "rmdir", {EACCES, EIO, EROFS}},
#ifndef OAM_SANITIZED  // a sanitizer ends the process when it gets no memory of its own
        {SYS_mmap, "mmap", {ENOMEM, EACCES}},
        {SYS_brk, "brk", {ENOMEM}},
#endif
        {SYS_ftruncate, "ftruncate", {EIO, ENOSPC, EROFS}},
        {SYS_fallocate, "fallocate", {EIO, ENOSPC}},
    };
    return kRows;
}

const Row* rowOf(long number) {
    for (const Row& row : rows())
        if (row.number == number) return &row;
    return nullptr;
}

}  // namespace

std::vector<Decision> FailuresOf(long number) {
    const Row* row = rowOf(number);
    std::vector<Decision> failures;
    if (row == nullptr) return failures;
    for (const int error : row->errors) failures.push_back({row->kind, error});
    if (row->canBeShort) failures.push_back({Kind::kShorten, 0});
    return failures;
}

const char* CallName(long number) {
    const Row* row = rowOf(number);
    return row != nullptr ? row->name : "another call";
}

}  // namespace oam::torture
