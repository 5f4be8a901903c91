// The BLOCK and ENDBLK records of each block, kept as read (or made for a
// new block when it is first saved) and written back unchanged. Those read
// are kept unopened (kaldo/db/UnopenedRecords.h), an object each only once
// something opens them: about the bytes the file spends on them, where an
// object each took a hundred bytes and more. The blocks' records are found
// by the block's id in a list of 24 bytes a block, where a map took 64.
#pragma once

#include <cstdint>
#include <optional>
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
    // By the blocks' serials once settled (a file's blocks mostly follow
    // its block records, so they come in that order).
    std::vector<Entry> m_entries;
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
