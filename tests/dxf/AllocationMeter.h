// The most heap memory that was in use at once while a piece of code ran,
// and how many allocations it made. The test program's operator new and
// delete count every allocation.
#pragma once

#include <cstddef>
#include <functional>

// Bytes allocated with operator new beyond those already in use when run
// started, at the highest point while run ran.
std::size_t peakAllocation(const std::function<void()>& run);

// How many times run allocated with operator new.
std::size_t allocationCount(const std::function<void()>& run);
