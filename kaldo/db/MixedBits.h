// The finalizer of splitmix64: every bit of the result depends on every bit
// of key, so that keys that differ in a few bits (consecutive serials,
// handles) spread over a table's slots.
#pragma once

#include <cstdint>

namespace kaldo {

inline std::uint64_t mixedBits(std::uint64_t key)
{
    key = (key ^ (key >> 30)) * 0xBF58476D1CE4E5B9ull;
    key = (key ^ (key >> 27)) * 0x94D049BB133111EBull;
    return key ^ (key >> 31);
}

}  // namespace kaldo
