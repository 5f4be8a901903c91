// A set of handles held as one bit each, in pages of 4096 handles that
// exist once a handle of theirs is in: the handles of a file lie close to
// each other, in whatever order, so a page costs well under a byte a
// handle where a slot of a hash table would cost sixteen or more.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <map>

namespace kaldo::dxf {

class HandleBits {
public:
    bool contains(std::uint64_t handle) const;
    void insert(std::uint64_t handle);
    // Counts handle as offered, and tells whether it may go in at little
    // cost: its page exists, or a new one leaves a page for every 64
    // handles offered (beyond the first 64 pages), so that handles far
    // apart take no more than about nine bytes each however they come.
    bool offer(std::uint64_t handle);
    // Calls visit(handle) for every handle, in order.
    template <class Visit>
    void forEach(Visit&& visit) const
    {
        for (const auto& [page, words] : m_pages)
            for (std::size_t word = 0; word < words.size(); ++word)
                for (std::uint64_t bits = words[word]; bits != 0; bits &= bits - 1)
                    visit((page << kPageBits) + word * 64 + std::uint64_t(std::countr_zero(bits)));
    }

private:
    static constexpr int kPageBits = 12;
    static constexpr std::size_t kHandlesPerPage = std::size_t(1) << kPageBits;
    static constexpr std::size_t kOfferedPerPage = 64;
    static constexpr std::size_t kFirstPages = 64;
    using Pages = std::map<std::uint64_t, std::array<std::uint64_t, kHandlesPerPage / 64>>;
    Pages m_pages;
    // The page of the handle inserted last: a run's handles mostly share
    // one.
    Pages::iterator m_inserted;
    std::size_t m_offered = 0;
};

}  // namespace kaldo::dxf
