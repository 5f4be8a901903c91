#include "kaldo/view/HugePages.h"

#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>

namespace kaldo::view {

namespace {

// Calls madvise with advice on the whole pages of size page inside the
// buffer.
void adviseWholePages(const void* data, std::size_t bytes, std::uintptr_t page, int advice)
{
    const auto begin = reinterpret_cast<std::uintptr_t>(data);
    const std::uintptr_t first = (begin + page - 1) & ~(page - 1);
    const std::uintptr_t last = (begin + bytes) & ~(page - 1);
    if (last > first)
        madvise(reinterpret_cast<void*>(first), last - first, advice);
}

}  // namespace

void adviseHugePages(const void* data, std::size_t bytes)
{
    adviseWholePages(data, bytes, 2u << 20, MADV_HUGEPAGE);
}

void releasePages(const void* data, std::size_t bytes)
{
    adviseWholePages(data, bytes, std::uintptr_t(sysconf(_SC_PAGESIZE)), MADV_DONTNEED);
}

}  // namespace kaldo::view
