#pragma once
// Large blocks of memory straight from the system, and the processor's caches.

#include <cstddef>

namespace quon {

// A zero-filled block, on large pages where the system offers them (a random access into a big
// table then misses one cache less); nullptr when memory is short.
void* allocate_pages(std::size_t bytes);
void release_pages(void* block, std::size_t bytes);

// A hint to bring a cache line in before it is read.
inline void prefetch(const void* address) {
#if defined(__GNUC__)
    __builtin_prefetch(address);
    // Without a visible effect GCC drops the calls of a function that does no more than prefetch.
    __asm__ volatile("");
#else
    static_cast<void>(address);
#endif
}

}  // namespace quon
