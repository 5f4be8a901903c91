// A list of object ids in an order of its owner's choosing, held as runs
// of serials a step apart: the entities of a block read from a file were
// given their ids in the order the block lists them (a step of two when a
// record was made for each), so the list costs a run or a few where a word
// per id would cost eight bytes an entity. No runs: a word per id.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <vector>

#include "kxdbid.h"

class KxDbIdRuns {
public:
    // A place in the list: the word of an id or of a run's start, and how
    // far into the run.
    struct Place {
        std::size_t word = 0;
        std::uint64_t offset = 0;
        friend bool operator==(const Place&, const Place&) = default;
    };

    class const_iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = KxDbObjectId;
        using difference_type = std::ptrdiff_t;
        using pointer = void;
        using reference = KxDbObjectId;

        const_iterator() = default;
        const_iterator(const KxDbIdRuns* list, Place at) : m_list(list), m_at(at) {}
        KxDbObjectId operator*() const { return m_list->idAt(m_at); }
        const_iterator& operator++()
        {
            m_list->step(m_at);
            return *this;
        }
        const_iterator operator++(int)
        {
            const_iterator before = *this;
            ++*this;
            return before;
        }
        friend bool operator==(const const_iterator& a, const const_iterator& b) { return a.m_at == b.m_at; }

    private:
        const KxDbIdRuns* m_list = nullptr;
        Place m_at;
    };

    std::size_t size() const { return m_size; }
    bool empty() const { return m_size == 0; }
    // Appends id (a live object's, not null).
    void push_back(KxDbObjectId id);
    // Cuts the list after its first keep ids; returns the ids cut, in order.
    std::vector<KxDbObjectId> cutAfter(std::size_t keep);
    // The last id of a list that is not empty.
    KxDbObjectId back() const;
    // Takes the last place of id out of the list (a run around it split);
    // false when the list does not hold id.
    bool eraseLast(KxDbObjectId id);

    Place first() const { return {}; }
    bool isEnd(Place at) const { return at.word >= m_words.size(); }
    // The id at a place that is not the end.
    KxDbObjectId idAt(Place at) const;
    // Moves a place that is not the end to the next id.
    void step(Place& at) const;

    const_iterator begin() const { return {this, first()}; }
    const_iterator end() const { return {this, Place{m_words.size(), 0}}; }

private:
    // A word per id apart, its serial; a run of two or more ids is two
    // words, its first serial marked kRunStart and its count (low 40 bits)
    // and step less one (the bits above) marked kRunCount. Serials are
    // counted from 1 by the process and stay far below the marking bits.
    static constexpr std::uint64_t kRunStart = std::uint64_t(2) << 62;
    static constexpr std::uint64_t kRunCount = std::uint64_t(3) << 62;
    static constexpr std::uint64_t kValueBits = (std::uint64_t(1) << 62) - 1;
    static bool isRunStart(std::uint64_t word) { return (word >> 62) == 2; }
    static bool isRunCount(std::uint64_t word) { return (word >> 62) == 3; }

    std::vector<std::uint64_t> m_words;
    std::size_t m_size = 0;
};
