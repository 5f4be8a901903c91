#include "kaldo/db/HandleSet.h"

#include "kaldo/db/MixedBits.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace kaldo {

namespace {

constexpr std::uint64_t bitOf(std::uint64_t handle)
{
    return std::uint64_t(1) << (handle % 64);
}

}  // namespace

bool HandleSet::contains(std::uint64_t handle) const
{
    // Most sets a file's reading asks are empty.
    if (m_pages.empty() && m_filter.empty())
        return false;
    const std::uint64_t page = handle >> kPageBits;
    const auto found = !m_pages.empty() && m_inserted->first == page ? m_inserted : m_pages.find(page);
    if (found != m_pages.end())
        return (found->second[(handle % kHandlesPerPage) / 64] & bitOf(handle)) != 0;
    return containsApart(handle);
}

bool HandleSet::containsApart(std::uint64_t handle) const
{
    if (!mayBeApart(filterKey(handle)))
        return false;
    return std::any_of(m_apart.begin(), m_apart.end(), [handle](const std::vector<std::uint64_t>& list) {
        return std::binary_search(list.begin(), list.end(), handle);
    });
}

void HandleSet::insert(std::uint64_t handle)
{
    const std::uint64_t page = handle >> kPageBits;
    if (m_pages.empty() || m_inserted->first != page) {
        const auto found = m_pages.find(page);
        bool present = false;
        if (found == m_pages.end() && countApart(handle, present) + 1 < kHandlesOfAPage) {
            if (!present)
                insertApart(handle);
            return;
        }
        m_inserted = found != m_pages.end() ? found : m_pages.try_emplace(page).first;
        if (found == m_pages.end())
            for (const std::vector<std::uint64_t>& list : m_apart)
                for (auto at = std::lower_bound(list.begin(), list.end(), page << kPageBits);
                     at != list.end() && (*at >> kPageBits) == page; ++at)
                    m_inserted->second[(*at % kHandlesPerPage) / 64] |= bitOf(*at);
    }
    m_inserted->second[(handle % kHandlesPerPage) / 64] |= bitOf(handle);
}

std::size_t HandleSet::countApart(std::uint64_t handle, bool& present) const
{
    const std::uint64_t page = handle >> kPageBits;
    std::size_t count = 0;
    if (!mayBeApart(pageKey(page)))
        return count;
    for (const std::vector<std::uint64_t>& list : m_apart)
        for (auto at = std::lower_bound(list.begin(), list.end(), page << kPageBits);
             at != list.end() && (*at >> kPageBits) == page; ++at) {
            ++count;
            present = present || *at == handle;
        }
    return count;
}

void HandleSet::setInFilter(std::uint64_t key)
{
    const std::uint64_t mix = mixedBits(key);
    const std::size_t mask = m_filter.size() * 64 - 1;
    for (const std::size_t bit : {std::size_t(mix) & mask, std::size_t(mix >> 32) & mask})
        m_filter[bit / 64] |= std::uint64_t(1) << (bit % 64);
}

bool HandleSet::mayBeApart(std::uint64_t key) const
{
    if (m_filter.empty())
        return false;
    const std::uint64_t mix = mixedBits(key);
    const std::size_t mask = m_filter.size() * 64 - 1;
    const auto set = [&](std::size_t bit) { return (m_filter[bit / 64] >> (bit % 64)) & 1; };
    return set(std::size_t(mix) & mask) && set(std::size_t(mix >> 32) & mask);
}

void HandleSet::insertApart(std::uint64_t handle)
{
    // Sixteen bits a handle at least: made anew, twice the size, from the
    // lists when they outgrow it.
    if (16 * ++m_apartCount > 64 * m_filter.size()) {
        m_filter.assign(std::max<std::size_t>(16, 2 * m_filter.size()), 0);
        for (const std::vector<std::uint64_t>& list : m_apart)
            for (const std::uint64_t held : list) {
                setInFilter(filterKey(held));
                setInFilter(pageKey(held >> kPageBits));
            }
    }
    setInFilter(filterKey(handle));
    setInFilter(pageKey(handle >> kPageBits));
    if (m_apart.empty())
        m_apart.emplace_back().reserve(kFirstList);
    std::vector<std::uint64_t>& first = m_apart.front();
    first.insert(std::lower_bound(first.begin(), first.end(), handle), handle);
    if (first.size() < kFirstList)
        return;
    // Merged into the lists after it as a binary counter carries, each
    // list in room of its own size.
    std::vector<std::uint64_t> carry = std::exchange(first, std::vector<std::uint64_t>());
    first.reserve(kFirstList);
    for (std::size_t level = 1;; ++level) {
        if (level == m_apart.size()) {
            m_apart.push_back(std::move(carry));
            return;
        }
        std::vector<std::uint64_t>& list = m_apart[level];
        if (list.empty()) {
            list = std::move(carry);
            return;
        }
        std::vector<std::uint64_t> merged;
        merged.reserve(list.size() + carry.size());
        std::merge(list.begin(), list.end(), carry.begin(), carry.end(), std::back_inserter(merged));
        list = std::vector<std::uint64_t>();
        carry = std::move(merged);
    }
}

}  // namespace kaldo
