#include "kaldo/dxf/ReadContext.h"

#include "kaldo/db/ObjectRegistry.h"
#include "kaldo/db/TableRecords.h"
#include "kaldo/db/UnopenedRecords.h"
#include "kaldo/dxf/DefaultRecords.h"
#include "kaldo/dxf/TablesSection.h"
#include "kaldo/util/Utf8.h"

#include "kxdbsymtb.h"

#include <algorithm>
#include <memory>

namespace kaldo::dxf {

KxDbObjectId ReadContext::add(KxDbObject* obj, RecordBasics&& basics)
{
    std::unique_ptr<KxDbObject> owned(obj);
    // The database raises its handle seed above the handle it gives.
    db.addObject(obj, fileHandle(basics.handle));
    owned.release();
    // Most objects keep no groups: they are spared the moves of an empty store.
    if (!basics.kept.empty())
        obj->setKeptGroups(basics.takeKept());
    if (basics.owner != 0)
        ownerReferences.push_back({obj->objectId(), basics.owner});
    obj->close();
    return obj->objectId();
}

std::uint64_t ReadContext::fileHandle(std::uint64_t handle) const
{
    return runRecordHandles.contains(handle) ? 0 : handle;
}

KxDbObjectId ReadContext::blockByHandle(std::uint64_t handle)
{
    if (handle == lastBlockHandle_ && handle != 0)
        return lastBlock_;
    const KxDbObjectId id = db.objectIdFromHandle(handle);
    if (!isBlock(id))
        return {};
    // A handle names the same object as long as the drawing is read.
    lastBlockHandle_ = handle;
    lastBlock_ = id;
    return id;
}

bool ReadContext::isBlock(KxDbObjectId id) const
{
    const KxRxClass* cls = kaldo::registeredClass(id);
    return cls && cls->isDerivedFrom(KxDbBlockTableRecord::desc()) && kaldo::registeredDatabase(id) == &db;
}

KxDbBlockTableRecord* ReadContext::openedBlock(KxDbObjectId id)
{
    if (id == lastOpenedBlockId_ && !id.isNull())
        return lastOpenedBlock_;
    if (id != roots.modelSpace && id != roots.paperSpace && kaldo::isUnopened(id))
        return nullptr;
    auto* block = KxDbBlockTableRecord::cast(db.peekObject(id));
    // An object opened stays where it is while the drawing is read.
    if (block) {
        lastOpenedBlockId_ = id;
        lastOpenedBlock_ = block;
    }
    return block;
}

const ReadContext::Found* ReadContext::FoundNames::firstNamed(std::string_view name) const
{
    // Names are short: compared byte by byte, most differ in their length
    // or their first byte, without a call.
    const std::size_t size = name.size();
    for (const auto* entry : first) {
        const std::string& known = entry->first;
        if (known.size() != size)
            continue;
        std::size_t at = 0;
        while (at < size && known[at] == name[at])
            ++at;
        if (at == size)
            return &entry->second;
    }
    return nullptr;
}

// Names are kept as record() keeps them, so a name spelled so already is
// found as it stands among the first few, before anything else is done.
KxDbObjectId ReadContext::layer(std::string_view name, bool* spelledAsRecord)
{
    if (const Found* entry = layers_.firstNamed(name))
        return found(*entry, spelledAsRecord);
    return record(ensureLayerTable(*this), layers_, name, true, spelledAsRecord);
}

KxDbObjectId ReadContext::linetype(std::string_view name, bool* spelledAsRecord)
{
    if (const Found* entry = linetypes_.firstNamed(name))
        return found(*entry, spelledAsRecord);
    return record(ensureLinetypeTable(*this), linetypes_, name, false, spelledAsRecord);
}

KxDbObjectId ReadContext::byLayerLinetype()
{
    // A name found names the same record while the drawing is read.
    if (byLayerLinetype_.isNull())
        byLayerLinetype_ = linetype("ByLayer");
    return byLayerLinetype_;
}

KxDbObjectId ReadContext::knownLinetype(std::string_view name)
{
    if (const Found* entry = linetypes_.firstNamed(name))
        return entry->id;
    return roots.linetypeTable.isNull() ? KxDbObjectId()
                                        : record(roots.linetypeTable, linetypes_, name, false, nullptr, false);
}

KxDbObjectId ReadContext::addRecord(KxDbSymbolTable& table, const std::wstring& name, bool isLayer)
{
    std::unique_ptr<KxDbSymbolTableRecord> rec;
    if (isLayer)
        rec = std::make_unique<KxDbLayerTableRecord>();
    else
        rec = std::make_unique<KxDbLinetypeTableRecord>();
    rec->setName(name.c_str());
    KxDbObjectId id;
    if (table.add(rec.get(), id) != Kald::eOk)
        return {};
    rec.release()->close();
    return id;
}

KxDbObjectId ReadContext::record(KxDbObjectId tableId, FoundNames& cache, std::string_view name, bool isLayer,
                                 bool* spelledAsRecord, bool addMissing)
{
    // The database takes a name as a C string: it ends at its first NUL, and
    // what is left is trimmed again, so that the name saved reads back as the
    // same record.
    name = trimmed(name.substr(0, name.find('\0')));
    if (const auto it = cache.byName.find(name); it != cache.byName.end())
        return found(it->second, spelledAsRecord);
    auto* table = KxDbSymbolTable::cast(db.peekObject(tableId));
    if (!table || name.empty())
        return {};
    const std::wstring wideName = wideFromUtf8(name);
    KxDbObjectId id;
    if (table->getAt(wideName.c_str(), id) != Kald::eOk) {
        if (!addMissing)
            return {};
        id = keepMissingRecord(*this, *table, name, isLayer);
        if (id.isNull())
            id = addRecord(*table, wideName, isLayer);
        if (id.isNull())
            return {};
        maxHandle = std::max(maxHandle, db.unopenedRecords().handleOf(id));
    }
    // Read without making the object of a record kept unopened.
    const bool spelledSo = kaldo::TableRecords::nameOf(id) == wideName;
    // A file that names very many records finds those beyond the first
    // many in the table, each time: a name cached costs more than its record.
    const Found entry{id, spelledSo};
    if (cache.byName.size() >= FoundNames::kCached)
        return found(entry, spelledAsRecord);
    const auto& cached = *cache.byName.emplace(std::string(name), entry).first;
    if (cache.first.size() < FoundNames::kFirst)
        cache.first.push_back(&cached);
    return found(cached.second, spelledAsRecord);
}

}  // namespace kaldo::dxf
