#include "kaldo/dxf/HandleBits.h"

namespace kaldo::dxf {

namespace {

constexpr std::uint64_t bitOf(std::uint64_t handle)
{
    return std::uint64_t(1) << (handle % 64);
}

}  // namespace

bool HandleBits::contains(std::uint64_t handle) const
{
    const auto page = m_pages.find(handle >> kPageBits);
    return page != m_pages.end() && (page->second[(handle % kHandlesPerPage) / 64] & bitOf(handle)) != 0;
}

void HandleBits::insert(std::uint64_t handle)
{
    const std::uint64_t page = handle >> kPageBits;
    if (m_pages.empty() || m_inserted->first != page)
        m_inserted = m_pages.try_emplace(page).first;
    m_inserted->second[(handle % kHandlesPerPage) / 64] |= bitOf(handle);
}

bool HandleBits::offer(std::uint64_t handle)
{
    ++m_offered;
    return m_pages.size() < kFirstPages + m_offered / kOfferedPerPage || m_pages.contains(handle >> kPageBits);
}

}  // namespace kaldo::dxf
