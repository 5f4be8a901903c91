// The entities of a drawing's current space with an index over their pick
// boxes, so that a pick looks at the few entities near the point. It is
// rebuilt at the first pick after the drawing changed.
#pragma once

#include "kaldo/util/BoxIndex.h"
#include "kxdbid.h"
#include "kxtypes.h"

#include <cstdint>
#include <vector>

class KxDbDatabase;

namespace kaldo {

class PickIndex {
public:
    // The entity of the current space nearest to world (in the XY plane)
    // within tolerance, the first in the space's order among equally near
    // ones; null when there is none.
    KxDbObjectId nearest(const KxDbDatabase& db, const KxGePoint3d& world, double tolerance);

private:
    void rebuild(const KxDbDatabase& db);

    KxDbObjectId m_space;  // ids are never reused, so this names the drawing too
    std::uint64_t m_changes = 0;
    std::vector<KxDbObjectId> m_ids;  // in the space's order
    BoxIndex m_index;
};

}  // namespace kaldo
