#include "AllocationMeter.h"

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> inUse{0};
std::atomic<std::size_t> highest{0};
std::atomic<std::size_t> allocations{0};
std::atomic<std::size_t> largestAllowed{SIZE_MAX};

void* counted(std::size_t size)
{
    if (size > largestAllowed.load())
        throw std::bad_alloc();
    void* p = std::malloc(size == 0 ? 1 : size);
    if (!p)
        throw std::bad_alloc();
    ++allocations;
    const std::size_t now = inUse += malloc_usable_size(p);
    std::size_t seen = highest.load();
    while (now > seen && !highest.compare_exchange_weak(seen, now)) {
    }
    return p;
}

void uncounted(void* p) noexcept
{
    if (!p)
        return;
    inUse -= malloc_usable_size(p);
    std::free(p);
}

}  // namespace

void* operator new(std::size_t size)
{
    return counted(size);
}

void* operator new[](std::size_t size)
{
    return counted(size);
}

// The library asks for temporary buffers without exceptions; they are
// freed through the sized delete below, so they must come from here too.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    try {
        return counted(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    try {
        return counted(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void operator delete(void* p) noexcept
{
    uncounted(p);
}

void operator delete[](void* p) noexcept
{
    uncounted(p);
}

void operator delete(void* p, std::size_t) noexcept
{
    uncounted(p);
}

void operator delete[](void* p, std::size_t) noexcept
{
    uncounted(p);
}

std::size_t peakAllocation(const std::function<void()>& run)
{
    const std::size_t before = inUse.load();
    highest = before;
    run();
    return highest.load() - before;
}

std::size_t allocationCount(const std::function<void()>& run)
{
    const std::size_t before = allocations.load();
    run();
    return allocations.load() - before;
}

AllocationCap::AllocationCap(std::size_t largest)
{
    largestAllowed = largest;
}

AllocationCap::~AllocationCap()
{
    largestAllowed = SIZE_MAX;
}
