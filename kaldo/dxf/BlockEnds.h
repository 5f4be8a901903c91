// The BLOCK and ENDBLK records of each block, kept as read (or made for a
// new block when it is first saved) and written back unchanged. Those read
// are kept unopened (kaldo/db/UnopenedRecords.h), an object each only once
// something opens them: about the bytes the file spends on them, where an
// object each took a hundred bytes and more. The blocks' records are found
// by the block's id in a list of a few bytes a block (the ids told by how
// far each lies from the one before), where three ids took 24 and a map 64.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kxdbid.h"
#include "kxdbunmodelled.h"

class KxDbDatabase;

namespace kaldo::dxf {

class BlockEnds {
public:
    struct Ends {
        KxDbObjectId begin;
        KxDbObjectId end;
    };

    // Notes the BLOCK and ENDBLK records of block; those of a block noted
    // before give way to these once settled.
    void add(KxDbObjectId block, const Ends& ends);
    // Puts the blocks noted out of their serials' order in place, so that
    // each is found at once (until then it is searched for).
    void settle();
    // The records of block, when noted.
    std::optional<Ends> find(KxDbObjectId block) const;

private:
    struct Entry {
        std::uint64_t block = 0;
        std::uint64_t begin = 0;
        std::uint64_t end = 0;
    };
    void append(const Entry& entry);
    // Calls see(entry) for each entry from the marked one index on, in
    // order, while see returns true.
    template <class See>
    void forEachFrom(std::size_t index, See&& see) const;

    // Every kMarkEvery-th entry is marked, to be found by its block at
    // once: it is told whole (from 0), the others from the one before.
    static constexpr std::size_t kMarkEvery = 32;
    struct Mark {
        std::uint64_t block = 0;
        std::size_t at = 0;
    };
    // Each entry as the block's serial, its BLOCK's and its ENDBLK's, each
    // told by how far it lies from the one before it (signed, seven bits a
    // byte), in the order noted: by the blocks' serials once settled (a
    // file's blocks mostly follow its block records, so they come in that
    // order).
    std::string m_entries;
    std::vector<Mark> m_marks;
    std::size_t m_count = 0;
    std::uint64_t m_lastBlock = 0;
    bool m_settled = true;
};

// A BLOCK or ENDBLK record, opened or not: its kind, groups and handle.
struct BlockEndRecord {
    std::string_view kind;
    KxDbPackedGroupsView groups;
    std::uint64_t handle = 0;
};
std::optional<BlockEndRecord> blockEndRecord(const KxDbDatabase& db, KxDbObjectId id);

}  // namespace kaldo::dxf
