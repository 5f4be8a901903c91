#include "kaldo/view/HugePages.h"

#include <cstdint>

#include <sys/mman.h>

namespace kaldo::view {

void adviseHugePages(const void* data, std::size_t bytes)
{
    constexpr std::uintptr_t kHugePage = 2u << 20;
    const auto begin = reinterpret_cast<std::uintptr_t>(data);
    const std::uintptr_t first = (begin + kHugePage - 1) & ~(kHugePage - 1);
    const std::uintptr_t last = (begin + bytes) & ~(kHugePage - 1);
    if (last > first)
        madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
}

}  // namespace kaldo::view
