// Loaded before the service (LD_PRELOAD), it stands in front of every exported function that
// answers a code, passes the call on and notes the answer.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

#include "code_record.h"

namespace oam::test {
namespace {

// No function takes more than six arguments, all of them in registers for whole numbers.
using Call = unsigned (*)(long, long, long, long, long, long);

CodeRecord* openRecord() noexcept {
    const char* path = std::getenv(kRecordVariable);
    if (path == nullptr) return nullptr;
    const int file = open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (file < 0) return nullptr;
    void* mapped = MAP_FAILED;
    if (ftruncate(file, sizeof(CodeRecord)) == 0)
        mapped = mmap(nullptr, sizeof(CodeRecord), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    return mapped == MAP_FAILED ? nullptr : static_cast<CodeRecord*>(mapped);
}

CodeRecord* const record = openRecord();
Call next[kRecordedCount];

// Before any test can count calls of the system or allocations.
__attribute__((constructor)) void findFunctions() noexcept {
    for (std::size_t i = 0; i < kRecordedCount; ++i)
        next[i] = reinterpret_cast<Call>(dlsym(RTLD_NEXT, kRecordedFunctions[i]));
}

enum Function : std::size_t {
#define OAM_RECORDED(name) k##name,
#include "recorded_functions.inc"
#undef OAM_RECORDED
};

unsigned passOn(Function function, long a, long b, long c, long d, long e, long f) noexcept {
    const unsigned code = next[function](a, b, c, d, e, f);
    if (record != nullptr) record->Note(function, code);
    return code;
}

}  // namespace

#define OAM_RECORDED(name)                                                                   \
    extern "C" __attribute__((visibility("default"))) unsigned name(long a, long b, long c,  \
                                                                    long d, long e, long f); \
    unsigned name(long a, long b, long c, long d, long e, long f) {                          \
        return passOn(k##name, a, b, c, d, e, f);                                            \
    }
#include "recorded_functions.inc"
#undef OAM_RECORDED

}  // namespace oam::test

__attribute__((visibility("default"))) void _exit(int status) { exit(status); }
