// Bytes appended in chunks of room that never move: a store that grows by
// chunks holds what it holds and one chunk's room beside it, where one that
// doubles holds up to twice that and copies it all as it grows (three
// times while it does). A place is a chunk's number and an offset in it,
// below 2^63; the bytes at a place stay where they are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace kaldo {

class ByteChunks {
public:
    // Appends head then body, together, and returns their place.
    std::uint64_t append(std::string_view head, std::string_view body);
    char* at(std::uint64_t place) { return m_chunks[place >> kOffsetBits].data() + (place & kOffsetMask); }
    const char* at(std::uint64_t place) const
    {
        return m_chunks[place >> kOffsetBits].data() + (place & kOffsetMask);
    }

private:
    static constexpr int kOffsetBits = 40;
    static constexpr std::uint64_t kOffsetMask = (std::uint64_t(1) << kOffsetBits) - 1;
    // The room of a chunk, unless what is appended needs more.
    static constexpr std::size_t kChunkBytes = std::size_t(1) << 16;

    std::vector<std::vector<char>> m_chunks;
};

}  // namespace kaldo
