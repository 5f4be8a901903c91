#include "kaldo/dxf/TablesSection.h"

#include "kaldo/dxf/DxfError.h"
#include "kaldo/dxf/GroupWriter.h"
#include "kaldo/dxf/ReadContext.h"
#include "kaldo/dxf/RecordColor.h"
#include "kaldo/dxf/RecordWriting.h"
#include "kaldo/db/NameKey.h"
#include "kaldo/util/Utf8.h"
#include "kxdbsymtb.h"

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

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

void readLinetype(const Record& record, ReadContext& context, KxDbSymbolTable& table)
{
    auto record_ = std::make_unique<KxDbLinetypeTableRecord>();
    RecordBasics basics;
    std::wstring name;
    std::vector<double> dashes;
    walkRecord(record, basics, [&](const Group& g) {
        switch (g.code) {
        case 2:
            name = wideFromUtf8(g.value);
            return true;
        case 3:
            record_->setDescription(wideFromUtf8(g.value).c_str());
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
    record_->setName(name.c_str());
    record_->setDashes(std::move(dashes));
    KxDbLinetypeTableRecord* rec = record_.release();
    const KxDbObjectId id = context.add(rec, basics);
    table.add(rec);
    if (kaldo::sameName(name, L"ByLayer"))
        context.roots.byLayer = id;
    else if (kaldo::sameName(name, L"ByBlock"))
        context.roots.byBlock = id;
    else if (kaldo::sameName(name, L"Continuous"))
        context.roots.continuous = id;
}

void readLayer(const Record& record, ReadContext& context, KxDbSymbolTable& table)
{
    auto layer = std::make_unique<KxDbLayerTableRecord>();
    RecordBasics basics;
    std::wstring name;
    KxCmColor color;
    std::string linetype;
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
    KxDbLayerTableRecord* rec = layer.release();
    const KxDbObjectId id = context.add(rec, basics);
    if (!linetype.empty())
        context.layerLinetypes.push_back({id, std::move(linetype)});
    table.add(rec);
}

void readBlockRecord(const Record& record, ReadContext& context, KxDbSymbolTable& table)
{
    auto block = std::make_unique<KxDbBlockTableRecord>();
    RecordBasics basics;
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
    KxDbBlockTableRecord* rec = block.release();
    const KxDbObjectId id = context.add(rec, basics);
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

// Old versions write table heads without a handle; newer ones need one.
void giveTableHeadAHandle(KeptBlock& table, ReadContext& context)
{
    bool hasHandle = false;
    table.groups.view().forEach([&](std::int16_t code, std::uint8_t, std::string_view) {
        hasHandle = code == 5;
        return code != 0 && code != 5;
    });
    if (hasHandle)
        return;
    context.db.setHandseed(std::max(context.db.handseed(), context.maxHandle + 1));
    const std::uint64_t handle = context.db.reserveNewHandle();
    context.maxHandle = std::max(context.maxHandle, handle);
    table.madeHandle = handleText(handle);
}

// Each layer takes the linetype of its name from the drawing's table,
// which is complete now (a missing one is added there).
void resolveLayerLinetypes(ReadContext& context)
{
    for (const ReadContext::LayerLinetype& each : context.layerLinetypes)
        if (auto* layer = KxDbLayerTableRecord::cast(context.db.peekObject(each.layer)))
            layer->setLinetypeObjectId(context.linetype(each.linetype));
    context.layerLinetypes.clear();
}

void readKeptTable(GroupReader& reader, ReadContext& context, const std::string& name, long line)
{
    KeptBlock table{name, {}, {}};
    Group g;
    while (reader.next(g)) {
        if (g.code == 0 && trimmed(g.value) == "ENDTAB") {
            giveTableHeadAHandle(table, context);
            context.kept.tables.push_back(std::move(table));
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
        table.groups.append(g.code, 0, g.value);
    }
    throw DxfError(line, "the table " + name + " has no ENDTAB.");
}

}  // namespace

void readTablesSection(GroupReader& reader, ReadContext& context)
{
    Group g;
    Record head;
    // The names of the tables read, found at once: a file may hold many.
    std::unordered_set<std::string> names(context.kept.tableOrder.begin(), context.kept.tableOrder.end());
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
        if (!names.insert(name).second)
            throw DxfError(line, "the table " + name + " is there twice.");
        context.kept.tableOrder.push_back(name);
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

std::string nameOf(const KxDbDatabase& db, KxDbObjectId id, const char* fallback)
{
    const auto* record = KxDbSymbolTableRecord::cast(db.peekObject(id));
    return record ? utf8FromWide(record->name()) : fallback;
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

void writeLayer(GroupWriter& w, const KxDbDatabase& db, const KxDbLayerTableRecord& layer)
{
    writeRecordStart(w, "LAYER", layer, "AcDbLayerTableRecord");
    w.integer(70, (keptInteger(layer, 70, 0) & ~1) | (layer.isFrozen() ? 1 : 0));
    const KxCmColor& color = layer.color();
    const int index = color.colorIndex() == KxCmColor::kIndexByLayer ? 7 : color.colorIndex();
    w.integer(62, layer.isOff() ? -index : index);
    if (color.isByColor())
        w.integer(420, color.color() & 0xFFFFFFu);
    w.text(6, nameOf(db, layer.linetypeObjectId(), "Continuous"));
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
    std::vector<const KxDbSymbolTableRecord*> records;
    for (auto it = table->newIterator(); !it->done(); it->step())
        records.push_back(KxDbSymbolTableRecord::cast(db.peekObject(it->getRecordId())));
    writeTableHead(w, name, *table, int(records.size()));
    for (const KxDbSymbolTableRecord* record : records)
        write(*record);
    w.text(0, "ENDTAB");
}

}  // namespace

void writeTablesSection(GroupWriter& w, const KxDbDatabase& db, const KeptSections& kept)
{
    static constexpr std::array<const char*, 3> kModelledOrder = {"LTYPE", "LAYER", "BLOCK_RECORD"};
    std::vector<std::string> order = kept.tableOrder;
    for (const char* name : kModelledOrder)
        if (std::find(order.begin(), order.end(), name) == order.end())
            order.emplace_back(name);
    // The kept tables by name, in the file's order, found at once.
    std::unordered_map<std::string_view, std::vector<const KeptBlock*>> keptByName;
    for (const KeptBlock& table : kept.tables)
        keptByName[table.name].push_back(&table);
    w.text(0, "SECTION");
    w.text(2, "TABLES");
    for (const std::string& name : order) {
        if (name == "LTYPE") {
            writeTable<KxDbLinetypeTable>(w, db, db.linetypeTableId(), "LTYPE", [&](const auto& r) {
                writeLinetype(w, static_cast<const KxDbLinetypeTableRecord&>(r));
            });
        } else if (name == "LAYER") {
            writeTable<KxDbLayerTable>(w, db, db.layerTableId(), "LAYER", [&](const auto& r) {
                writeLayer(w, db, static_cast<const KxDbLayerTableRecord&>(r));
            });
        } else if (name == "BLOCK_RECORD") {
            writeTable<KxDbBlockTable>(w, db, db.blockTableId(), "BLOCK_RECORD", [&](const auto& r) {
                writeBlockRecord(w, static_cast<const KxDbBlockTableRecord&>(r));
            });
        } else {
            const auto found = keptByName.find(name);
            if (found == keptByName.end())
                continue;
            for (const KeptBlock* keptTable : found->second) {
                const KeptBlock& table = *keptTable;
                w.text(0, "TABLE");
                w.text(2, name);
                if (!table.madeHandle.empty()) {
                    w.text(5, table.madeHandle);
                    w.text(330, "0");
                    w.text(100, "AcDbSymbolTable");
                }
                table.groups.view().forEach([&](int code, std::uint8_t, std::string_view value) { w.text(code, value); });
                w.text(0, "ENDTAB");
            }
        }
    }
    w.text(0, "ENDSEC");
}

std::map<std::string, std::string> textStyleFonts(const KeptSections& kept)
{
    std::map<std::string, std::string> fonts;
    for (const KeptBlock& table : kept.tables) {
        if (table.name != "STYLE")
            continue;
        std::string name, font;
        const auto keep = [&] {
            if (!name.empty())
                fonts[utf8FromWide(kaldo::foldName(wideFromUtf8(name)))] = font;
            name.clear();
            font.clear();
        };
        table.groups.view().forEach([&](std::int16_t code, std::uint8_t, std::string_view value) {
            if (code == 0)
                keep();
            else if (code == 2)
                name = std::string(trimmed(value));
            else if (code == 3)
                font = std::string(trimmed(value));
        });
        keep();
    }
    return fonts;
}

}  // namespace kaldo::dxf
