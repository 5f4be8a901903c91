// A dictionary's entries: each an object and its name as spelled, the names
// packed one after another (a character a var number, so a name of ASCII
// takes a byte a character), found through two hash indexes that hold no
// names (kaldo/db/HashSlots.h), by name in upper case and by object. An
// entry costs about forty bytes beside its name, where maps of keys and
// names took about 280. Entries lie in no order: taking one out moves the
// last into its place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kaldo/db/HashSlots.h"
#include "kxdbid.h"

namespace kaldo {

class DictionaryEntries {
public:
    static constexpr std::size_t npos = std::size_t(-1);

    // The entry of name (case aside), or npos.
    std::size_t find(std::wstring_view name) const;
    // The entry of id, or npos.
    std::size_t find(KxDbObjectId id) const;
    std::size_t size() const { return m_entries.size(); }
    KxDbObjectId id(std::size_t entry) const { return m_entries[entry].id; }
    std::wstring name(std::size_t entry) const { return unpackName(packedName(entry)); }
    // An entry's name as packed.
    std::string_view packedName(std::size_t entry) const;

    // Puts id under name as spelled: the entry of name (case aside) and
    // id's entry under another name go first.
    void put(std::wstring_view name, KxDbObjectId id);
    void erase(std::size_t entry);

    // The entries in the order of their names in upper case.
    std::vector<std::size_t> inNameOrder() const;

    static std::wstring unpackName(std::string_view packed);

private:
    struct Entry {
        KxDbObjectId id;
        std::uint32_t nameStart = 0;
        std::uint32_t nameBytes = 0;
    };
    std::uint64_t nameHashOf(std::size_t entry) const;
    std::uint64_t idHashOf(std::size_t entry) const;
    void index(std::size_t entry);
    void unindex(std::size_t entry);
    // Packs the names of the entries anew once those no entry has any more
    // outweigh the others.
    void dropDeadNames();

    std::vector<Entry> m_entries;
    std::string m_names;
    std::size_t m_deadNameBytes = 0;
    // Values: entries + 1.
    HashSlots m_byName;
    HashSlots m_byId;
};

}  // namespace kaldo
