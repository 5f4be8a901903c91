// Bytes appended a piece at a time (records kept packed), each piece whole
// in one chunk and found again by the place its append gave. Chunks fill
// to 64 KB (a larger piece has one of its own) and are never moved once
// full: a single string growing past many megabytes holds its bytes twice
// while it moves, which for a store as large as the file it was read from
// was the peak of the read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace kaldo {

class ChunkedBytes {
public:
    // Appends head then body as one piece; returns the piece's place
    // (below 2^63).
    std::uint64_t append(std::string_view head, std::string_view body);
    // Where the piece at place (or a byte of it further on) lies.
    const char* at(std::uint64_t place) const;
    char* at(std::uint64_t place);

private:
    std::vector<std::vector<char>> m_chunks;
};

}  // namespace kaldo
