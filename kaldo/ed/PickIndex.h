// The entities of a drawing's current space with an index over the boxes
// of what they draw in plan, so that a pick or a selection window looks at
// the few entities near it. It is rebuilt at the first use after the
// drawing changed.
#pragma once

#include "kaldo/util/BoxIndex.h"
#include "kxdbid.h"
#include "kxtypes.h"

#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

class KxDbDatabase;

namespace kaldo {

class PickIndex {
public:
    // The entity of the current space nearest to world (in the XY plane)
    // within tolerance, the first in the space's order among equally near
    // ones; null when there is none.
    KxDbObjectId nearest(const KxDbDatabase& db, const KxGePoint3d& world, double tolerance);
    // The entities of the current space that lie wholly inside window, in
    // the space's order.
    std::vector<KxDbObjectId> inside(const KxDbDatabase& db, const Box& window);
    // The entities of the current space that lie inside window or cross
    // its edges, in the space's order.
    std::vector<KxDbObjectId> crossing(const KxDbDatabase& db, const Box& window);

    // The entities of ids were moved by offset, and nothing else in db
    // changed since its change count was changesBefore: when the index was
    // up to date then, their boxes move with them (to rounding) and it is
    // up to date again without measuring every entity anew.
    void translated(const KxDbDatabase& db, std::span<const KxDbObjectId> ids, const KxGeVector3d& offset,
                    std::uint64_t changesBefore);

private:
    void refresh(const KxDbDatabase& db);
    void rebuild(const KxDbDatabase& db);
    // The items whose boxes meet window, in the space's order.
    std::vector<std::uint32_t> near(const Box& window) const;

    KxDbObjectId m_space;  // ids are never reused, so this names the drawing too
    std::uint64_t m_changes = 0;
    std::vector<KxDbObjectId> m_ids;  // in the space's order
    std::vector<Box> m_boxes;         // of m_ids
    BoxIndex m_index;
    std::unordered_map<KxDbObjectId, std::uint32_t> m_items;  // of m_ids, made when first needed
};

}  // namespace kaldo
