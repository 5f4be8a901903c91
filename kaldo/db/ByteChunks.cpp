#include "kaldo/db/ByteChunks.h"

#include <algorithm>

namespace kaldo {

std::uint64_t ByteChunks::append(std::string_view head, std::string_view body)
{
    const std::size_t size = head.size() + body.size();
    if (m_chunks.empty() || m_chunks.back().capacity() - m_chunks.back().size() < size) {
        m_chunks.emplace_back();
        m_chunks.back().reserve(std::max(size, kChunkBytes));
    }
    std::string& chunk = m_chunks.back();
    const std::uint64_t place = std::uint64_t(m_chunks.size() - 1) << kOffsetBits | chunk.size();
    chunk.append(head);
    chunk.append(body);
    return place;
}

}  // namespace kaldo
