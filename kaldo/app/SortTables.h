// Drawing order for readers that honour it. A block's SORTENTSTABLE (an
// object in the block record's extension dictionary under
// "ACAD_SORTENTS") gives entities sort handles; an entity it does not
// list sorts by its own handle, and the lowest is drawn first. Readers
// that ignore the table draw in file order.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "kxdbid.h"

class KxDbDatabase;
class KxDbBlockTableRecord;

namespace kaldo {

class SortTables {
public:
    // Finds the tables the drawing holds.
    explicit SortTables(KxDbDatabase& db);

    // The block's entities that are not erased, in the order readers that
    // honour sort tables draw them: by sort handle where the block has a
    // table (ties in the block's order), else in the block's own order.
    std::vector<KxDbObjectId> drawingOrder(const KxDbBlockTableRecord& block) const;

    // Gives the block (open for write) a table under which readers that
    // draw by sort handle draw its entities in the block's own order: the
    // entities' handles, sorted, are handed out in that order. A block
    // whose handles already rise along its order needs no table; one it
    // has is emptied then.
    void writeTable(KxDbBlockTableRecord& block);

private:
    KxDbDatabase& m_db;
    std::unordered_map<std::uint64_t, KxDbObjectId> m_tables;  // by block record handle
};

}  // namespace kaldo
