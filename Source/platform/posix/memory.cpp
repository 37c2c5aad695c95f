// Anonymous mappings, aligned so that the kernel can back them with huge pages.

#include "platform/memory.h"

#include <sys/mman.h>

#include <cstdint>

namespace quon {

namespace {

constexpr std::size_t HUGE_PAGE = std::size_t{2} << 20;

std::size_t rounded(std::size_t bytes) { return (bytes + HUGE_PAGE - 1) & ~(HUGE_PAGE - 1); }

}  // namespace

void* allocate_pages(std::size_t bytes) {
    // One huge page more than needed, then the ends outside the alignment go back.
    const std::size_t size = rounded(bytes);
    void* mapped =
        mmap(nullptr, size + HUGE_PAGE, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapped == MAP_FAILED) return nullptr;
    const std::size_t head = -reinterpret_cast<std::uintptr_t>(mapped) & (HUGE_PAGE - 1);
    char* const block = static_cast<char*>(mapped) + head;
    if (head > 0) munmap(mapped, head);
    if (head < HUGE_PAGE) munmap(block + size, HUGE_PAGE - head);
#ifdef MADV_HUGEPAGE
    madvise(block, size, MADV_HUGEPAGE);
#endif
    return block;
}

void release_pages(void* block, std::size_t bytes) {
    if (block) munmap(block, rounded(bytes));
}

}  // namespace quon
