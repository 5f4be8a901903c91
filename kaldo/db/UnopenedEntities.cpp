#include "kaldo/db/UnopenedEntities.h"

#include <algorithm>
#include <optional>

#include "kaldo/db/HandleTable.h"
#include "kaldo/db/ObjectRegistry.h"
#include "kaldo/db/UndoHistory.h"
#include "kaldo/db/VarNumber.h"
#include "kxdbdatabase.h"
#include "kxdbents.h"
#include "kxdbsymtb.h"

namespace kaldo {

namespace {

// The bytes of a look's place kept with room for another.
constexpr int kLookLaterWidth = 5;

}  // namespace

UnopenedEntities::~UnopenedEntities()
{
    for (const KxDbObjectId id : m_ids)
        if (isUnopened(id))
            unregisterObject(id);
}

KxDbObjectId UnopenedEntities::keep(const KxRxClass* cls, const Look& look, KxDbPackedGroupsView groups,
                                    std::uint64_t handle, Maker maker, bool lookLater)
{
    auto* block = KxDbBlockTableRecord::cast(m_db.peekObject(look.block));
    if (!block)
        return {};
    if (handle == 0 || !m_db.objectIdFromHandle(handle).isNull())
        handle = m_db.newHandle();
    if (!m_db.m_undo->addedUnrecorded(handle))
        return {};
    if (handle <= kxdbHighestHandle)
        m_db.m_header.handseed = std::max(m_db.m_header.handseed, handle + 1);
    m_maker = maker;
    const std::uint64_t entry = m_records.size();
    appendVarNumber(m_records, placeOf(look), lookLater ? kLookLaterWidth : 1);
    appendVarNumber(m_records, groups.bytes().size());
    m_records.append(groups.bytes());
    const KxDbObjectId id = registerUnopened(cls, entry, &m_db);
    m_ids.push_back(id);
    m_db.m_handles->insert(handle, id);
    block->m_entities.push_back(id);
    m_db.noteChange();
    return id;
}

std::size_t UnopenedEntities::placeOf(const Look& look)
{
    // The looks of a file's entities are few: the latest is met again most.
    const auto known = std::find(m_looks.rbegin(), m_looks.rend(), look);
    if (known != m_looks.rend())
        return std::size_t(m_looks.rend() - known) - 1;
    m_looks.push_back(look);
    return m_looks.size() - 1;
}

void UnopenedEntities::setLook(KxDbObjectId id, const Look& look)
{
    const std::optional<std::uint64_t> entry = unopenedEntry(id);
    if (!entry)
        return;
    std::string place;
    appendVarNumber(place, placeOf(look), kLookLaterWidth);
    m_records.replace(*entry, place.size(), place);
}

void UnopenedEntities::makeLaidOutIn(KxDbObjectId style)
{
    const auto laidOutIn = [style](const Look& look) { return look.layOut && look.style == style; };
    if (std::none_of(m_looks.begin(), m_looks.end(), laidOutIn))
        return;
    for (const KxDbObjectId id : m_ids)
        if (const std::optional<std::uint64_t> entry = unopenedEntry(id); entry && laidOutIn(*keptAt(*entry).look))
            make(id, *entry);
}

std::optional<UnopenedEntities::Kept> UnopenedEntities::kept(KxDbObjectId id) const
{
    const std::optional<std::uint64_t> entry = unopenedEntry(id);
    if (!entry)
        return std::nullopt;
    return keptAt(*entry);
}

UnopenedEntities::Kept UnopenedEntities::keptAt(std::uint64_t entry) const
{
    const char* at = m_records.data() + entry;
    const Look& look = m_looks[std::size_t(takeVarNumber(at))];
    const std::size_t length = std::size_t(takeVarNumber(at));
    return Kept{&look, KxDbPackedGroupsView(std::string_view(at, length))};
}

KxDbObject* UnopenedEntities::make(KxDbObjectId id, std::uint64_t entry)
{
    const std::lock_guard lock(m_making);
    // Made on another thread while this one waited.
    if (!isUnopened(id))
        return lookupObject(id);
    std::unique_ptr<KxDbEntity> entity = makeFrom(id, entry);
    KxDbEntity* made = entity.get();
    registerObjectAs(id, made, &m_db);
    m_db.m_objects.push_back(std::move(entity));
    return made;
}

std::unique_ptr<KxDbEntity> UnopenedEntities::makeAside(KxDbObjectId id) const
{
    const std::optional<std::uint64_t> entry = unopenedEntry(id);
    return entry ? makeFrom(id, *entry) : nullptr;
}

std::unique_ptr<KxDbEntity> UnopenedEntities::makeFrom(KxDbObjectId id, std::uint64_t entry) const
{
    const Kept record = keptAt(entry);
    std::unique_ptr<KxDbEntity> entity = m_maker(*record.look, record.groups);
    KxDbDatabase::nameMade(*entity, id, record.look->block);
    return entity;
}

void UnopenedEntities::appendIds(KxDbIdRuns& ids) const
{
    for (const KxDbObjectId id : m_ids)
        if (isUnopened(id))
            ids.push_back(id);
}

}  // namespace kaldo
