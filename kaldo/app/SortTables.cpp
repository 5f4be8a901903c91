#include "kaldo/app/SortTables.h"

#include <algorithm>
#include <optional>
#include <charconv>
#include <memory>
#include <string>
#include <string_view>

#include "kaldo/db/UnopenedRecords.h"
#include "kxdbdatabase.h"
#include "kxdbdict.h"
#include "kxdbsymtb.h"
#include "kxdbunmodelled.h"

namespace kaldo {

namespace {

constexpr const char* kTableKind = "SORTENTSTABLE";
constexpr const char* kTableMarker = "AcDbSortentsTable";
constexpr const wchar_t* kEntryName = L"ACAD_SORTENTS";

std::uint64_t handleNumber(std::string_view text)
{
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    std::uint64_t handle = 0;
    std::from_chars(text.data(), text.data() + text.size(), handle, 16);
    return handle;
}

std::string handleText(std::uint64_t handle)
{
    char text[20];
    const auto end = std::to_chars(text, text + sizeof text, handle, 16).ptr;
    std::string upper(text, end);
    std::transform(upper.begin(), upper.end(), upper.begin(), [](char c) { return char(std::toupper(c)); });
    return upper;
}

// Where the table's own part ends: after the block record's handle that
// follows the subclass marker; the entries (331 entity, 5 sort handle)
// come after it.
std::size_t entriesStart(const std::vector<KxDbFileGroup>& groups)
{
    bool marked = false;
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (groups[i].code == 100)
            marked = groups[i].value.find(kTableMarker) != std::string::npos;
        else if (marked && groups[i].code == 330)
            return i + 1;
    }
    return groups.size();
}

std::uint64_t tableBlock(const std::vector<KxDbFileGroup>& groups)
{
    const std::size_t start = entriesStart(groups);
    return start > 0 && start <= groups.size() ? handleNumber(groups[start - 1].value) : 0;
}

KxDbFileGroup group(int code, std::string value)
{
    return KxDbFileGroup{std::int16_t(code), 0, std::move(value)};
}

// Adds a record kept as groups to the drawing, owned by owner.
KxDbObjectId addRecord(KxDbDatabase& db, const char* kind, std::vector<KxDbFileGroup> groups, KxDbObjectId owner)
{
    auto record = std::make_unique<KxDbUnmodelledObject>(kind, std::move(groups));
    if (db.addObject(record.get()) != Kald::eOk)
        return {};
    record->setOwnerId(owner);
    KxDbUnmodelledObject* added = record.release();
    added->close();
    return added->objectId();
}

// Replaces the groups of a record kept as groups.
void setGroups(KxDbObjectId id, std::vector<KxDbFileGroup> groups)
{
    KxDbObjectPtr<KxDbUnmodelledObject> record(id, KxDb::kForWrite);
    if (!record)
        return;
    const KxDbUnmodelledObject replacement(record->dxfName(), std::move(groups));
    record->copyFrom(&replacement);
}

// The handle of the block record's extension dictionary, 0 when it has none.
std::uint64_t extensionDictionary(const KxDbBlockTableRecord& block)
{
    bool inBlock = false;
    std::optional<std::uint64_t> handle;
    block.keptGroups().forEach([&](std::int16_t code, std::uint8_t, std::string_view value) {
        if (code == 102)
            inBlock = value.find("{ACAD_XDICTIONARY") != std::string_view::npos;
        else if (inBlock && code == 360)
            handle = handleNumber(value);
        return !handle;
    });
    return handle.value_or(0);
}

}  // namespace

SortTables::SortTables(KxDbDatabase& db) : m_db(db)
{
    for (const KxDbObjectId id : db.objectIds()) {
        const KxRxClass* cls = id.objectClass();
        if (!cls || !cls->isDerivedFrom(KxDbUnmodelledObject::desc()))
            continue;
        // Records kept unopened of other kinds stay so.
        if (const auto kept = db.unopenedRecords().kept(id); kept && kept->look->kind != kTableKind)
            continue;
        const auto* record = KxDbUnmodelledObject::cast(db.peekObject(id));
        if (record && !record->isErased() && record->dxfName() == kTableKind)
            m_tables.emplace(tableBlock(record->groups()), id);
    }
}

std::vector<KxDbObjectId> SortTables::drawingOrder(const KxDbBlockTableRecord& block) const
{
    std::vector<std::pair<std::uint64_t, KxDbObjectId>> keyed;
    for (auto it = block.newIterator(); !it->done(); it->step())
        if (const KxDbObject* entity = m_db.peekObject(it->getEntityId()))
            keyed.emplace_back(entity->handle(), entity->objectId());
    const auto table = m_tables.find(block.handle());
    if (table != m_tables.end()) {
        std::unordered_map<std::uint64_t, std::uint64_t> sortHandles;
        const auto* record = KxDbUnmodelledObject::cast(m_db.peekObject(table->second));
        const std::vector<KxDbFileGroup>& groups = record->groups();
        for (std::size_t i = entriesStart(groups); i + 1 < groups.size(); ++i)
            if (groups[i].code == 331 && groups[i + 1].code == 5)
                sortHandles[handleNumber(groups[i].value)] = handleNumber(groups[i + 1].value);
        for (auto& [key, id] : keyed)
            if (const auto found = sortHandles.find(key); found != sortHandles.end())
                key = found->second;
        std::stable_sort(keyed.begin(), keyed.end(),
                         [](const auto& a, const auto& b) { return a.first < b.first; });
    }
    std::vector<KxDbObjectId> order;
    order.reserve(keyed.size());
    for (const auto& entry : keyed)
        order.push_back(entry.second);
    return order;
}

void SortTables::writeTable(KxDbBlockTableRecord& block)
{
    std::vector<std::uint64_t> handles;
    for (auto it = block.newIterator(); !it->done(); it->step())
        if (const KxDbObject* entity = m_db.peekObject(it->getEntityId()))
            handles.push_back(entity->handle());
    std::vector<std::uint64_t> keys = handles;
    std::sort(keys.begin(), keys.end());
    std::vector<KxDbFileGroup> entries;
    for (std::size_t i = 0; i < handles.size(); ++i)
        if (keys[i] != handles[i]) {
            entries.push_back(group(331, handleText(handles[i])));
            entries.push_back(group(5, handleText(keys[i])));
        }
    const std::string blockHandle = handleText(block.handle());
    if (const auto table = m_tables.find(block.handle()); table != m_tables.end()) {
        const auto* record = KxDbUnmodelledObject::cast(m_db.peekObject(table->second));
        // groups() unpacks a copy each time: one copy, cut after its header.
        std::vector<KxDbFileGroup> groups = record->groups();
        groups.resize(entriesStart(groups));
        groups.insert(groups.end(), entries.begin(), entries.end());
        setGroups(table->second, std::move(groups));
        return;
    }
    if (entries.empty())
        return;
    // A new table in the block record's extension dictionary, made when
    // the record has none. The table's own handle group (5) comes first:
    // the entries' sort handles are groups 5 too.
    KxDbObjectId dictionary = m_db.objectIdFromHandle(extensionDictionary(block));
    const bool newDictionary = !KxDbUnmodelledObject::cast(m_db.peekObject(dictionary)) &&
                               !KxDbDictionary::cast(m_db.peekObject(dictionary));
    if (newDictionary) {
        dictionary = addRecord(m_db, "DICTIONARY",
                               {group(5, "0"), group(330, blockHandle), group(100, "AcDbDictionary"), group(280, "1"),
                                group(281, "1")},
                               block.objectId());
        if (dictionary.isNull())
            return;
        std::vector<KxDbFileGroup> kept = block.keptGroups().unpacked();
        const auto firstPart = std::find_if(kept.begin(), kept.end(), [](const KxDbFileGroup& g) { return g.part > 0; });
        kept.insert(firstPart, {group(102, "{ACAD_XDICTIONARY"),
                                group(360, handleText(m_db.peekObject(dictionary)->handle())), group(102, "}")});
        block.setKeptGroups(KxDbPackedGroups(kept));
    }
    const std::string dictionaryHandle = handleText(m_db.peekObject(dictionary)->handle());
    std::vector<KxDbFileGroup> groups = {group(5, "0"),         group(102, "{ACAD_REACTORS"),
                                         group(330, dictionaryHandle), group(102, "}"),
                                         group(330, dictionaryHandle), group(100, kTableMarker),
                                         group(330, blockHandle)};
    groups.insert(groups.end(), entries.begin(), entries.end());
    const KxDbObjectId table = addRecord(m_db, kTableKind, std::move(groups), dictionary);
    if (table.isNull())
        return;
    m_tables.emplace(block.handle(), table);
    const std::string tableHandle = handleText(m_db.peekObject(table)->handle());
    if (KxDbObjectPtr<KxDbDictionary> modelled(dictionary, KxDb::kForWrite); modelled) {
        KxDbObjectPtr<KxDbUnmodelledObject> added(table, KxDb::kForWrite);
        KxDbObjectId entry;
        if (added)
            modelled->setAt(kEntryName, added.get(), entry);
        return;
    }
    const auto* record = KxDbUnmodelledObject::cast(m_db.peekObject(dictionary));
    std::vector<KxDbFileGroup> entriesOfDictionary = record->groups();
    entriesOfDictionary.push_back(group(3, "ACAD_SORTENTS"));
    entriesOfDictionary.push_back(group(360, tableHandle));
    setGroups(dictionary, std::move(entriesOfDictionary));
}

}  // namespace kaldo
