// A set of handles, whether they lie close together or far apart, in any
// order. Handles close together lie in pages of 4096 handles, a bit each,
// made once 16 handles of theirs are in: well under a byte a handle where a
// slot of a hash table would take sixteen or more. Handles of other pages
// lie apart, eight bytes each, in sorted lists of 64 handles times distinct
// powers of two (and a first list of fewer, kept sorted as handles come):
// a handle goes in with a few merges on average and is found with a binary
// search a list, where a page a handle would cost 512 bytes; a filter of
// two bytes or more a handle spares most searches of handles and pages
// the lists do not hold.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace kaldo {

class HandleSet {
public:
    bool contains(std::uint64_t handle) const;
    void insert(std::uint64_t handle);

private:
    static constexpr int kPageBits = 12;
    static constexpr std::size_t kHandlesPerPage = std::size_t(1) << kPageBits;
    // How many handles of a page make it: a page costs as much as 64 handles
    // apart, and a page made early spares the searches of the lists.
    static constexpr std::size_t kHandlesOfAPage = 16;
    // The most handles the first list holds.
    static constexpr std::size_t kFirstList = 64;
    using Page = std::array<std::uint64_t, kHandlesPerPage / 64>;
    using Pages = std::map<std::uint64_t, Page>;

    // How many handles of the lists lie in the handle's page; present tells
    // whether the handle is among them.
    std::size_t countApart(std::uint64_t handle, bool& present) const;
    bool containsApart(std::uint64_t handle) const;
    // Adds a handle the lists do not hold.
    void insertApart(std::uint64_t handle);
    // The filter's two bits of a handle (odd) or of a page (even key).
    static std::uint64_t filterKey(std::uint64_t handle) { return handle << 1 | 1; }
    static std::uint64_t pageKey(std::uint64_t page) { return page << 1; }
    void setInFilter(std::uint64_t key);
    // False when the lists hold no handle of the key; true when they may.
    bool mayBeApart(std::uint64_t key) const;

    Pages m_pages;
    // The page of the handle inserted last: handles close together mostly
    // share one.
    Pages::iterator m_inserted;
    // Handles outside pages; a page made later takes those of its own in
    // too (they stay in the lists as well), so that a page's bits are all
    // its handles and the lists are searched only for handles of no page.
    std::vector<std::vector<std::uint64_t>> m_apart;
    // Before the lists are searched, a filter of their handles and their
    // pages (two bits each, sixteen bits or more a handle: a Bloom filter)
    // tells most handles and pages of none apart at once; with handles far
    // apart and many lists, their searches took most of reading a file.
    std::vector<std::uint64_t> m_filter;
    std::size_t m_apartCount = 0;
};

}  // namespace kaldo
