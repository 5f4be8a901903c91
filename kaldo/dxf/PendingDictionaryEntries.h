// The entries of the dictionaries read, linked to their objects once the
// whole file is read (a dictionary may name objects that follow it): packed
// one after another, each its line's step from the entry before, its
// handle and its name as the file spells it, a few bytes beside the name.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kaldo/db/VarNumber.h"
#include "kxdbid.h"

namespace kaldo::dxf {

class PendingDictionaryEntries {
public:
    struct Entry {
        KxDbObjectId dictionary;
        // UTF-8, as read.
        std::string_view name;
        std::uint64_t handle = 0;
        long line = 0;
    };

    // Starts the entries of a dictionary, whose id finishDictionary gives.
    void startDictionary();
    void add(std::string_view name, std::uint64_t handle, long line);
    void finishDictionary(KxDbObjectId dictionary);

    // Calls see(entry) for every entry in the order added; from the last
    // dictionary's first only when lastOnly.
    template <class See>
    void forEach(See&& see, bool lastOnly = false) const
    {
        const std::size_t first = lastOnly && !m_dictionaries.empty() ? m_dictionaries.size() - 1 : 0;
        const char* at = m_bytes.data() + (first < m_dictionaries.size() ? m_dictionaries[first].start : 0);
        long line = first < m_dictionaries.size() ? m_dictionaries[first].lineBefore : 0;
        for (std::size_t d = first; d < m_dictionaries.size(); ++d) {
            for (std::size_t i = 0; i < m_dictionaries[d].count; ++i) {
                Entry entry;
                entry.dictionary = m_dictionaries[d].id;
                line += unzigzag(takeVarNumber(at));
                entry.line = line;
                entry.handle = takeVarNumber(at);
                const std::size_t length = std::size_t(takeVarNumber(at));
                entry.name = std::string_view(at, length);
                at += length;
                see(entry);
            }
        }
    }

private:
    static std::int64_t unzigzag(std::uint64_t n) { return std::int64_t(n >> 1) ^ -std::int64_t(n & 1); }

    struct Dictionary {
        KxDbObjectId id;
        std::size_t start = 0;
        std::size_t count = 0;
        long lineBefore = 0;
    };
    std::vector<Dictionary> m_dictionaries;
    std::string m_bytes;
    long m_lastLine = 0;
};

}  // namespace kaldo::dxf
