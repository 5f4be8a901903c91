#include "kaldo/db/UnopenedEntities.h"

#include <algorithm>
#include <optional>

#include "kaldo/db/HandleTable.h"
#include "kaldo/db/ObjectRegistry.h"
#include "kaldo/db/UndoHistory.h"
#include "kxdbdatabase.h"
#include "kxdbents.h"
#include "kxdbsymtb.h"

namespace kaldo {

namespace {

void appendLength(std::string& bytes, std::size_t length)
{
    for (; length >= 0x80; length >>= 7)
        bytes.push_back(char((length & 0x7F) | 0x80));
    bytes.push_back(char(length));
}

std::size_t takeLength(const char*& at)
{
    std::size_t length = 0;
    for (int shift = 0;; shift += 7) {
        const auto byte = static_cast<unsigned char>(*at++);
        length |= std::size_t(byte & 0x7F) << shift;
        if (!(byte & 0x80))
            return length;
    }
}

}  // namespace

UnopenedEntities::~UnopenedEntities()
{
    for (const KxDbObjectId id : m_ids)
        if (isUnopened(id))
            unregisterObject(id);
}

KxDbObjectId UnopenedEntities::keep(const KxRxClass* cls, const Look& look, KxDbPackedGroupsView groups,
                                    std::uint64_t handle, Maker maker)
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
    // The looks of a file's entities are few: the latest is met again most.
    auto known = std::find(m_looks.rbegin(), m_looks.rend(), look);
    std::size_t place = std::size_t(m_looks.rend() - known) - 1;
    if (known == m_looks.rend()) {
        place = m_looks.size();
        m_looks.push_back(look);
    }
    const std::uint64_t entry = m_records.size();
    appendLength(m_records, place);
    appendLength(m_records, groups.bytes().size());
    m_records.append(groups.bytes());
    const KxDbObjectId id = registerUnopened(cls, entry, &m_db);
    m_ids.push_back(id);
    m_db.m_handles->insert(handle, id);
    block->m_entities.push_back(id);
    m_db.noteChange();
    return id;
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
    const char* at = m_records.data() + entry;
    const Look& look = m_looks[takeLength(at)];
    const std::size_t length = takeLength(at);
    std::unique_ptr<KxDbEntity> entity = m_maker(look, KxDbPackedGroupsView(std::string_view(at, length)));
    KxDbDatabase::nameMade(*entity, id, look.block);
    return entity;
}

void UnopenedEntities::appendIds(KxDbIdRuns& ids) const
{
    for (const KxDbObjectId id : m_ids)
        if (isUnopened(id))
            ids.push_back(id);
}

}  // namespace kaldo
