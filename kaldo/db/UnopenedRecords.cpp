#include "kaldo/db/UnopenedRecords.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <utility>

#include "kaldo/db/HandleTable.h"
#include "kaldo/db/ObjectRegistry.h"
#include "kaldo/db/TableRecords.h"
#include "kaldo/db/UndoHistory.h"
#include "kaldo/db/VarNumber.h"
#include "kxdbdatabase.h"
#include "kxdbents.h"
#include "kxdbsymtb.h"

namespace kaldo {

namespace {

// The bytes of a look's place kept with room for another, and of an
// owner not known yet, with room for serials of 35 bits.
constexpr int kLookLaterWidth = 5;
constexpr int kOwnerLaterWidth = 5;
// The room for a block's entities: how far past the block's serial the
// first one's lies, and how many there are.
constexpr int kEntitiesStartWidth = 5;
constexpr int kEntitiesCountWidth = 4;
// The room for a linetype a record keeps with it, given later.
constexpr int kLinetypeLaterWidth = 5;

bool isBlockOf(KxDbObjectId id, const KxDbDatabase& db)
{
    const KxRxClass* cls = registeredClass(id);
    return cls && cls->isDerivedFrom(KxDbBlockTableRecord::desc()) && registeredDatabase(id) == &db;
}

// Looks kept before an entity whose look is new keeps its layer or
// linetype with its record.
constexpr std::size_t kManyLooks = 64;

// A serial as its step from the record's own, zigzagged: small steps either
// way take a byte.
std::uint64_t stepTo(KxDbObjectId id, KxDbObjectId from)
{
    const auto step = static_cast<std::int64_t>(id.asOldId() - from.asOldId());
    return (static_cast<std::uint64_t>(step) << 1) ^ static_cast<std::uint64_t>(step >> 63);
}

KxDbObjectId stepFrom(KxDbObjectId from, std::uint64_t zigzag)
{
    const std::uint64_t step = (zigzag >> 1) ^ (~(zigzag & 1) + 1);
    return KxDbObjectId::fromOldId(from.asOldId() + step);
}

// The fields an entry's head may keep after its look's place, in their
// order (see m_records).
enum class HeadField { Owner, Entities, Layer, Linetype };

// How far from the entry's start the field lies, when its look keeps it
// there: the fields before it that the look keeps are passed over.
std::optional<std::size_t> headFieldOffset(const char* start, const std::vector<UnopenedRecords::Look>& looks,
                                           HeadField field)
{
    const char* at = start;
    const UnopenedRecords::Look& look = looks[std::size_t(takeVarNumber(at))];
    const bool kept[] = {look.ownerInRecord, look.holdsEntities, look.layerInRecord, look.linetypeInRecord};
    // A block's entities take two numbers, each other field one.
    constexpr int kNumbers[] = {1, 2, 1, 1};
    if (!kept[int(field)])
        return std::nullopt;
    for (int before = 0; before < int(field); ++before)
        for (int number = 0; kept[before] && number < kNumbers[before]; ++number)
            takeVarNumber(at);
    return std::size_t(at - start);
}

}  // namespace

UnopenedRecords::~UnopenedRecords()
{
    for (const KxDbObjectId id : m_ids)
        unregisterObject(id);
}

std::size_t UnopenedRecords::LookHash::operator()(const Look& look) const
{
    std::size_t hash = std::hash<std::string>()(look.kind);
    for (const KxDbObjectId id : {look.owner, look.layer, look.linetype, look.style})
        hash = hash * 31 + std::hash<std::uint64_t>()(id.asOldId());
    hash = hash * 31 + std::hash<Maker>()(look.maker);
    return hash * 128 + (look.holdsEntities ? 64 : 0) + (look.layerInRecord ? 32 : 0) + (look.linetypeInRecord ? 16 : 0)
           + (look.ownerInRecord ? 8 : 0)
           + (look.layerSpelledOtherwise ? 4 : 0) + (look.linetypeSpelledOtherwise ? 2 : 0) + (look.layOut ? 1 : 0);
}

KxDbObjectId UnopenedRecords::keep(const KxRxClass* cls, const Look& look, KxDbPackedGroupsView groups,
                                   std::uint64_t handle, bool lookLater, KxDbObjectId owner)
{
    // A block kept unopened takes an entity without being opened.
    KxDbObjectId unopenedBlock;
    KxDbBlockTableRecord* block = nullptr;
    KxDbSymbolTable* table = nullptr;
    const bool isEntity = cls->isDerivedFrom(KxDbEntity::desc());
    const bool isLayer = cls->isDerivedFrom(KxDbLayerTableRecord::desc());
    if (isEntity) {
        const KxDbObjectId owning = look.ownerInRecord ? owner : look.owner;
        if (isUnopened(owning))
            unopenedBlock = owning;
        else
            block = KxDbBlockTableRecord::cast(m_db.peekObject(owning));
        if (!block && !isBlockOf(unopenedBlock, m_db))
            return {};
    } else if (cls->isDerivedFrom(KxDbSymbolTableRecord::desc())) {
        table = KxDbSymbolTable::cast(m_db.peekObject(look.owner));
        if (!table)
            return {};
    }
    if (handle == 0 || !m_db.objectIdFromHandle(handle).isNull())
        handle = m_db.newHandle();
    if (!m_db.m_undo->addedUnrecorded(handle))
        return {};
    if (handle <= kxdbHighestHandle)
        m_db.m_header.handseed = std::max(m_db.m_header.handseed, handle + 1);
    // Registered first: the layer and linetype a record keeps are steps
    // from its own serial.
    const KxDbObjectId id = registerUnopened(cls, 0, &m_db);
    const Look kept = isEntity ? lookToKeep(look) : isLayer ? layerLookToKeep(look) : look;
    std::string head;
    appendVarNumber(head, placeOf(kept), lookLater ? kLookLaterWidth : 1);
    if (kept.ownerInRecord)
        appendVarNumber(head, owner.asOldId(), owner.isNull() ? kOwnerLaterWidth : 1);
    if (kept.holdsEntities) {
        appendVarNumber(head, 0, kEntitiesStartWidth);
        appendVarNumber(head, 0, kEntitiesCountWidth);
    }
    if (kept.layerInRecord)
        appendVarNumber(head, stepTo(look.layer, id));
    if (kept.linetypeInRecord && look.linetype.isNull())
        appendVarNumber(head, 0, kLinetypeLaterWidth);
    else if (kept.linetypeInRecord)
        appendVarNumber(head, stepTo(look.linetype, id));
    appendVarNumber(head, groups.bytes().size());
    setUnopenedEntry(id, m_records.append(head, groups.bytes()));
    m_ids.push_back(id);
    noteListed();
    m_db.m_handles->insert(handle, id);
    if (!unopenedBlock.isNull() && !appendEntity(unopenedBlock, id))
        block = KxDbBlockTableRecord::cast(m_db.peekObject(unopenedBlock));
    if (block)
        block->m_entities.push_back(id);
    if (table) {
        table->m_records->ids.push_back(id);
        table->m_records->index(id, TableRecords::nameOf(id));
    }
    m_db.noteChange();
    return id;
}

void UnopenedRecords::noteListed()
{
    const KxDbObjectId after = m_db.m_objectIds.empty() ? KxDbObjectId() : m_db.m_objectIds.back();
    if (m_listed.empty() || m_listed.back().after != after)
        m_listed.push_back({after, 0});
    ++m_listed.back().count;
}

std::size_t UnopenedRecords::placeOf(const Look& look)
{
    // Records of a file mostly share the look of the one before.
    if (m_latestLook < m_looks.size() && m_looks[m_latestLook] == look)
        return m_latestLook;
    const auto [known, added] = m_lookPlaces.try_emplace(look, m_looks.size());
    if (added)
        m_looks.push_back(look);
    m_latestLook = known->second;
    return m_latestLook;
}

std::optional<std::uint64_t> UnopenedRecords::entitiesAt(std::uint64_t entry) const
{
    const std::optional<std::size_t> offset = headFieldOffset(m_records.at(entry), m_looks, HeadField::Entities);
    return offset ? std::optional(entry + *offset) : std::nullopt;
}

bool UnopenedRecords::appendEntity(KxDbObjectId block, KxDbObjectId entity)
{
    const std::optional<std::uint64_t> entry = unopenedEntry(block);
    if (!entry || registeredDatabase(block) != &m_db || m_db.m_undo->recording())
        return false;
    const std::optional<std::uint64_t> roomAt = entitiesAt(*entry);
    if (!roomAt)
        return false;
    const char* at = m_records.at(*roomAt);
    std::uint64_t start = takeVarNumber(at);
    const std::uint64_t count = takeVarNumber(at);
    if (count == 0 && entity.asOldId() > block.asOldId())
        start = entity.asOldId() - block.asOldId();
    else if (count == 0 || entity.asOldId() != block.asOldId() + start + count)
        return false;
    std::string room;
    appendVarNumber(room, start, kEntitiesStartWidth);
    appendVarNumber(room, count + 1, kEntitiesCountWidth);
    if (room.size() != std::size_t(kEntitiesStartWidth + kEntitiesCountWidth))
        return false;
    room.copy(m_records.at(*roomAt), room.size());
    return true;
}

UnopenedRecords::Look UnopenedRecords::lookToKeep(const Look& look)
{
    const Look before = std::exchange(m_lookBefore, look);
    if (m_looks.size() < kManyLooks || m_lookPlaces.contains(look))
        return look;
    const auto keeping = [&look](bool layer, bool linetype) {
        Look kept = look;
        kept.layerInRecord = layer;
        kept.linetypeInRecord = linetype;
        if (layer)
            kept.layer = {};
        if (linetype)
            kept.linetype = {};
        return kept;
    };
    // A look kept so before, else one that keeps the linetype with the
    // record when it differs from the record before's, the layer unless
    // only the linetype does.
    for (const Look& kept : {keeping(true, false), keeping(false, true)})
        if (m_lookPlaces.contains(kept))
            return kept;
    const bool sameLinetype = look.linetype == before.linetype;
    return keeping(sameLinetype || look.layer != before.layer, !sameLinetype);
}

UnopenedRecords::Look UnopenedRecords::layerLookToKeep(const Look& look) const
{
    if (look.linetypeInRecord || m_looks.size() < kManyLooks || m_lookPlaces.contains(look))
        return look;
    Look kept = look;
    kept.linetypeInRecord = true;
    kept.linetype = {};
    return kept;
}

void UnopenedRecords::setLook(KxDbObjectId id, const Look& look)
{
    const std::optional<std::uint64_t> entry = unopenedEntry(id);
    if (!entry)
        return;
    std::string place;
    appendVarNumber(place, placeOf(look), kLookLaterWidth);
    place.copy(m_records.at(*entry), place.size());
}

std::optional<std::uint64_t> UnopenedRecords::linetypeAt(std::uint64_t entry) const
{
    const std::optional<std::size_t> offset = headFieldOffset(m_records.at(entry), m_looks, HeadField::Linetype);
    return offset ? std::optional(entry + *offset) : std::nullopt;
}

bool UnopenedRecords::setLinetype(KxDbObjectId id, KxDbObjectId linetype)
{
    const std::optional<std::uint64_t> entry = unopenedEntry(id);
    const std::optional<std::uint64_t> roomAt = entry ? linetypeAt(*entry) : std::nullopt;
    if (!roomAt)
        return false;
    const char* at = m_records.at(*roomAt);
    takeVarNumber(at);
    const int width = int(at - m_records.at(*roomAt));
    std::string step;
    appendVarNumber(step, linetype.isNull() ? 0 : stepTo(linetype, id), width);
    if (step.size() != std::size_t(width))
        return false;
    step.copy(m_records.at(*roomAt), step.size());
    return true;
}

bool UnopenedRecords::setOwner(KxDbObjectId id, KxDbObjectId owner)
{
    const std::optional<std::uint64_t> entry = unopenedEntry(id);
    // An entity's block and a table record's table, which list it, stand
    // where an object's owner does.
    const KxRxClass* cls = registeredClass(id);
    if (!entry || cls->isDerivedFrom(KxDbEntity::desc()) || cls->isDerivedFrom(KxDbSymbolTableRecord::desc()))
        return false;
    char* const start = m_records.at(*entry);
    const char* at = start;
    const Look& look = m_looks[std::size_t(takeVarNumber(at))];
    if (!look.ownerInRecord)
        return setLookOwner(start, look, int(at - start), owner);
    const char* ownerAt = at;
    takeVarNumber(at);
    std::string serial;
    appendVarNumber(serial, owner.asOldId(), int(at - ownerAt));
    if (serial.size() != std::size_t(at - ownerAt))
        return false;
    serial.copy(start + (ownerAt - start), serial.size());
    return true;
}

bool UnopenedRecords::setLookOwner(char* record, Look look, int placeWidth, KxDbObjectId owner)
{
    look.owner = owner;
    std::string place;
    appendVarNumber(place, placeOf(look), placeWidth);
    if (place.size() != std::size_t(placeWidth))
        return false;
    place.copy(record, place.size());
    return true;
}

void UnopenedRecords::makeLaidOutIn(KxDbObjectId style)
{
    const auto laidOutIn = [style](const Look& look) { return look.layOut && look.style == style; };
    if (std::none_of(m_looks.begin(), m_looks.end(), laidOutIn))
        return;
    for (const KxDbObjectId id : m_ids)
        if (const std::optional<std::uint64_t> entry = unopenedEntry(id); entry && laidOutIn(*keptAt(id, *entry).look))
            make(id, *entry);
}

std::optional<UnopenedRecords::Kept> UnopenedRecords::kept(KxDbObjectId id) const
{
    const std::optional<std::uint64_t> entry = unopenedEntry(id);
    if (!entry)
        return std::nullopt;
    return keptAt(id, *entry);
}

std::uint64_t UnopenedRecords::handleOf(KxDbObjectId id) const
{
    return m_db.m_handles->handleOf(id);
}

RunMap::Run UnopenedRecords::handleRunOf(KxDbObjectId id) const
{
    return m_db.m_handles->handleRunOf(id);
}

void UnopenedRecords::forEachOwnerUnknown(const std::function<void(KxDbObjectId, const Kept&)>& see) const
{
    const auto seeUnknown = [&](KxDbObjectId id, std::uint64_t entry) {
        if (const Kept record = keptAt(id, entry); record.look->ownerInRecord && record.owner.isNull())
            see(id, record);
    };
    for (const KxDbObjectId id : m_ids)
        if (const std::optional<std::uint64_t> entry = unopenedEntry(id))
            seeUnknown(id, *entry);
    for (std::size_t i = 0; i < m_made.size(); ++i)
        seeUnknown(m_made[i]->objectId(), m_madeEntries[i]);
}

UnopenedRecords::Kept UnopenedRecords::keptAt(KxDbObjectId id, std::uint64_t entry) const
{
    const char* at = m_records.at(entry);
    const Look& look = m_looks[std::size_t(takeVarNumber(at))];
    const KxDbObjectId owner = look.ownerInRecord ? KxDbObjectId::fromOldId(takeVarNumber(at)) : look.owner;
    if (look.holdsEntities) {
        takeVarNumber(at);
        takeVarNumber(at);
    }
    const KxDbObjectId layer = look.layerInRecord ? stepFrom(id, takeVarNumber(at)) : look.layer;
    KxDbObjectId linetype = look.linetype;
    if (look.linetypeInRecord) {
        const std::uint64_t step = takeVarNumber(at);
        linetype = step == 0 ? KxDbObjectId() : stepFrom(id, step);
    }
    const std::size_t length = std::size_t(takeVarNumber(at));
    return Kept{&look, owner, layer, linetype, KxDbPackedGroupsView(std::string_view(at, length))};
}

KxDbObject* UnopenedRecords::make(KxDbObjectId id, std::uint64_t entry)
{
    const std::lock_guard lock(m_making);
    // Made on another thread while this one waited.
    if (!isUnopened(id))
        return lookupObject(id);
    std::unique_ptr<KxDbObject> object = makeFrom(id, entry);
    KxDbObject* made = object.get();
    registerObjectAs(id, made, &m_db);
    m_made.push_back(std::move(object));
    m_madeEntries.push_back(entry);
    return made;
}

std::unique_ptr<KxDbObject> UnopenedRecords::makeAside(KxDbObjectId id) const
{
    const std::optional<std::uint64_t> entry = unopenedEntry(id);
    return entry ? makeFrom(id, *entry) : nullptr;
}

std::unique_ptr<KxDbObject> UnopenedRecords::makeFrom(KxDbObjectId id, std::uint64_t entry) const
{
    const Kept record = keptAt(id, entry);
    std::unique_ptr<KxDbObject> object;
    if (record.look->layerInRecord || record.look->linetypeInRecord) {
        Look look = *record.look;
        look.layer = record.layer;
        look.linetype = record.linetype;
        object = look.maker(look, record.groups);
    } else {
        object = record.look->maker(*record.look, record.groups);
    }
    KxDbDatabase::nameMade(*object, id, record.owner);
    // A table record is kept unopened while its table lists it: taking it
    // out of the list opens it.
    if (auto* tableRecord = KxDbSymbolTableRecord::cast(object.get()))
        tableRecord->m_table = record.owner;
    if (const std::optional<std::uint64_t> roomAt = entitiesAt(entry)) {
        const char* at = m_records.at(*roomAt);
        const std::uint64_t first = id.asOldId() + takeVarNumber(at);
        const std::uint64_t count = takeVarNumber(at);
        auto& block = static_cast<KxDbBlockTableRecord&>(*object);
        for (std::uint64_t serial = first; serial < first + count; ++serial)
            block.m_entities.push_back(KxDbObjectId::fromOldId(serial));
    }
    return object;
}

void UnopenedRecords::followInserted(const std::unordered_map<std::uint64_t, KxDbObjectId>& lastInsertedAfter)
{
    for (Listed& listed : m_listed)
        if (const auto found = lastInsertedAfter.find(listed.after.asOldId()); found != lastInsertedAfter.end())
            listed.after = found->second;
}

void UnopenedRecords::listWith(const KxDbIdRuns& objects, KxDbIdRuns& ids) const
{
    auto kept = m_ids.begin();
    auto listed = m_listed.begin();
    const auto listAfter = [&](KxDbObjectId after) {
        for (; listed != m_listed.end() && listed->after == after; ++listed)
            for (std::size_t i = 0; i < listed->count; ++i)
                ids.push_back(*kept++);
    };
    listAfter(KxDbObjectId());
    for (const KxDbObjectId object : objects) {
        ids.push_back(object);
        listAfter(object);
    }
    // After objects taken out since (none while a file is read): last.
    for (; kept != m_ids.end(); ++kept)
        ids.push_back(*kept);
}

}  // namespace kaldo
