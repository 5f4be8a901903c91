#include "kaldo/db/ChunkedBytes.h"

#include <algorithm>

namespace kaldo {

namespace {

constexpr std::size_t kChunk = std::size_t(1) << 16;
// A place: its chunk's index above these bits, its offset in them.
constexpr int kOffsetBits = 40;
constexpr std::uint64_t kOffsetMask = (std::uint64_t(1) << kOffsetBits) - 1;

}  // namespace

std::uint64_t ChunkedBytes::append(std::string_view head, std::string_view body)
{
    const std::size_t size = head.size() + body.size();
    if (m_chunks.empty() || (!m_chunks.back().empty() && m_chunks.back().size() + size > kChunk))
        m_chunks.emplace_back();
    std::vector<char>& chunk = m_chunks.back();
    // Grown by doubling up to a chunk's size, no further (a vector takes the
    // room asked for, where a string may take twice): a piece larger than
    // a chunk has one of its own.
    if (chunk.size() + size > chunk.capacity())
        chunk.reserve(std::max(chunk.size() + size, std::min(2 * chunk.capacity(), kChunk)));
    const std::uint64_t place = std::uint64_t(m_chunks.size() - 1) << kOffsetBits | chunk.size();
    chunk.insert(chunk.end(), head.begin(), head.end());
    chunk.insert(chunk.end(), body.begin(), body.end());
    return place;
}

const char* ChunkedBytes::at(std::uint64_t place) const
{
    return m_chunks[std::size_t(place >> kOffsetBits)].data() + (place & kOffsetMask);
}

char* ChunkedBytes::at(std::uint64_t place)
{
    return m_chunks[std::size_t(place >> kOffsetBits)].data() + (place & kOffsetMask);
}

}  // namespace kaldo
