// In the place of the system's mmap, in this program: a page that nobody may touch before and
// behind each shared mapping, so that reading outside is seen as a death.
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdint>

#ifndef OAM_SANITIZED  // a sanitizer must see each mapping where it is

namespace {

void* mapAt(void* address, std::size_t length, int protection, int flags, int file, off_t offset) {
    const long made = syscall(SYS_mmap, address, length, protection, flags, file, offset);
    return made == -1 ? MAP_FAILED : reinterpret_cast<void*>(made);
}

}  // namespace

extern "C" __attribute__((visibility("default"))) void* mmap(void* address, std::size_t length,
                                                             int protection, int flags, int file,
                                                             off_t offset) noexcept {
    constexpr std::size_t kPage = 4096;
    if ((flags & MAP_SHARED) == 0 || (flags & MAP_FIXED) != 0)
        return mapAt(address, length, protection, flags, file, offset);
    const std::size_t pages = (length + kPage - 1) / kPage;
    void* room = mapAt(nullptr, (pages + 2) * kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (room == MAP_FAILED) return MAP_FAILED;
    return mapAt(static_cast<char*>(room) + kPage, length, protection, flags | MAP_FIXED, file,
                 offset);
}

#endif
