// Hints for large buffers that are filled once, such as a scene's point
// array or a picture's pixels.
#pragma once

#include <cstddef>

namespace kaldo::view {

// Asks the kernel to back the whole 2 MiB pages inside the buffer with huge
// pages: filling tens of megabytes otherwise spends much of its time taking
// one page fault per 4 KiB. Failure changes nothing.
void adviseHugePages(const void* data, std::size_t bytes);

// Gives the whole pages inside the buffer back to the kernel: what they
// held is gone (they read as zeros if touched again), the buffer stays
// the caller's to free. For a buffer copied elsewhere piece by piece, so
// that the process does not hold both copies whole. Failure changes
// nothing.
void releasePages(const void* data, std::size_t bytes);

}  // namespace kaldo::view
