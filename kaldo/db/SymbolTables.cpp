#include "kxdbsymtb.h"

#include "kaldo/db/NameKey.h"
#include "kaldo/db/ObjectRegistry.h"
#include "kaldo/db/TableRecords.h"
#include "kaldo/db/UndoHistory.h"
#include "kxdbdatabase.h"

#include <algorithm>

KX_RX_DEFINE_MEMBERS(KxDbSymbolTableRecord, KxDbObject)
KX_RX_DEFINE_MEMBERS(KxDbSymbolTable, KxDbObject)
KX_RX_DEFINE_MEMBERS(KxDbBlockTableRecord, KxDbSymbolTableRecord)
KX_RX_DEFINE_MEMBERS(KxDbBlockTable, KxDbSymbolTable)
KX_RX_DEFINE_MEMBERS(KxDbLayerTableRecord, KxDbSymbolTableRecord)
KX_RX_DEFINE_MEMBERS(KxDbLayerTable, KxDbSymbolTable)
KX_RX_DEFINE_MEMBERS(KxDbLinetypeTableRecord, KxDbSymbolTableRecord)
KX_RX_DEFINE_MEMBERS(KxDbLinetypeTable, KxDbSymbolTable)

namespace {

bool isLive(KxDbObjectId id)
{
    return kaldo::isRegisteredLive(id);
}

// Ids a table lists name records.
KxDbSymbolTableRecord* recordOf(KxDbObjectId id)
{
    return static_cast<KxDbSymbolTableRecord*>(kaldo::lookupObject(id));
}

}  // namespace

Kald::ErrorStatus KxDbSymbolTableRecord::getName(const wchar_t*& name) const
{
    name = m_name.c_str();
    return Kald::eOk;
}

Kald::ErrorStatus KxDbSymbolTableRecord::setName(const wchar_t* name)
{
    if (!name || !*name)
        return Kald::eInvalidInput;
    if (const auto* table = KxDbSymbolTable::cast(kaldo::lookupObject(m_table))) {
        const KxDbObjectId other = table->findId(name, false);
        if (!other.isNull() && other != objectId())
            return Kald::eDuplicateKey;
    }
    rename(name);
    return Kald::eOk;
}

void KxDbSymbolTableRecord::rename(const std::wstring& name)
{
    if (name == m_name)
        return;
    auto* table = KxDbSymbolTable::cast(kaldo::lookupObject(m_table));
    if (table)
        table->unindex(*this);
    m_name = name;
    if (table)
        table->index(*this);
}

Kald::ErrorStatus KxDbSymbolTableRecord::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbObject::copyFrom(other); es != Kald::eOk)
        return es;
    rename(static_cast<const KxDbSymbolTableRecord*>(other)->m_name);
    return Kald::eOk;
}

KxDbSymbolTable::KxDbSymbolTable() : m_records(std::make_unique<kaldo::TableRecords>()) {}

KxDbSymbolTable::~KxDbSymbolTable() = default;

KxDbObjectId KxDbSymbolTable::findId(const std::wstring& name, bool getErased) const
{
    // Asks the table of ids, which knows a record kept unopened without
    // making its object.
    return m_records->find(name, [getErased](KxDbObjectId id) { return getErased ? id.isValid() : isLive(id); });
}

void KxDbSymbolTable::index(const KxDbSymbolTableRecord& record)
{
    m_records->index(record.objectId(), record.name());
}

void KxDbSymbolTable::unindex(const KxDbSymbolTableRecord& record)
{
    m_records->unindex(record.objectId(), record.name());
}

void KxDbSymbolTable::exchangeTail(std::size_t keep, std::vector<KxDbObjectId>& tail)
{
    // Records taken out and put back are in the database while this runs
    // (the undo history sees to it), so their names can be read.
    const auto listing = [this](KxDbObjectId id, bool listed) {
        KxDbSymbolTableRecord* record = recordOf(id);
        if (!record)
            return;
        if (listed) {
            record->m_table = objectId();
            index(*record);
        } else {
            unindex(*record);
            record->m_table.setNull();
        }
    };
    std::vector<KxDbObjectId> cut = m_records->ids.cutAfter(keep);
    for (const KxDbObjectId id : cut)
        listing(id, false);
    for (const KxDbObjectId id : tail) {
        m_records->ids.push_back(id);
        listing(id, true);
    }
    tail = std::move(cut);
}

Kald::ErrorStatus KxDbSymbolTable::getAt(const wchar_t* name, KxDbObjectId& id, bool getErased) const
{
    id = name ? findId(name, getErased) : KxDbObjectId::kNull;
    return id.isNull() ? Kald::eKeyNotFound : Kald::eOk;
}

Kald::ErrorStatus KxDbSymbolTable::getAt(const wchar_t* name, KxDbSymbolTableRecord*& record, int mode,
                                         bool openErased) const
{
    record = nullptr;
    KxDbObjectId id;
    if (const Kald::ErrorStatus es = getAt(name, id, openErased); es != Kald::eOk)
        return es;
    return kxdbOpenObject(record, id, mode, openErased);
}

bool KxDbSymbolTable::has(const wchar_t* name) const
{
    return name && !findId(name, false).isNull();
}

bool KxDbSymbolTable::has(KxDbObjectId id) const
{
    const KxDbSymbolTableRecord* record = KxDbSymbolTableRecord::cast(kaldo::lookupObject(id));
    return record && record->m_table == objectId() && isLive(id);
}

Kald::ErrorStatus KxDbSymbolTable::add(KxDbSymbolTableRecord* record)
{
    KxDbObjectId id;
    return add(record, id);
}

Kald::ErrorStatus KxDbSymbolTable::add(KxDbSymbolTableRecord* record, KxDbObjectId& id)
{
    id.setNull();
    if (!record || record->name().empty())
        return Kald::eInvalidInput;
    if (!record->isKindOf(recordClass()))
        return Kald::eWrongObjectType;
    KxDbDatabase* db = database();
    if (!db)
        return Kald::eNotApplicable;
    if (!findId(record->name(), false).isNull())
        return Kald::eDuplicateKey;
    if (!record->m_table.isNull())
        return Kald::eInvalidInput;
    if (const KxDbDatabase* recordDb = record->database(); !recordDb) {
        if (const Kald::ErrorStatus es = db->addObject(record); es != Kald::eOk)
            return es;
    } else if (recordDb != db) {
        return Kald::eInvalidInput;
    }
    kaldo::recordBeforeChange(*this);
    m_records->ids.push_back(record->objectId());
    record->m_table = objectId();
    index(*record);
    record->setOwnerId(objectId());
    id = record->objectId();
    return Kald::eOk;
}

std::unique_ptr<KxDbSymbolTableIterator> KxDbSymbolTable::newIterator() const
{
    return std::make_unique<KxDbSymbolTableIterator>(m_records->ids);
}

KxDbSymbolTableIterator::KxDbSymbolTableIterator(KxDbIdRuns ids) : m_ids(std::move(ids))
{
    start();
}

void KxDbSymbolTableIterator::start()
{
    m_at = m_ids.first();
    skipErased();
}

void KxDbSymbolTableIterator::skipErased()
{
    while (!m_ids.isEnd(m_at) && !isLive(m_ids.idAt(m_at)))
        m_ids.step(m_at);
}

bool KxDbSymbolTableIterator::done() const
{
    return m_ids.isEnd(m_at);
}

void KxDbSymbolTableIterator::step()
{
    if (done())
        return;
    m_ids.step(m_at);
    skipErased();
}

KxDbObjectId KxDbSymbolTableIterator::getRecordId() const
{
    return done() ? KxDbObjectId::kNull : m_ids.idAt(m_at);
}

Kald::ErrorStatus KxDbSymbolTableIterator::getRecordId(KxDbObjectId& id) const
{
    id = getRecordId();
    return id.isNull() ? Kald::eInvalidIndex : Kald::eOk;
}

Kald::ErrorStatus KxDbSymbolTableIterator::getRecord(KxDbSymbolTableRecord*& record, int mode, bool openErased) const
{
    record = nullptr;
    if (done())
        return Kald::eInvalidIndex;
    return kxdbOpenObject(record, m_ids.idAt(m_at), mode, openErased);
}

bool KxDbBlockTableRecord::isLayout() const
{
    return kaldo::sameName(name(), kxdbModelSpaceName) || kaldo::sameName(name(), kxdbPaperSpaceName);
}

Kald::ErrorStatus KxDbBlockTableRecord::appendKxDbEntity(KxDbEntity* entity)
{
    KxDbObjectId id;
    return appendKxDbEntity(id, entity);
}

Kald::ErrorStatus KxDbBlockTableRecord::appendKxDbEntity(KxDbObjectId& id, KxDbEntity* entity)
{
    id.setNull();
    if (!entity)
        return Kald::eInvalidInput;
    KxDbDatabase* db = database();
    if (!db)
        return Kald::eNotApplicable;
    if (const KxDbDatabase* entityDb = entity->database(); !entityDb) {
        if (const Kald::ErrorStatus es = db->addObject(entity); es != Kald::eOk)
            return es;
    } else if (entityDb != db || !entity->ownerId().isNull()) {
        return Kald::eInvalidInput;
    }
    // The block may be changed without an open (a database appending to
    // its current space): undo records it here.
    db->undoHistory().recordBefore(*this);
    m_entities.push_back(entity->objectId());
    // As setOwnerId, without asking again for the database the entity is
    // known to be in.
    db->undoHistory().recordBefore(*entity);
    entity->putOwner(objectId());
    id = entity->objectId();
    return Kald::eOk;
}

int KxDbBlockTableRecord::numEntities() const
{
    int n = 0;
    for (const KxDbObjectId& id : m_entities)
        n += isLive(id) ? 1 : 0;
    return n;
}

Kald::ErrorStatus KxDbBlockTableRecord::setEntityOrder(const std::vector<KxDbObjectId>& order)
{
    std::vector<KxDbObjectId> live;
    std::vector<KxDbObjectId> erased;
    for (const KxDbObjectId& id : m_entities)
        (isLive(id) ? live : erased).push_back(id);
    std::vector<KxDbObjectId> given = order;
    std::sort(live.begin(), live.end());
    std::sort(given.begin(), given.end());
    if (given != live)
        return Kald::eInvalidInput;
    kaldo::recordBeforeChange(*this);
    // The order is the drawing's: the window draws again, a save's extents
    // are measured anew (of equal coordinates the first entity's stay).
    if (KxDbDatabase* db = database())
        db->noteChange();
    m_entities = KxDbIdRuns();
    for (const KxDbObjectId& id : order)
        m_entities.push_back(id);
    for (const KxDbObjectId& id : erased)
        m_entities.push_back(id);
    return Kald::eOk;
}

std::unique_ptr<KxDbBlockTableRecordIterator> KxDbBlockTableRecord::newIterator() const
{
    return std::make_unique<KxDbBlockTableRecordIterator>(m_entities);
}

Kald::ErrorStatus KxDbBlockTableRecord::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbSymbolTableRecord::copyFrom(other); es != Kald::eOk)
        return es;
    m_origin = static_cast<const KxDbBlockTableRecord*>(other)->m_origin;
    return Kald::eOk;
}

void KxDbBlockTableRecord::exchangeTail(std::size_t keep, std::vector<KxDbObjectId>& tail)
{
    std::vector<KxDbObjectId> cut = m_entities.cutAfter(keep);
    for (const KxDbObjectId& id : tail)
        m_entities.push_back(id);
    tail = std::move(cut);
}

KxDbBlockTableRecordIterator::KxDbBlockTableRecordIterator(KxDbIdRuns ids) : m_ids(std::move(ids))
{
    start();
}

void KxDbBlockTableRecordIterator::start()
{
    m_at = m_ids.first();
    skipErased();
}

void KxDbBlockTableRecordIterator::skipErased()
{
    while (!m_ids.isEnd(m_at) && !isLive(m_ids.idAt(m_at)))
        m_ids.step(m_at);
}

bool KxDbBlockTableRecordIterator::done() const
{
    return m_ids.isEnd(m_at);
}

void KxDbBlockTableRecordIterator::step()
{
    if (done())
        return;
    m_ids.step(m_at);
    skipErased();
}

KxDbObjectId KxDbBlockTableRecordIterator::getEntityId() const
{
    return done() ? KxDbObjectId::kNull : m_ids.idAt(m_at);
}

Kald::ErrorStatus KxDbBlockTableRecordIterator::getEntityId(KxDbObjectId& id) const
{
    id = getEntityId();
    return id.isNull() ? Kald::eInvalidIndex : Kald::eOk;
}

Kald::ErrorStatus KxDbBlockTableRecordIterator::getEntity(KxDbEntity*& entity, int mode, bool openErased) const
{
    entity = nullptr;
    if (done())
        return Kald::eInvalidIndex;
    return kxdbOpenObject(entity, m_ids.idAt(m_at), mode, openErased);
}

Kald::ErrorStatus KxDbLayerTableRecord::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbSymbolTableRecord::copyFrom(other); es != Kald::eOk)
        return es;
    const auto* src = static_cast<const KxDbLayerTableRecord*>(other);
    m_color = src->m_color;
    m_linetype = src->m_linetype;
    m_off = src->m_off;
    m_frozen = src->m_frozen;
    return Kald::eOk;
}

double KxDbLinetypeTableRecord::patternLength() const
{
    double total = 0;
    for (double dash : m_dashes)
        total += dash < 0 ? -dash : dash;
    return total;
}

double KxDbLinetypeTableRecord::dashLengthAt(int index) const
{
    return index >= 0 && index < numDashes() ? m_dashes[std::size_t(index)] : 0.0;
}

Kald::ErrorStatus KxDbLinetypeTableRecord::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbSymbolTableRecord::copyFrom(other); es != Kald::eOk)
        return es;
    const auto* src = static_cast<const KxDbLinetypeTableRecord*>(other);
    m_description = src->m_description;
    m_dashes = src->m_dashes;
    return Kald::eOk;
}
