#include "kaldo/app/EntityEdits.h"

#include "kaldo/core/Host.h"
#include "kaldo/db/EntityKinds.h"
#include "kaldo/db/UndoHistory.h"
#include "kaldo/ed/PickIndex.h"
#include "kaldo/util/Translations.h"
#include "kxdb.h"
#include "kxed.h"

#include <algorithm>
#include <memory>

namespace kaldo {

namespace {

// A copy of the entity for the same drawing, without the groups that tie
// the original to other objects (reactors, its extension dictionary).
std::unique_ptr<KxDbEntity> duplicate(const KxDbEntity& entity)
{
    std::unique_ptr<KxDbEntity> copy(static_cast<KxDbEntity*>(entity.clone().release()));
    KxDbPackedGroups kept;
    bool inOwnerBlock = false;
    entity.keptGroups().forEach([&](std::int16_t code, std::uint8_t part, std::string_view value) {
        if (code == 102)
            inOwnerBlock = !value.empty() && value.front() == '{';
        else if (!inOwnerBlock)
            kept.append(code, part, value);
    });
    kept.shrinkToFit();
    copy->setKeptGroups(std::move(kept));
    return copy;
}

bool inWindow(const KxGePoint3d& p, const Box& window)
{
    return p.x >= window.minX && p.x <= window.maxX && p.y >= window.minY && p.y <= window.maxY;
}

}  // namespace

EditTally transformEntities(std::span<const KxDbObjectId> ids, const KxGeMatrix3d& m, bool copies)
{
    EditTally tally;
    KxDbDatabase* db = host().database;
    // A translation opens each entity for what it changes: the undo history
    // then keeps a multiline's positions, not a copy of it.
    const bool translation = isTranslation(m);
    for (const KxDbObjectId& id : ids) {
        KxDbObjectPtr<KxDbEntity> entity(id, copies || translation ? KxDb::kForRead : KxDb::kForWrite);
        if (!entity)
            continue;
        if (!copies) {
            if (translation && upgradeOpenToTranslate(*entity) != Kald::eOk)
                continue;
            if (entity->transformBy(m) == Kald::eOk) {
                ++tally.changed;
                tally.transformed.push_back(id);
            } else
                ++tally.unchanged[entityKindName(*entity)];
            continue;
        }
        std::unique_ptr<KxDbEntity> copy = duplicate(*entity);
        KxDbObjectId made;
        if (!db || copy->transformBy(m) != Kald::eOk || db->addToCurrentSpace(copy.get(), made) != Kald::eOk) {
            ++tally.unchanged[entityKindName(*entity)];
            continue;
        }
        copy.release()->close();
        tally.made.push_back(made);
        ++tally.changed;
    }
    return tally;
}

EditTally moveEntities(std::span<const KxDbObjectId> ids, const KxGeVector3d& offset, PickIndex& index)
{
    const KxDbDatabase* db = host().database;
    const std::uint64_t changesBefore = db ? db->changeCount() : 0;
    EditTally tally = transformEntities(ids, KxGeMatrix3d::translation(offset), false);
    if (db)
        index.translated(*db, tally.transformed, offset, changesBefore);
    return tally;
}

std::vector<int> stretchIndices(const KxDbEntity& entity, std::span<const Box> windows)
{
    std::vector<KxGePoint3d> points;
    entity.getStretchPoints(points);
    std::vector<int> indices;
    for (std::size_t i = 0; i < points.size(); ++i)
        if (std::ranges::any_of(windows, [&](const Box& w) { return inWindow(points[i], w); }))
            indices.push_back(int(i));
    return indices;
}

EditTally stretchEntities(const SelectionSet& set, const KxGeVector3d& offset)
{
    EditTally tally;
    for (const KxDbObjectId& id : set.ids()) {
        KxDbObjectPtr<KxDbEntity> entity(id, KxDb::kForRead);
        if (!entity)
            continue;
        std::vector<KxGePoint3d> points;
        entity->getStretchPoints(points);
        const std::vector<int> indices = stretchIndices(*entity, set.windows());
        if (points.empty()) {
            ++tally.unchanged[entityKindName(*entity)];
            continue;
        }
        const bool whole = indices.size() == points.size();
        if (indices.empty() || (whole ? upgradeOpenToTranslate(*entity) : entity->upgradeOpen()) != Kald::eOk)
            continue;
        const Kald::ErrorStatus es = whole ? entity->transformBy(KxGeMatrix3d::translation(offset))
                                           : entity->moveStretchPointsAt(indices, offset);
        if (es == Kald::eOk)
            ++tally.changed;
        else
            ++tally.unchanged[entityKindName(*entity)];
    }
    return tally;
}

void reportUnchanged(const EditTally& tally)
{
    if (tally.unchanged.empty())
        return;
    std::wstring kinds;
    for (const auto& [kind, count] : tally.unchanged)
        kinds += (kinds.empty() ? L"" : L", ") + std::to_wstring(count) + L" " + kind;
    kxutPrintf(L"\nNot changed: %ls.\n", kinds.c_str());
}

}  // namespace kaldo
