// Reading a drawing file section by section, then resolving references by
// handle and adding what every drawing must have.
#include "kaldo/dxf/DxfFile.h"

#include "kaldo/db/NameKey.h"
#include "kaldo/db/ObjectRegistry.h"
#include "kaldo/db/UnopenedRecords.h"
#include "kaldo/dxf/DefaultRecords.h"
#include "kaldo/dxf/DxfError.h"
#include "kaldo/dxf/EntityRecords.h"
#include "kaldo/dxf/GroupReader.h"
#include "kaldo/dxf/HeaderSection.h"
#include "kaldo/dxf/ObjectRecords.h"
#include "kaldo/dxf/ReadContext.h"
#include "kaldo/dxf/RecordWriting.h"
#include "kaldo/dxf/SectionRecords.h"
#include "kaldo/dxf/TablesSection.h"
#include "kaldo/dxf/UnmodelledRecords.h"
#include "kaldo/util/FileAccess.h"
#include "kaldo/util/Utf8.h"
#include "kxdbdatabase.h"
#include "kxdbdict.h"
#include "kxdbmline.h"
#include "kxdbmlstyle.h"
#include "kxdbsymtb.h"
#include "kxdbunmodelled.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include <sys/stat.h>

namespace kaldo::dxf {

DxfDrawing::DxfDrawing() = default;
DxfDrawing::DxfDrawing(DxfDrawing&&) noexcept = default;
DxfDrawing& DxfDrawing::operator=(DxfDrawing&&) noexcept = default;
DxfDrawing::~DxfDrawing() = default;

namespace {

// Appends the groups of a section kept whole (CLASSES and unknown ones) to
// groups, up to its ENDSEC.
void readKeptSection(GroupReader& reader, const std::string& name, long line, KxDbPackedGroups& groups)
{
    Group g;
    while (reader.next(g)) {
        if (g.code == 0 && trimmed(g.value) == "ENDSEC")
            return;
        groups.append(g.code, 0, g.value);
    }
    throw DxfError(line, "the section " + name + " has no ENDSEC.");
}

// The block record a BLOCK record begins: by its owner, else by its name;
// a file without block records (an old version) gets one made up.
KxDbObjectId blockRecordFor(const Record& record, const RecordBasics& basics, ReadContext& context)
{
    if (const KxDbObjectId owner = context.blockByHandle(basics.owner); !owner.isNull())
        return owner;
    std::wstring name;
    record.forEach([&](const Group& g) {
        if (g.code == 2)
            name = wideFromUtf8(trimmed(g.value));
        return true;
    });
    if (name.empty())
        throw DxfError(record.line(), "a block without a name.");
    if (kaldo::sameName(name, L"$MODEL_SPACE"))
        name = kxdbModelSpaceName;
    else if (kaldo::sameName(name, L"$PAPER_SPACE"))
        name = kxdbPaperSpaceName;
    auto* table = KxDbBlockTable::cast(context.db.peekObject(ensureBlockTable(context)));
    KxDbObjectId id;
    if (table->getAt(name.c_str(), id) == Kald::eOk)
        return id;
    id = addNamedBlock(context, *table, name);
    if (id.isNull())
        throw DxfError(record.line(), "a block whose name cannot be used.");
    if (kaldo::sameName(name, kxdbModelSpaceName))
        context.roots.modelSpace = id;
    else if (kaldo::sameName(name, kxdbPaperSpaceName))
        context.roots.paperSpace = id;
    return id;
}

// Throws for records that ended otherwise than with "0 ENDSEC".
void checkSectionEnd(const SectionRecords& records, const char* notARecord, const char* inputEnd)
{
    if (records.end() == SectionRecords::End::NotARecord)
        throw DxfError(records.endLine(), notARecord);
    if (records.end() == SectionRecords::End::Input)
        throw DxfError(records.endLine(), inputEnd);
}

// The sections of many records are read as SectionRecords: on a second
// thread while their objects are built here, when they are large; that
// thread also takes entities apart (readEntityAhead).
void readBlocksSection(GroupReader& reader, ReadContext& context, ProgressMeter& meter)
{
    SectionRecords records(reader, readEntityAhead);
    KxDbObjectId block;
    KxDbObjectId begin;
    while (const Record* record = records.next()) {
        meter.record();
        const std::string_view kind = record->kind();
        if (kind == "BLOCK" || kind == "ENDBLK")
            finishRecordRun(context);
        if (kind == "BLOCK") {
            if (!block.isNull())
                throw DxfError(record->line(), "a block begins inside another one.");
            const RecordBasics basics = rawRecordBasics(*record);
            block = blockRecordFor(*record, basics, context);
            begin = keepBlockEnd(*record, basics.handle, context);
        } else if (kind == "ENDBLK") {
            if (block.isNull())
                throw DxfError(record->line(), "ENDBLK without its BLOCK.");
            const KxDbObjectId end = keepBlockEnd(*record, rawRecordBasics(*record).handle, context);
            context.kept.blockEnds.add(block, {begin, end});
            block = KxDbObjectId();
        } else {
            if (block.isNull())
                throw DxfError(record->line(), "an entity outside of any block.");
            readEntity(*record, context, block, records.ahead());
        }
    }
    finishRecordRun(context);
    context.kept.blockEnds.settle();
    checkSectionEnd(records, "a record (group 0) was expected in the blocks.", "the file ends inside the blocks.");
    if (!block.isNull())
        throw DxfError(records.endLine(), "the blocks end inside a block (ENDBLK is missing).");
}

void readEntitiesSection(GroupReader& reader, ReadContext& context, ProgressMeter& meter)
{
    ensureLayoutBlocks(context);
    SectionRecords records(reader, readEntityAhead);
    while (const Record* record = records.next()) {
        meter.record();
        readEntity(*record, context, KxDbObjectId(), records.ahead());
    }
    finishRecordRun(context);
    checkSectionEnd(records, "an entity (group 0) was expected.", "the file ends inside the entities.");
}

void readObjectsSection(GroupReader& reader, ReadContext& context, ProgressMeter& meter)
{
    SectionRecords records(reader);
    while (const Record* record = records.next()) {
        meter.record();
        readObject(*record, context);
    }
    finishRecordRun(context);
    checkSectionEnd(records, "an object (group 0) was expected.", "the file ends inside the objects.");
}

// A key for an entry whose name another entry of the dictionary has (case
// aside): the name with the first free "_2", "_3", ... after it.
std::wstring freeKey(const KxDbDictionary& dict, const std::wstring& name)
{
    for (int n = 2;; ++n)
        if (const std::wstring key = name + L"_" + std::to_wstring(n); !dict.has(key.c_str()))
            return key;
}

// Gives the object id names its dictionary as owner: in its record when
// it is kept unopened and the record has room, else opened.
void giveOwner(KxDbDatabase& db, KxDbObjectId id, KxDbObjectId owner)
{
    kaldo::UnopenedRecords& unopened = db.unopenedRecords();
    if (const auto kept = unopened.kept(id); kept && kept->owner == owner)
        return;
    if (!unopened.setOwner(id, owner))
        db.peekObject(id)->setOwnerId(owner);
}

// Puts every dictionary entry read in its dictionary, without opening the
// objects kept unopened that the entries name.
void linkDictionaryEntries(ReadContext& context)
{
    KxDbDatabase& db = context.db;
    context.dictionaryEntries.forEach([&](const PendingDictionaryEntries::Entry& entry) {
        const std::wstring name = wideFromUtf8(entry.name);
        const KxDbObjectId target = db.objectIdFromHandle(entry.handle);
        auto* dict = KxDbDictionary::cast(db.peekObject(entry.dictionary));
        if (target.isNull() || kaldo::registeredDatabase(target) != &db)
            throw DxfError(entry.line, "the dictionary entry \"" + utf8FromWide(name) + "\" points to handle "
                                           + handleText(entry.handle) + ", which no object has.");
        const bool isStyle = kaldo::registeredClass(target)->isDerivedFrom(KxDbMlineStyle::desc());
        if (dict->handle() == context.mlineStyleDictionaryHandle && !isStyle)
            throw DxfError(entry.line, "the multiline style \"" + utf8FromWide(name) + "\" points to handle "
                                           + handleText(entry.handle) + ", which is no multiline style.");
        // Keys are the same without regard to case here: a second spelling
        // of a key would take the first one's place and drop its object.
        std::wstring key = name;
        if (KxDbObjectId taken; dict->getAt(key.c_str(), taken) == Kald::eOk && taken != target) {
            key = freeKey(*dict, name);
            context.repairs.push_back("line " + std::to_string(entry.line) + ": the dictionary entry \""
                                      + utf8FromWide(name) + "\" repeats a name of the dictionary "
                                      + "(case aside); it is kept as \"" + utf8FromWide(key) + "\".");
            if (auto* style = isStyle ? KxDbMlineStyle::cast(db.peekObject(target)) : nullptr;
                style && kaldo::sameName(style->name(), name))
                style->setName(key.c_str());
        }
        // An entry naming its own dictionary is left out.
        if (dict->setIdAt(key.c_str(), target) == Kald::eOk)
            giveOwner(db, target, dict->objectId());
    });
}

void resolveReferences(ReadContext& context)
{
    noteKeptOwners(context);
    separateNamedRunRecords(context);
    linkDictionaryEntries(context);
    KxDbDatabase& db = context.db;
    kaldo::UnopenedRecords& unopened = db.unopenedRecords();
    for (const ReadContext::OwnerReference& ref : context.ownerReferences) {
        const KxDbObjectId owner = db.objectIdFromHandle(ref.owner);
        if (owner.isNull())
            continue;
        // An object kept unopened keeps its owner with its record; one a
        // dictionary owns keeps the dictionary, as one opened does.
        if (const auto kept = unopened.kept(ref.object);
            kept && (!kept->owner.isNull() || unopened.setOwner(ref.object, owner)))
            continue;
        KxDbObject* obj = db.peekObject(ref.object);
        if (obj && obj->ownerId().isNull())
            obj->setOwnerId(owner);
    }
}

constexpr const char* kLayoutNotFinite =
    "the multiline's lists do not fit its style, and laid out anew in it its numbers would not be finite.";

// Fits the lists of every vertex to the style's elements: the lists of the
// elements the style kept, in the style's order. False, with nothing
// changed, when a vertex lists another number of elements than the file
// gave the style.
bool fitElements(KxDbMline& mline, const KxDbMlineStyle& style, const ReadContext::StyleElementOrder* order)
{
    const std::size_t listed = order ? order->listed : std::size_t(style.numElements());
    for (int v = 0; v < mline.numVertices(); ++v)
        if (std::size_t(mline.parametersAt(v).numElements()) != listed)
            return false;
    if (!order)
        return true;
    std::vector<KxDbMlineVertex> vertices;
    vertices.reserve(std::size_t(mline.numVertices()));
    KxDbMlineListStore lists;
    KxDbMlineListSet ordered;
    for (int v = 0; v < mline.numVertices(); ++v) {
        const KxDbMlineVertexLists read = mline.parametersAt(v);
        KxDbMlineListsRef placed;
        if (v > 0 && read.sharesStorageWith(mline.parametersAt(v - 1))) {
            placed = vertices.back().lists;
        } else {
            ordered.setNumElements(0);
            ordered.setNumElements(int(order->places.size()));
            for (std::size_t i = 0; i < order->places.size(); ++i) {
                ordered.setElement(int(order->places[i]), read.element(int(i)));
                ordered.setAreaFill(int(order->places[i]), read.areaFill(int(i)));
            }
            placed = lists.add(ordered.view());
        }
        vertices.push_back(KxDbMlineVertex{mline.vertexAt(v), mline.axisAt(v), mline.miterAt(v), placed});
    }
    KxDbSystemInternals::getImpObject(&mline)->setStoredVertices(std::move(vertices), lists);
    return true;
}

// Gives a multiline kept unopened its style in its look, laid out anew
// when its lists do not fit, as resolveMlineStyles does to one opened:
// false, giving nothing, when its lists must be put in the style's order
// (it is opened for that).
bool styleUnopened(KxDbDatabase& db, const ReadContext::StyleReference& ref, const MlineOutline& outline,
                   const KxDbMlineStyle& style, const ReadContext::StyleElementOrder* order, int& laidOut)
{
    const std::size_t listed = order ? order->listed : std::size_t(style.numElements());
    const bool fits = outline.vertices == 0 || (outline.elements >= 0 && std::size_t(outline.elements) == listed);
    if (fits && order)
        return false;
    kaldo::UnopenedRecords& unopened = db.unopenedRecords();
    const std::optional<kaldo::UnopenedRecords::Kept> kept = unopened.kept(ref.mline);
    kaldo::UnopenedRecords::Look look = *kept->look;
    look.style = style.objectId();
    look.layOut = !fits;
    if (!fits) {
        Record record;
        record.assign(look.kind, kept->groups);
        if (!layoutFinite(record, style))
            throw DxfError(ref.line, kLayoutNotFinite);
        ++laidOut;
    }
    unopened.setLook(ref.mline, look);
    return true;
}

// Gives every multiline its style, in the order read (those made when
// read and those kept unopened by their ids). A multiline whose style
// handle points to no style takes STANDARD, and one whose lists do not fit
// its style's elements is laid out anew in that style (its runs drawn
// whole), so that files other programs wrote with such faults open.
void resolveMlineStyles(ReadContext& context)
{
    KxDbDatabase& db = context.db;
    const auto* styles = KxDbDictionary::cast(db.peekObject(db.mlineStyleDictionaryId()));
    KxDbObjectId standard;
    styles->getAt(kxdbStandardStyleName, standard);
    int restyled = 0;
    int laidOut = 0;
    const auto resolve = [&](const ReadContext::StyleReference& ref, const MlineOutline* outline) {
        KxDbObjectId style;
        if (ref.handle != 0) {
            style = db.objectIdFromHandle(ref.handle);
            if (!KxDbMlineStyle::cast(db.peekObject(style))) {
                style = standard;
                ++restyled;
            }
        } else if (styles->getAt(ref.name.c_str(), style) != Kald::eOk) {
            style = standard;
        }
        const auto* styleObject = KxDbMlineStyle::cast(db.peekObject(style));
        const auto order = context.styleElementOrders.find(styleObject->handle());
        const ReadContext::StyleElementOrder* elementOrder =
            order == context.styleElementOrders.end() ? nullptr : &order->second;
        if (outline && kaldo::isUnopened(ref.mline)
            && styleUnopened(db, ref, *outline, *styleObject, elementOrder, laidOut))
            return;
        auto* mline = KxDbMline::cast(db.peekObject(ref.mline));
        if (fitElements(*mline, *styleObject, elementOrder)) {
            KxDbSystemInternals::getImpObject(mline)->setStoredProperties(
                style, mline->justification(), mline->scale(), mline->normal(), mline->closedMline(),
                mline->supressStartCaps(), mline->supressEndCaps());
        } else if (mline->setStyle(style) == Kald::eOk) {
            ++laidOut;
        } else {
            throw DxfError(ref.line, kLayoutNotFinite);
        }
    };
    KeptMlines::Cursor kept(context.keptMlines);
    auto made = context.styleReferences.begin();
    while (!kept.done() || made != context.styleReferences.end()) {
        if (!kept.done()
            && (made == context.styleReferences.end() || kept.entry().mline.asOldId() < made->mline.asOldId())) {
            const KeptMlines::Entry& entry = kept.entry();
            resolve({entry.mline, entry.style.handle, entry.style.name, entry.style.line}, &entry.outline);
            kept.next();
        } else {
            resolve(*made++, nullptr);
        }
    }
    if (restyled > 0)
        context.repairs.push_back(std::to_string(restyled) + (restyled == 1 ? " multiline points" : " multilines point")
                                  + " to no multiline style; now " + (restyled == 1 ? "it uses" : "they use")
                                  + " STANDARD.");
    if (laidOut > 0)
        context.repairs.push_back(std::to_string(laidOut) + (laidOut == 1 ? " multiline lists" : " multilines list")
                                  + " another number of elements than " + (laidOut == 1 ? "its" : "their")
                                  + " style; now laid out anew in it, every element drawn whole.");
}

}  // namespace

DxfDrawing readDxf(GroupReader& reader, ProgressMeter meter)
{
    meter.report();
    DxfDrawing drawing;
    drawing.database = std::make_unique<KxDbDatabase>(false);
    ReadContext context(*drawing.database, drawing.kept);
    Group g;
    bool ended = false;
    bool sawEntities = false;
    while (!ended && reader.next(g)) {
        if (g.code == 999)
            continue;
        if (g.code != 0)
            throw DxfError(g.line, "a section (0 SECTION) was expected.");
        const std::string kind(trimmed(g.value));
        if (kind == "EOF") {
            ended = true;
            break;
        }
        if (kind != "SECTION")
            throw DxfError(g.line, "a section (0 SECTION) was expected, not \"" + std::string(kind.substr(0, 40)) + "\".");
        const long line = g.line;
        if (!reader.next(g) || g.code != 2)
            throw DxfError(line, "a section without its name (group 2).");
        const std::string name(trimmed(g.value));
        meter.report();
        if (name == "HEADER") {
            readHeaderSection(reader, context);
        } else if (name == "CLASSES") {
            context.kept.hasClasses = true;
            context.kept.classes.clear();
            readKeptSection(reader, name, line, context.kept.classes);
        } else if (name == "TABLES") {
            readTablesSection(reader, context);
        } else if (name == "BLOCKS") {
            readBlocksSection(reader, context, meter);
        } else if (name == "ENTITIES") {
            readEntitiesSection(reader, context, meter);
            sawEntities = true;
        } else if (name == "OBJECTS") {
            readObjectsSection(reader, context, meter);
        } else {
            KxDbPackedGroups& sections = context.kept.sections;
            sections.append(0, 0, "SECTION");
            sections.append(2, 0, name);
            readKeptSection(reader, name, line, sections);
            sections.append(0, 0, "ENDSEC");
        }
    }
    if (!ended)
        throw DxfError(g.line, "the file ends without EOF: it is cut short.");
    if (!sawEntities)
        throw DxfError(0, "the file has no ENTITIES section: it is no drawing.");
    // The reading room goes before multilines may be laid out anew.
    context.mlineLists = {};
    resolveReferences(context);
    addMissingRecords(context);
    resolveMlineStyles(context);
    resolveHeaderReferences(context);
    drawing.kept.extents = context.extents.known(*drawing.database);
    drawing.repairs = std::move(context.repairs);
    meter.finish();
    return drawing;
}

DxfDrawing readDxfFile(const std::filesystem::path& path, const ProgressReport& report)
{
    FileDescriptor fd;
    try {
        fd = openForReading(path);
    } catch (const FileError& e) {
        throw DxfError(0, e.what());
    }
    struct stat info {};
    std::FILE* file = ::fstat(fd.get(), &info) == 0 ? ::fdopen(fd.get(), "rb") : nullptr;
    if (!file)
        throw DxfError(0, fileMessage("read", path, std::strerror(errno)));
    fd.release();
    struct Closer {
        std::FILE* f;
        ~Closer() { std::fclose(f); }
    } closer{file};
    GroupReader reader(file);
    try {
        return readDxf(reader, ProgressMeter(report, std::uint64_t(info.st_size),
                                             [&reader] { return reader.position(); }));
    } catch (const DxfError& e) {
        throw DxfError::inFile(path.filename().string(), e);
    }
}

}  // namespace kaldo::dxf
