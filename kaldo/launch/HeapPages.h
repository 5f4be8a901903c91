// Huge pages for the heap: a drawing of a million entities touches hundreds
// of megabytes of new heap, and with 4 KB pages each of them costs a page
// fault and a TLB entry of its own.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kaldo {

// The C library tunables to start kaldo with so that its heap asks for
// transparent huge pages, given the current tunables (GLIBC_TUNABLES) and
// the system's mode (the text of /sys/kernel/mm/transparent_hugepage/enabled).
// None when nothing is to change: the system grants huge pages to all memory
// or to none, or the tunables already say what the heap is to do.
std::optional<std::string> hugeHeapPageTunables(std::string_view tunables, std::string_view systemMode);

// When the system grants huge pages only to memory that asks for them, starts
// this executable again (same process, same arguments) with the tunables that
// make the heap ask; not when a library is preloaded (LD_PRELOAD). Returns
// only when nothing is to change or the start failed; the C library reads its
// tunables at start only, hence the restart.
void restartWithHugeHeapPages(char** argv);

}  // namespace kaldo
