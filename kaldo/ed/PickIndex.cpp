#include "kaldo/ed/PickIndex.h"

#include "kaldo/db/PickGeometry.h"
#include "kxdb.h"

#include <algorithm>
#include <limits>

namespace kaldo {

void PickIndex::rebuild(const KxDbDatabase& db)
{
    m_space = db.currentSpaceId();
    m_changes = db.changeCount();
    m_ids.clear();
    std::vector<Box> boxes;
    KxDbObjectPtr<KxDbBlockTableRecord> space(m_space, KxDb::kForRead);
    if (space) {
        const auto it = space->newIterator();
        for (it->start(); !it->done(); it->step()) {
            KxDbObjectPtr<KxDbEntity> entity(it->getEntityId(), KxDb::kForRead);
            Box box;
            if (entity && pickExtents(*entity, box)) {
                m_ids.push_back(entity->objectId());
                boxes.push_back(box);
            }
        }
    }
    m_index = BoxIndex(boxes);
}

KxDbObjectId PickIndex::nearest(const KxDbDatabase& db, const KxGePoint3d& world, double tolerance)
{
    if (db.currentSpaceId() != m_space || db.changeCount() != m_changes)
        rebuild(db);
    std::vector<std::uint32_t> near;
    m_index.query({world.x - tolerance, world.y - tolerance, world.x + tolerance, world.y + tolerance},
                  [&](std::uint32_t item) { near.push_back(item); });
    std::sort(near.begin(), near.end());
    KxDbObjectId best;
    double bestDistance = std::numeric_limits<double>::infinity();
    for (const std::uint32_t item : near) {
        KxDbObjectPtr<KxDbEntity> entity(m_ids[item], KxDb::kForRead);
        if (!entity)
            continue;
        const double d = pickDistance(*entity, world);
        if (d <= tolerance && d < bestDistance) {
            bestDistance = d;
            best = m_ids[item];
        }
    }
    return best;
}

}  // namespace kaldo
