#include "memory_fuse.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <new>

// Below, the C library's own; a sanitizer's must be the first of all, so that with one only
// `new (std::nothrow)` and the start of a thread can fail.
#ifdef OAM_SANITIZED
#define BELOW(function) std::function
#else
#define BELOW(function) __libc_##function
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void __libc_free(void* memory);
}
#endif

namespace {

struct State {
    std::size_t nth = 0;
    std::size_t requests = 0;
    bool armed = false;
    bool fromThereOn = false;
};

thread_local State fuse;
std::atomic<long> liveBlocks{0};

void* counted(void* memory) noexcept {
    if (memory != nullptr) liveBlocks.fetch_add(1, std::memory_order_relaxed);
    return memory;
}

void* none() noexcept {
    errno = ENOMEM;
    return nullptr;
}

void* allocate(std::size_t size) noexcept {
    return oam::torture::MemoryFuse::FailsNow() ? none() : counted(BELOW(malloc)(size));
}

void release(void* memory) noexcept {
    if (memory != nullptr) liveBlocks.fetch_sub(1, std::memory_order_relaxed);
    BELOW(free)(memory);
}

void* allocateSurely(std::size_t size) {
    void* memory = counted(BELOW(malloc)(size != 0 ? size : 1));
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

}  // namespace

namespace oam::torture {

MemoryFuse::MemoryFuse(std::size_t nth, Failing how) noexcept {
    fuse = {nth, 0, true, how == Failing::kFromThereOn};
}

MemoryFuse::~MemoryFuse() { fuse.armed = false; }

std::size_t MemoryFuse::Requests() const noexcept { return fuse.requests; }

bool MemoryFuse::FailsNow() noexcept {
    if (!fuse.armed) return false;
    ++fuse.requests;
    if (fuse.nth == 0) return false;
    return fuse.fromThereOn ? fuse.requests >= fuse.nth : fuse.requests == fuse.nth;
}

long LiveBlocks() noexcept { return liveBlocks; }

}  // namespace oam::torture

#ifndef OAM_SANITIZED

// Before the libraries' own, for every library of the process.
#define IN_FRONT extern "C" __attribute__((visibility("default")))

using oam::torture::MemoryFuse;

IN_FRONT void* malloc(std::size_t size) noexcept { return allocate(size); }

IN_FRONT void* calloc(std::size_t count, std::size_t size) noexcept {
    return MemoryFuse::FailsNow() ? none() : counted(BELOW(calloc)(count, size));
}

IN_FRONT void* realloc(void* memory, std::size_t size) noexcept {
    if (MemoryFuse::FailsNow()) return none();
    void* moved = BELOW(realloc)(memory, size);
    return memory == nullptr ? counted(moved) : moved;
}

IN_FRONT void free(void* memory) noexcept { release(memory); }

#endif

void* operator new(std::size_t size) { return allocateSurely(size); }
void* operator new[](std::size_t size) { return allocateSurely(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return allocate(size); }
void operator delete(void* memory) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { release(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { release(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { release(memory); }
