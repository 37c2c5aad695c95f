#pragma once
// A hint to bring a cache line in before it is read.

namespace quon {

inline void prefetch(const void* address) {
#if defined(__GNUC__)
    __builtin_prefetch(address);
#else
    static_cast<void>(address);
#endif
}

}  // namespace quon
