#include "kaldo/ed/PickIndex.h"

#include "kaldo/db/PickGeometry.h"
#include "kxdb.h"

#include <algorithm>
#include <limits>

namespace kaldo {

namespace {

bool within(const Box& box, const Box& window)
{
    return box.minX >= window.minX && box.maxX <= window.maxX && box.minY >= window.minY && box.maxY <= window.maxY;
}

}  // namespace

void PickIndex::refresh(const KxDbDatabase& db)
{
    if (db.currentSpaceId() != m_space || db.changeCount() != m_changes)
        rebuild(db);
}

void PickIndex::rebuild(const KxDbDatabase& db)
{
    m_space = db.currentSpaceId();
    m_changes = db.changeCount();
    m_ids.clear();
    m_boxes.clear();
    m_items.clear();
    KxDbObjectPtr<KxDbBlockTableRecord> space(m_space, KxDb::kForRead);
    if (space) {
        const auto it = space->newIterator();
        for (it->start(); !it->done(); it->step()) {
            KxDbObjectPtr<KxDbEntity> entity(it->getEntityId(), KxDb::kForRead);
            Box box;
            if (entity && pickExtents(*entity, box)) {
                m_ids.push_back(entity->objectId());
                m_boxes.push_back(box);
            }
        }
    }
    m_index = BoxIndex(m_boxes);
}

void PickIndex::translated(const KxDbDatabase& db, std::span<const KxDbObjectId> ids, const KxGeVector3d& offset,
                           std::uint64_t changesBefore)
{
    if (db.currentSpaceId() != m_space || m_changes != changesBefore)
        return;
    if (m_items.empty()) {
        m_items.reserve(m_ids.size());
        for (std::uint32_t item = 0; item < m_ids.size(); ++item)
            m_items.emplace(m_ids[item], item);
    }
    for (const KxDbObjectId& id : ids) {
        const auto found = m_items.find(id);
        if (found == m_items.end())
            continue;
        Box& box = m_boxes[found->second];
        box = {box.minX + offset.x, box.minY + offset.y, box.maxX + offset.x, box.maxY + offset.y};
    }
    m_index.refit(m_boxes);
    m_changes = db.changeCount();
}

std::vector<std::uint32_t> PickIndex::near(const Box& window) const
{
    std::vector<std::uint32_t> items;
    m_index.query(window, [&](std::uint32_t item) { items.push_back(item); });
    std::sort(items.begin(), items.end());
    return items;
}

KxDbObjectId PickIndex::nearest(const KxDbDatabase& db, const KxGePoint3d& world, double tolerance)
{
    refresh(db);
    KxDbObjectId best;
    double bestDistance = std::numeric_limits<double>::infinity();
    for (const std::uint32_t item : near({world.x - tolerance, world.y - tolerance, world.x + tolerance, world.y + tolerance})) {
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

std::vector<KxDbObjectId> PickIndex::inside(const KxDbDatabase& db, const Box& window)
{
    refresh(db);
    std::vector<KxDbObjectId> found;
    for (const std::uint32_t item : near(window))
        if (within(m_boxes[item], window))
            found.push_back(m_ids[item]);
    return found;
}

std::vector<KxDbObjectId> PickIndex::crossing(const KxDbDatabase& db, const Box& window)
{
    refresh(db);
    std::vector<KxDbObjectId> found;
    PlanPieces pieces;
    for (const std::uint32_t item : near(window)) {
        if (!within(m_boxes[item], window)) {
            KxDbObjectPtr<KxDbEntity> entity(m_ids[item], KxDb::kForRead);
            if (!entity)
                continue;
            collectPlanPieces(*entity, pieces);
            if (!meetsWindow(pieces, window))
                continue;
        }
        found.push_back(m_ids[item]);
    }
    return found;
}

}  // namespace kaldo
