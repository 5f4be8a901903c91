#include "kaldo/dxf/TablesSection.h"

#include "kaldo/dxf/DxfError.h"
#include "kaldo/dxf/GroupWriter.h"
#include "kaldo/dxf/NameCache.h"
#include "kaldo/dxf/ReadContext.h"
#include "kaldo/dxf/RecordColor.h"
#include "kaldo/dxf/RecordWriting.h"
#include "kaldo/db/HashSlots.h"
#include "kaldo/db/NameKey.h"
#include "kaldo/db/StateBytes.h"
#include "kaldo/db/UnopenedRecords.h"
#include "kaldo/util/Utf8.h"
#include "kxdbsymtb.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>
#include <utility>

namespace kaldo::dxf {

namespace {

// Linetype dashes keep their own unmodelled groups (shape and text
// elements) in parts from kDashPart on, one part per dash.
constexpr int kDashPart = 3;
constexpr int kMaxDashPart = 250;

bool isModelledTable(std::string_view name)
{
    return name == "LTYPE" || name == "LAYER" || name == "BLOCK_RECORD";
}

// In the list of tables (KeptSections::tables) a table begins with its
// name, a group of code 0 in this part; the handle made for a kept table
// whose head had none follows its groups as a group of code 5 in this
// part. The groups a kept table holds are in part 0.
constexpr std::uint8_t kListPart = 1;

struct ListedTable {
    // Where its name's group lies in the list.
    std::size_t at = 0;
    std::string_view name;
    std::string_view madeHandle;
    KxDbPackedGroupsView groups;
};

// Calls see(table) for each table of the list, in order.
template <class See>
void forEachListedTable(KxDbPackedGroupsView list, See&& see)
{
    const char* const begin = list.bytes().data();
    ListedTable table;
    const char* groupsStart = nullptr;
    const char* groupsEnd = nullptr;
    // Where the group before ends.
    const char* end = begin;
    const auto seeTable = [&] {
        if (!groupsStart)
            return;
        table.groups = KxDbPackedGroupsView(std::string_view(groupsStart, std::size_t(groupsEnd - groupsStart)));
        see(std::as_const(table));
    };
    list.forEach([&](std::int16_t code, std::uint8_t part, std::string_view value) {
        const char* const start = end;
        end = value.data() + value.size();
        if (part != kListPart) {
            groupsEnd = end;
        } else if (code == 0) {
            seeTable();
            table = ListedTable{std::size_t(start - begin), value, {}, {}};
            groupsStart = groupsEnd = end;
        } else {
            table.madeHandle = value;
        }
    });
    seeTable();
}

// The value of the first group of packed groups.
std::string_view firstValue(std::string_view groups)
{
    std::string_view first;
    KxDbPackedGroupsView(groups).forEach([&](std::int16_t, std::uint8_t, std::string_view value) {
        first = value;
        return false;
    });
    return first;
}

// A table record of an old version has no subclass markers, so its groups
// all fall in the part before them, which is written with the record's
// head. Those the record's own part would hold move there, so that the
// groups the writer writes itself (the flags) are not written twice.
void placeGroupsOfUnmarkedRecord(const Record& record, RecordBasics& basics)
{
    bool marked = false;
    record.forEach([&](const Group& g) {
        marked = g.code == 100;
        return !marked;
    });
    if (marked)
        return;
    KxDbPackedGroups placed;
    placed.reserve(basics.kept.view().bytes().size());
    bool inBlock = false;
    basics.kept.view().forEach([&](std::int16_t code, std::uint8_t part, std::string_view value) {
        if (part == 0 && code == 102)
            inBlock = !value.empty() && value.front() == '{';
        else if (part == 0 && !inBlock)
            part = 2;
        placed.append(code, part, value);
    });
    basics.kept = std::move(placed);
}

// Reads a linetype record into a linetype.
std::unique_ptr<KxDbLinetypeTableRecord> readLinetypeRecord(const Record& record, RecordBasics& basics)
{
    auto linetype = std::make_unique<KxDbLinetypeTableRecord>();
    std::wstring name;
    std::vector<double> dashes;
    walkRecord(record, basics, [&](const Group& g) {
        switch (g.code) {
        case 2:
            name = wideFromUtf8(g.value);
            return true;
        case 3:
            linetype->setDescription(wideFromUtf8(g.value).c_str());
            return true;
        case 73:
        case 40:
            return true;
        case 49:
            dashes.push_back(toReal(g));
            return true;
        default:
            if (!dashes.empty() && (g.code == 74 || g.code == 75 || g.code == 340 || g.code == 46 || g.code == 50
                                    || g.code == 44 || g.code == 45 || g.code == 9)) {
                const int part = std::min(kDashPart + int(dashes.size()) - 1, kMaxDashPart);
                basics.keep(record, g.code, std::uint8_t(part), g.value);
                return true;
            }
            return false;
        }
    });
    placeGroupsOfUnmarkedRecord(record, basics);
    if (name.empty())
        throw DxfError(record.line(), "a linetype without a name.");
    linetype->setName(name.c_str());
    linetype->setDashes(std::move(dashes));
    return linetype;
}

// Reads a layer record into a layer, but for its linetype, whose name it
// gives.
std::unique_ptr<KxDbLayerTableRecord> readLayerRecord(const Record& record, RecordBasics& basics,
                                                      std::string& linetype)
{
    auto layer = std::make_unique<KxDbLayerTableRecord>();
    std::wstring name;
    KxCmColor color;
    walkRecord(record, basics, [&](const Group& g) {
        switch (g.code) {
        case 2:
            name = wideFromUtf8(g.value);
            return true;
        case 70:
            layer->setIsFrozen(toInteger(g) & 1);
            return false;  // the other flag bits are kept
        case 62:
            layer->setIsOff(toInteger(g) < 0);
            return readColorGroup(g, color);
        case 6:
            linetype = std::string(trimmed(g.value));
            return true;
        default:
            return readColorGroup(g, color);
        }
    });
    placeGroupsOfUnmarkedRecord(record, basics);
    if (name.empty())
        throw DxfError(record.line(), "a layer without a name.");
    layer->setName(name.c_str());
    layer->setColor(color);
    return layer;
}

// Reads a block record into a block, without its entities.
std::unique_ptr<KxDbBlockTableRecord> readBlockRecordGroups(const Record& record, RecordBasics& basics)
{
    auto block = std::make_unique<KxDbBlockTableRecord>();
    std::wstring name;
    walkRecord(record, basics, [&](const Group& g) {
        if (g.code != 2)
            return false;
        name = wideFromUtf8(g.value);
        return true;
    });
    if (name.empty())
        throw DxfError(record.line(), "a block record without a name.");
    block->setName(name.c_str());
    return block;
}

bool isLayoutBlockName(const std::wstring& name)
{
    return kaldo::sameName(name, kxdbModelSpaceName) || kaldo::sameName(name, kxdbPaperSpaceName);
}

// Makes a linetype, layer or block kept unopened as the reader would have
// made it (a block's entities are the store's to give).
std::unique_ptr<KxDbObject> makeUnopenedRecord(const kaldo::UnopenedRecords::Look& look, KxDbPackedGroupsView groups)
{
    Record record;
    record.assign(look.kind, groups);
    RecordBasics basics;
    std::unique_ptr<KxDbSymbolTableRecord> made;
    if (look.kind == "LAYER") {
        std::string linetype;
        std::unique_ptr<KxDbLayerTableRecord> layer = readLayerRecord(record, basics, linetype);
        layer->setLinetypeObjectId(look.linetype);
        made = std::move(layer);
    } else if (look.kind == "BLOCK_RECORD") {
        made = readBlockRecordGroups(record, basics);
    } else {
        made = readLinetypeRecord(record, basics);
    }
    made->setKeptGroups(std::move(basics.kept));
    return made;
}

// The look of a record of table kept unopened: a block's holds its
// entities.
kaldo::UnopenedRecords::Look recordLook(const std::string& kind, const KxDbSymbolTable& table, KxDbObjectId linetype)
{
    kaldo::UnopenedRecords::Look look;
    look.kind = kind;
    look.owner = table.objectId();
    look.linetype = linetype;
    look.holdsEntities = kind == "BLOCK_RECORD";
    look.maker = &makeUnopenedRecord;
    return look;
}

// Keeps the record of a linetype, layer or block (made, to be discarded)
// unopened in look when its groups take less than half its object: records
// of a name and little else, where the object would cost many times the
// file. Only a record that its table would list as read is kept so: its
// name new in the table and given once (the table reads it from the
// record), and its owner (if it names one) the table. Null, keeping
// nothing, else.
KxDbObjectId keepUnopened(const Record& record, const RecordBasics& basics, const KxDbSymbolTableRecord& made,
                          const kaldo::UnopenedRecords::Look& look, ReadContext& context, const KxDbSymbolTable& table)
{
    const KxDbPackedGroupsView groups = record.packedGroups();
    const std::size_t objectBytes = kaldo::stateBytes(made) + basics.kept.view().bytes().size();
    if (2 * groups.bytes().size() >= objectBytes || (basics.owner != 0 && basics.owner != table.handle()))
        return {};
    int names = 0;
    std::wstring given;
    groups.forEach([&](std::int16_t code, std::uint8_t, std::string_view value) {
        if (code == 2 && ++names == 1)
            given = wideFromUtf8(value);
    });
    if (names != 1 || given != made.name() || table.has(given.c_str()))
        return {};
    return context.db.unopenedRecords().keep(made.isA(), look, groups, context.fileHandle(basics.handle));
}

KxDbObjectId addRecord(std::unique_ptr<KxDbSymbolTableRecord> made, RecordBasics basics, ReadContext& context,
                       KxDbSymbolTable& table)
{
    KxDbSymbolTableRecord* record = made.release();
    const KxDbObjectId id = context.add(record, std::move(basics));
    table.add(record);
    return id;
}

void readLinetype(const Record& record, ReadContext& context, KxDbSymbolTable& table)
{
    RecordBasics basics;
    std::unique_ptr<KxDbLinetypeTableRecord> linetype = readLinetypeRecord(record, basics);
    const std::wstring name = linetype->name();
    KxDbObjectId id = keepUnopened(record, basics, *linetype, recordLook("LTYPE", table, {}), context, table);
    if (id.isNull())
        id = addRecord(std::move(linetype), std::move(basics), context, table);
    if (kaldo::sameName(name, L"ByLayer"))
        context.roots.byLayer = id;
    else if (kaldo::sameName(name, L"ByBlock"))
        context.roots.byBlock = id;
    else if (kaldo::sameName(name, L"Continuous"))
        context.roots.continuous = id;
}

void readLayer(const Record& record, ReadContext& context, KxDbSymbolTable& table)
{
    RecordBasics basics;
    std::string linetypeName;
    std::unique_ptr<KxDbLayerTableRecord> layer = readLayerRecord(record, basics, linetypeName);
    // A layer's linetype found now is kept with it; one the file has not
    // given yet is found once the whole TABLES section is read, and a layer
    // kept unopened keeps room for it in its record.
    const KxDbObjectId linetype = linetypeName.empty() ? KxDbObjectId() : context.knownLinetype(linetypeName);
    kaldo::UnopenedRecords::Look look = recordLook("LAYER", table, linetype);
    look.linetypeInRecord = !linetypeName.empty() && linetype.isNull();
    KxDbObjectId id = keepUnopened(record, basics, *layer, look, context, table);
    if (id.isNull()) {
        id = addRecord(std::move(layer), std::move(basics), context, table);
        if (look.linetypeInRecord)
            context.layerLinetypeNames.push_back({id, std::move(linetypeName)});
    }
    if (look.linetypeInRecord)
        context.layersOfLinetypesLater.push_back(id);
}

void readBlockRecord(const Record& record, ReadContext& context, KxDbSymbolTable& table)
{
    RecordBasics basics;
    std::unique_ptr<KxDbBlockTableRecord> block = readBlockRecordGroups(record, basics);
    const std::wstring name = block->name();
    // Model and paper space take the entities of the ENTITIES section, as
    // objects.
    if (!isLayoutBlockName(name)
        && !keepUnopened(record, basics, *block, recordLook("BLOCK_RECORD", table, {}), context, table).isNull())
        return;
    KxDbBlockTableRecord* rec = block.release();
    const KxDbObjectId id = context.add(rec, std::move(basics));
    if (table.add(rec) != Kald::eOk)
        throw DxfError(record.line(), "the block record \"" + utf8FromWide(name) + "\" is there twice.");
    if (kaldo::sameName(name, kxdbModelSpaceName))
        context.roots.modelSpace = id;
    else if (kaldo::sameName(name, kxdbPaperSpaceName))
        context.roots.paperSpace = id;
}

// Reads one modelled table from the record after "0 TABLE" to ENDTAB.
void readModelledTable(GroupReader& reader, ReadContext& context, const std::string& name, const Record& head)
{
    std::unique_ptr<KxDbSymbolTable> made;
    if (name == "LTYPE")
        made = std::make_unique<KxDbLinetypeTable>();
    else if (name == "LAYER")
        made = std::make_unique<KxDbLayerTable>();
    else
        made = std::make_unique<KxDbBlockTable>();
    RecordBasics basics;
    walkRecord(head, basics, [](const Group& g) { return g.code == 2 || g.code == 70; });
    KxDbSymbolTable* table = made.release();
    const KxDbObjectId tableId = context.add(table, std::move(basics));
    (name == "LTYPE" ? context.roots.linetypeTable
                     : name == "LAYER" ? context.roots.layerTable : context.roots.blockTable) = tableId;
    Record record;
    Group g;
    while (reader.next(g)) {
        if (g.code != 0)
            throw DxfError(g.line, "a record (group 0) was expected in the table " + name + ".");
        const std::string kind(trimmed(g.value));
        if (kind == "ENDTAB")
            return;
        record.read(reader, g);
        if (kind == "LTYPE" && name == "LTYPE")
            readLinetype(record, context, *table);
        else if (kind == "LAYER" && name == "LAYER")
            readLayer(record, context, *table);
        else if (kind == "BLOCK_RECORD" && name == "BLOCK_RECORD")
            readBlockRecord(record, context, *table);
        else
            throw DxfError(g.line, "a " + std::string(kind) + " record in the table " + name + ".");
    }
    throw DxfError(head.line(), "the table " + name + " has no ENDTAB.");
}

// Old versions write table heads without a handle; newer ones need one:
// one is made for a table whose groups (from its head on) give none.
void giveTableHeadAHandle(KxDbPackedGroupsView groups, ReadContext& context)
{
    bool hasHandle = false;
    groups.forEach([&](std::int16_t code, std::uint8_t, std::string_view) {
        hasHandle = code == 5;
        return code != 0 && code != 5;
    });
    if (hasHandle)
        return;
    context.db.setHandseed(std::max(context.db.handseed(), context.maxHandle + 1));
    const std::uint64_t handle = context.db.reserveNewHandle();
    context.maxHandle = std::max(context.maxHandle, handle);
    context.kept.tables.append(5, kListPart, handleText(handle));
}

// The name of the linetype a layer's record gives, as readLayerRecord
// reads it.
std::string linetypeNameOf(KxDbPackedGroupsView groups)
{
    Record record;
    record.assign("LAYER", groups);
    RecordBasics basics;
    std::string linetype;
    readLayerRecord(record, basics, linetype);
    return linetype;
}

// Each layer takes the linetype of its name from the drawing's table,
// which is complete now (a missing one is added there, in the order the
// layers were read). A layer kept unopened (nothing opens one while the
// section is read) keeps it in its record, unless its step does not fit
// the room kept there.
void resolveLayerLinetypes(ReadContext& context)
{
    kaldo::UnopenedRecords& unopened = context.db.unopenedRecords();
    auto named = context.layerLinetypeNames.begin();
    for (const KxDbObjectId layer : context.layersOfLinetypesLater) {
        KxDbObjectId linetype;
        if (named != context.layerLinetypeNames.end() && named->layer == layer)
            linetype = context.linetype((named++)->linetype);
        else if (const auto kept = unopened.kept(layer))
            linetype = context.linetype(linetypeNameOf(kept->groups));
        else
            continue;
        if (unopened.setLinetype(layer, linetype))
            continue;
        if (auto* object = KxDbLayerTableRecord::cast(context.db.peekObject(layer)))
            object->setLinetypeObjectId(linetype);
    }
    context.layersOfLinetypesLater = KxDbIdRuns();
    context.layerLinetypeNames.clear();
}

void readKeptTable(GroupReader& reader, ReadContext& context, const std::string& name, long line)
{
    KxDbPackedGroups& list = context.kept.tables;
    const std::size_t start = list.view().bytes().size();
    Group g;
    while (reader.next(g)) {
        if (g.code == 0 && trimmed(g.value) == "ENDTAB") {
            giveTableHeadAHandle(KxDbPackedGroupsView(list.view().bytes().substr(start)), context);
            return;
        }
        if (g.code == 0 && trimmed(g.value) == "ENDSEC")
            break;
        // Dimension styles give their handle as 105 and use 5 for a block name.
        std::uint64_t handle = 0;
        if ((g.code == 105 || (g.code == 5 && name != "DIMSTYLE")) && tryHandle(g.value, handle)) {
            context.maxHandle = std::max(context.maxHandle, handle);
            context.db.reserveHandle(handle);
        }
        list.append(g.code, 0, g.value);
    }
    throw DxfError(line, "the table " + name + " has no ENDTAB.");
}

}  // namespace

KxDbObjectId addNamedBlock(ReadContext& context, KxDbSymbolTable& table, const std::wstring& name)
{
    // The name as the table's add takes it: up to its first NUL.
    const std::wstring given(name.c_str());
    if (!given.empty() && !isLayoutBlockName(given)) {
        KxDbPackedGroups groups;
        groups.append(2, 0, utf8FromWide(given));
        if (wideFromUtf8(firstValue(groups.view().bytes())) == given) {
            const KxDbObjectId id = context.db.unopenedRecords().keep(
                KxDbBlockTableRecord::desc(), recordLook("BLOCK_RECORD", table, {}), groups.view(), 0);
            if (!id.isNull())
                return id;
        }
    }
    auto block = std::make_unique<KxDbBlockTableRecord>();
    KxDbObjectId id;
    if (block->setName(given.c_str()) != Kald::eOk || table.add(block.get(), id) != Kald::eOk)
        return {};
    block.release()->close();
    return id;
}

KxDbObjectId keepMissingRecord(ReadContext& context, const KxDbSymbolTable& table, std::string_view name,
                               bool isLayer)
{
    KxDbPackedGroups groups;
    groups.append(2, 0, name);
    const KxRxClass* cls = isLayer ? KxDbLayerTableRecord::desc() : KxDbLinetypeTableRecord::desc();
    return context.db.unopenedRecords().keep(cls, recordLook(isLayer ? "LAYER" : "LTYPE", table, {}), groups.view(),
                                             0);
}

void readTablesSection(GroupReader& reader, ReadContext& context)
{
    Group g;
    Record head;
    KxDbPackedGroups& list = context.kept.tables;
    // The names of the tables read, found at once: a file may hold many.
    // Each is the place of its group in the list, counted from 1.
    kaldo::HashSlots names;
    const auto hashOf = [](std::string_view name) -> std::uint64_t { return std::hash<std::string_view>()(name); };
    const auto nameAt = [&list](std::uint64_t place) { return firstValue(list.view().bytes().substr(place - 1)); };
    const auto hashAt = [&](std::uint64_t place) { return hashOf(nameAt(place)); };
    forEachListedTable(list.view(),
                       [&](const ListedTable& table) { names.insert(hashOf(table.name), table.at + 1, hashAt); });
    while (reader.next(g)) {
        if (g.code != 0)
            throw DxfError(g.line, "TABLE or ENDSEC was expected.");
        const std::string kind(trimmed(g.value));
        if (kind == "ENDSEC") {
            resolveLayerLinetypes(context);
            return;
        }
        if (kind != "TABLE")
            throw DxfError(g.line, "TABLE or ENDSEC was expected, not \"" + std::string(kind.substr(0, 40)) + "\".");
        const long line = g.line;
        Group nameGroup;
        if (!reader.next(nameGroup) || nameGroup.code != 2)
            throw DxfError(line, "a table without its name (group 2).");
        const std::string name(trimmed(nameGroup.value));
        const std::uint64_t hash = hashOf(name);
        if (names.find(hash, [&](std::uint64_t place) { return nameAt(place) == name; }) != 0)
            throw DxfError(line, "the table " + name + " is there twice.");
        names.insert(hash, list.view().bytes().size() + 1, hashAt);
        list.append(0, kListPart, name);
        if (isModelledTable(name)) {
            reader.pushBack(nameGroup);
            head.read(reader, Group{0, "TABLE", line});
            readModelledTable(reader, context, name, head);
        } else {
            readKeptTable(reader, context, name, line);
        }
    }
    throw DxfError(g.line, "the file ends inside the tables.");
}

namespace {

void writeTableHead(GroupWriter& w, const char* name, const KxDbSymbolTable& table, int count)
{
    w.text(0, "TABLE");
    w.text(2, name);
    w.handle(5, table.handle());
    writeKeptPart(w, table, 0);
    w.handle(330, 0);
    w.text(100, "AcDbSymbolTable");
    w.integer(70, count);
    writeKeptPart(w, table, 1);
    writeKeptPart(w, table, 2);
}

void writeRecordStart(GroupWriter& w, const char* kind, const KxDbSymbolTableRecord& record, const char* subclass)
{
    writeRecordHead(w, kind, record);
    w.text(100, "AcDbSymbolTableRecord");
    writeKeptPart(w, record, 1);
    w.text(100, subclass);
    w.wide(2, record.name());
}

void writeLinetype(GroupWriter& w, const KxDbLinetypeTableRecord& lt)
{
    writeRecordStart(w, "LTYPE", lt, "AcDbLinetypeTableRecord");
    w.integer(70, keptInteger(lt, 70, 0));
    w.wide(3, lt.description());
    w.integer(72, keptInteger(lt, 72, 65));
    w.integer(73, lt.numDashes());
    w.real(40, lt.patternLength());
    for (int i = 0; i < lt.numDashes(); ++i) {
        w.real(49, lt.dashLengthAt(i));
        const auto part = std::uint8_t(std::min(kDashPart + i, kMaxDashPart));
        bool hasFlags = false;
        lt.keptGroups().forEach([&](std::int16_t code, std::uint8_t groupPart, std::string_view) {
            hasFlags = groupPart == part && code == 74;
            return !hasFlags;
        });
        if (!hasFlags)
            w.integer(74, 0);
        writeKeptPart(w, lt, part);
    }
    lt.keptGroups().forEach([&](std::int16_t code, std::uint8_t part, std::string_view value) {
        if (part == 2 && code != 70 && code != 72)
            w.text(code, value);
    });
    writeKeptPart(w, lt, kxdbExtendedDataPart);
}

void writeLayer(GroupWriter& w, NameCache& names, const KxDbLayerTableRecord& layer)
{
    writeRecordStart(w, "LAYER", layer, "AcDbLayerTableRecord");
    w.integer(70, (keptInteger(layer, 70, 0) & ~1) | (layer.isFrozen() ? 1 : 0));
    const KxCmColor& color = layer.color();
    const int index = color.colorIndex() == KxCmColor::kIndexByLayer ? 7 : color.colorIndex();
    w.integer(62, layer.isOff() ? -index : index);
    if (color.isByColor())
        w.integer(420, color.color() & 0xFFFFFFu);
    w.text(6, names(layer.linetypeObjectId(), "Continuous"));
    writeKeptExcept(w, layer, 2, 70);
    writeKeptPart(w, layer, kxdbExtendedDataPart);
}

void writeBlockRecord(GroupWriter& w, const KxDbBlockTableRecord& block)
{
    writeRecordStart(w, "BLOCK_RECORD", block, "AcDbBlockTableRecord");
    writeKeptPart(w, block, 2);
    writeKeptPart(w, block, kxdbExtendedDataPart);
}

template <class Table, class WriteRecord>
void writeTable(GroupWriter& w, const KxDbDatabase& db, KxDbObjectId tableId, const char* name, WriteRecord write)
{
    const auto* table = Table::cast(db.peekObject(tableId));
    if (!table)
        return;
    int count = 0;
    for (auto it = table->newIterator(); !it->done(); it->step())
        ++count;
    writeTableHead(w, name, *table, count);
    // A record kept unopened is written from an object made for the moment.
    for (auto it = table->newIterator(); !it->done(); it->step()) {
        const std::unique_ptr<KxDbObject> aside = db.unopenedRecords().makeAside(it->getRecordId());
        write(*KxDbSymbolTableRecord::cast(aside ? aside.get() : db.peekObject(it->getRecordId())));
    }
    w.text(0, "ENDTAB");
}

}  // namespace

void writeTablesSection(GroupWriter& w, const KxDbDatabase& db, const KeptSections& kept)
{
    const auto writeModelled = [&](std::string_view name) {
        if (name == "LTYPE") {
            writeTable<KxDbLinetypeTable>(w, db, db.linetypeTableId(), "LTYPE", [&](const auto& r) {
                writeLinetype(w, static_cast<const KxDbLinetypeTableRecord&>(r));
            });
        } else if (name == "LAYER") {
            NameCache names(db);
            writeTable<KxDbLayerTable>(w, db, db.layerTableId(), "LAYER", [&](const auto& r) {
                writeLayer(w, names, static_cast<const KxDbLayerTableRecord&>(r));
            });
        } else {
            writeTable<KxDbBlockTable>(w, db, db.blockTableId(), "BLOCK_RECORD", [&](const auto& r) {
                writeBlockRecord(w, static_cast<const KxDbBlockTableRecord&>(r));
            });
        }
    };
    static constexpr std::array<std::string_view, 3> kModelledOrder = {"LTYPE", "LAYER", "BLOCK_RECORD"};
    std::array<bool, 3> listed{};
    w.text(0, "SECTION");
    w.text(2, "TABLES");
    forEachListedTable(kept.tables.view(), [&](const ListedTable& table) {
        if (isModelledTable(table.name)) {
            listed[std::size_t(std::find(kModelledOrder.begin(), kModelledOrder.end(), table.name)
                               - kModelledOrder.begin())] = true;
            writeModelled(table.name);
            return;
        }
        w.text(0, "TABLE");
        w.text(2, table.name);
        if (!table.madeHandle.empty()) {
            w.text(5, table.madeHandle);
            w.text(330, "0");
            w.text(100, "AcDbSymbolTable");
        }
        table.groups.forEach([&](int code, std::uint8_t, std::string_view value) { w.text(code, value); });
        w.text(0, "ENDTAB");
    });
    // The modelled tables the file did not list follow, in this order.
    for (std::size_t i = 0; i < kModelledOrder.size(); ++i)
        if (!listed[i])
            writeModelled(kModelledOrder[i]);
    w.text(0, "ENDSEC");
}

std::map<std::string, std::string> textStyleFonts(const KeptSections& kept)
{
    std::map<std::string, std::string> fonts;
    forEachListedTable(kept.tables.view(), [&](const ListedTable& table) {
        if (table.name != "STYLE")
            return;
        std::string name, font;
        const auto keep = [&] {
            if (!name.empty())
                fonts[utf8FromWide(kaldo::foldName(wideFromUtf8(name)))] = font;
            name.clear();
            font.clear();
        };
        table.groups.forEach([&](std::int16_t code, std::uint8_t, std::string_view value) {
            if (code == 0)
                keep();
            else if (code == 2)
                name = std::string(trimmed(value));
            else if (code == 3)
                font = std::string(trimmed(value));
        });
        keep();
    });
    return fonts;
}

}  // namespace kaldo::dxf
