// The most heap memory that was in use at once while a piece of code ran,
// how many allocations it made, and a cap on single allocations that
// makes memory run out on purpose. The test program's operator new and
// delete count every allocation.
#pragma once

#include <cstddef>
#include <functional>

// Bytes allocated with operator new beyond those already in use when run
// started, at the highest point while run ran.
std::size_t peakAllocation(const std::function<void()>& run);

// How many times run allocated with operator new.
std::size_t allocationCount(const std::function<void()>& run);

// While it lives, operator new refuses (std::bad_alloc, or null where no
// exception is wanted) every allocation of more than largest bytes, on
// every thread.
class AllocationCap {
public:
    explicit AllocationCap(std::size_t largest);
    ~AllocationCap();
    AllocationCap(const AllocationCap&) = delete;
    AllocationCap& operator=(const AllocationCap&) = delete;
};
