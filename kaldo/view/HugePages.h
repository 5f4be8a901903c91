// A hint for large buffers that are filled once, such as a scene's point
// array or a picture's pixels.
#pragma once

#include <cstddef>

namespace kaldo::view {

// Asks the kernel to back the whole 2 MiB pages inside the buffer with huge
// pages: filling tens of megabytes otherwise spends much of its time taking
// one page fault per 4 KiB. Failure changes nothing.
void adviseHugePages(const void* data, std::size_t bytes);

}  // namespace kaldo::view
