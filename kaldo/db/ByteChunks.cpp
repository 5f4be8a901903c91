#include "kaldo/db/ByteChunks.h"

#include <algorithm>

namespace kaldo {

std::uint64_t ByteChunks::append(std::string_view head, std::string_view body)
{
    const std::size_t size = head.size() + body.size();
    if (m_chunks.empty() || (!m_chunks.back().empty() && m_chunks.back().size() + size > kChunkBytes))
        m_chunks.emplace_back();
    std::vector<char>& chunk = m_chunks.back();
    // Grown by doubling up to a chunk's room, no further (a vector takes the
    // room asked for, where a string may take twice), so that a small store
    // holds little: a piece larger than a chunk has one of its own.
    if (chunk.size() + size > chunk.capacity())
        chunk.reserve(std::max(chunk.size() + size, std::min(2 * chunk.capacity(), kChunkBytes)));
    const std::uint64_t place = std::uint64_t(m_chunks.size() - 1) << kOffsetBits | chunk.size();
    chunk.insert(chunk.end(), head.begin(), head.end());
    chunk.insert(chunk.end(), body.begin(), body.end());
    return place;
}

}  // namespace kaldo
