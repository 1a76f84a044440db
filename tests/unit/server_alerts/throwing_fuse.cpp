#include "throwing_fuse.h"

#include <cstdlib>
#include <new>

namespace {

// 0: no fuse. Otherwise so many allocations from now the failing one comes.
thread_local int remaining = 0;
thread_local bool blown = false;

}  // namespace

namespace oam::server {

ThrowingFuse::ThrowingFuse(int nth) noexcept {
    remaining = nth;
    blown = false;
}

ThrowingFuse::~ThrowingFuse() { remaining = 0; }

bool ThrowingFuse::HasBlown() const noexcept { return blown; }

}  // namespace oam::server

void* operator new(std::size_t size) {
    if (remaining > 0 && --remaining == 0) {
        blown = true;
        throw std::bad_alloc();
    }
    void* const memory = std::malloc(size != 0 ? size : 1);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
