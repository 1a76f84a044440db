#include "support/allocation_fuse.h"

#include <cstdlib>
#include <new>

namespace {

// 0: no fuse. Otherwise so many allocations from now the failing one comes.
thread_local int remaining = 0;
thread_local bool blown = false;

bool blowsNow() noexcept {
    if (remaining == 0 || --remaining > 0) return false;
    blown = true;
    return true;
}

void* allocateOrThrow(std::size_t size) {
    void* memory = std::malloc(size != 0 ? size : 1);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

void* allocateOrNull(std::size_t size) noexcept {
    return blowsNow() ? nullptr : std::malloc(size != 0 ? size : 1);
}

}  // namespace

namespace oam::test {

AllocationFuse::AllocationFuse(int nth) noexcept {
    remaining = nth;
    blown = false;
}

AllocationFuse::~AllocationFuse() { remaining = 0; }

bool AllocationFuse::HasBlown() const noexcept { return blown; }

}  // namespace oam::test

void* operator new(std::size_t size) { return allocateOrThrow(size); }
void* operator new[](std::size_t size) { return allocateOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocateOrNull(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocateOrNull(size);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { std::free(memory); }

extern "C" void* __real_calloc(std::size_t count, std::size_t size);
// Visible, since the run-time library of a sanitizer calls it too.
extern "C" __attribute__((visibility("default"))) void* __wrap_calloc(std::size_t count,
                                                                      std::size_t size);
extern "C" void* __wrap_calloc(std::size_t count, std::size_t size) {
    return blowsNow() ? nullptr : __real_calloc(count, size);
}
