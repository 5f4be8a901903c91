#include "kaldo/dxf/ObjectRecords.h"

#include "kaldo/db/NameKey.h"
#include "kaldo/db/ObjectRegistry.h"
#include "kaldo/db/RecordRun.h"
#include "kaldo/db/TableRecords.h"
#include "kaldo/db/UnopenedRecords.h"
#include "kaldo/dxf/DxfError.h"
#include "kaldo/dxf/EntityRecords.h"
#include "kaldo/dxf/GroupWriter.h"
#include "kaldo/dxf/ReadContext.h"
#include "kaldo/dxf/RecordColor.h"
#include "kaldo/dxf/RecordWriting.h"
#include "kaldo/dxf/UnmodelledRecords.h"
#include "kaldo/util/Utf8.h"
#include "kxdbdict.h"
#include "kxdbmlstyle.h"
#include "kxdbsymtb.h"
#include "kxdbunmodelled.h"

#include <algorithm>
#include <memory>
#include <numeric>
#include <numbers>
#include <utility>

namespace kaldo::dxf {

namespace {

enum StyleFlags : int {
    kFill = 0x1,
    kMiters = 0x2,
    kStartSquare = 0x10,
    kStartInner = 0x20,
    kStartRound = 0x40,
    kEndSquare = 0x100,
    kEndInner = 0x200,
    kEndRound = 0x400,
};

void readDictionary(const Record& record, ReadContext& context, bool isRoot)
{
    auto dict = std::make_unique<KxDbDictionary>();
    RecordBasics basics;
    PendingDictionaryEntries& entries = context.dictionaryEntries;
    entries.startDictionary();
    // The entry read last, added once its handle is read or another entry
    // starts.
    std::string name;
    std::uint64_t handle = 0;
    long line = 0;
    bool named = false;
    walkRecord(record, basics, [&](const Group& g) {
        switch (g.code) {
        case 3:
            if (named)
                entries.add(name, handle, line);
            name.assign(g.value);
            handle = 0;
            line = g.line;
            named = true;
            return true;
        case 350:
        case 360:
            if (!named || handle != 0)
                throw DxfError(g.line, "a dictionary entry without its name (group 3).");
            handle = toHandle(g);
            if (g.code == 360)
                dict->setTreatElementsAsHard(true);
            return true;
        default:
            return false;
        }
    });
    if (named)
        entries.add(name, handle, line);
    KxDbDictionary* added = dict.release();
    const KxDbObjectId id = context.add(added, std::move(basics));
    entries.finishDictionary(id);
    entries.forEach(
        [&](const PendingDictionaryEntries::Entry& entry) {
            if (entry.handle == 0)
                throw DxfError(entry.line, "the dictionary entry \"" + utf8FromWide(wideFromUtf8(entry.name))
                                                 + "\" has no handle.");
            if (isRoot && kaldo::sameName(wideFromUtf8(entry.name), kxdbMlineStyleDictionaryName))
                context.mlineStyleDictionaryHandle = entry.handle;
        },
        true);
    if (isRoot)
        context.roots.namedObjects = id;
}

// Keeps an object of class cls whose record takes less than half of
// objectBytes unopened, to be made by maker when first looked up; false,
// keeping nothing, when it must be added as an object. Its owner, when it
// names one, is kept with the record: found by its handle now when the
// object was read before, else once the whole file is read (noteKeptOwners).
bool keepUnopened(const Record& record, const RecordBasics& basics, std::size_t objectBytes, const KxRxClass* cls,
                  kaldo::UnopenedRecords::Maker maker, ReadContext& context)
{
    const KxDbPackedGroupsView groups = record.packedGroups();
    if (2 * groups.bytes().size() >= objectBytes)
        return false;
    kaldo::UnopenedRecords::Look look;
    look.kind = record.kind();
    look.ownerInRecord = basics.owner != 0;
    look.maker = maker;
    const KxDbObjectId owner = look.ownerInRecord ? context.db.objectIdFromHandle(basics.owner) : KxDbObjectId();
    const KxDbObjectId id =
        context.db.unopenedRecords().keep(cls, look, groups, context.fileHandle(basics.handle), false, owner);
    if (id.isNull())
        return false;
    if (look.ownerInRecord && owner.isNull())
        ++context.keptOwnersUnknown;
    return true;
}

std::unique_ptr<KxDbObject> makeUnmodelled(const kaldo::UnopenedRecords::Look& look, KxDbPackedGroupsView groups)
{
    return KxDbUnmodelledObject::make(look.kind, groups);
}

// A record kept whole, unopened while it is small beside its object (which
// holds its groups too).
void readUnmodelled(const Record& record, ReadContext& context)
{
    RecordBasics basics = rawRecordBasics(record);
    if (!keepUnopened(record, basics, sizeof(KxDbUnmodelledObject) + record.packedGroups().bytes().size(),
                      KxDbUnmodelledObject::desc(), &makeUnmodelled, context))
        context.add(KxDbUnmodelledObject::make(record.kind(), record.packedGroups()).release(), std::move(basics));
}

struct StyleElement {
    double offset = 0;
    KxCmColor color;
    std::string linetype;
};

// The elements a style's record lists: the first ones a style holds, and
// how many it lists in all (those beyond are read into one, left out).
struct StyleElements {
    std::vector<StyleElement> kept;
    std::size_t listed = 0;
    StyleElement beyond;
    StyleElement& add()
    {
        ++listed;
        if (kept.size() < std::size_t(kxdbMaxMlineStyleElements))
            return kept.emplace_back();
        return beyond = {};
    }
    StyleElement& last() { return listed > kept.size() ? beyond : kept.back(); }
};

// The style a record gives but for its elements, which it lists. Reads in
// order: code 62 (and 420) is the fill colour before the element count
// (71) and an element's colour after it.
std::unique_ptr<KxDbMlineStyle> readStyleHead(const Record& record, RecordBasics& basics,
                                              StyleElements& elements)
{
    auto style = std::make_unique<KxDbMlineStyle>();
    style->initMlineStyle();
    bool inElements = false;
    KxCmColor fill;
    walkRecord(record, basics, [&](const Group& g) {
        switch (g.code) {
        case 2:
            style->setName(wideFromUtf8(g.value).c_str());
            return true;
        case 3:
            style->setDescription(wideFromUtf8(g.value).c_str());
            return true;
        case 70: {
            const auto flags = toInteger(g);
            style->setFilled(flags & kFill);
            style->setShowMiters(flags & kMiters);
            style->setStartSquareCap(flags & kStartSquare);
            style->setStartInnerArcs(flags & kStartInner);
            style->setStartRoundCap(flags & kStartRound);
            style->setEndSquareCap(flags & kEndSquare);
            style->setEndInnerArcs(flags & kEndInner);
            style->setEndRoundCap(flags & kEndRound);
            return true;
        }
        case 51:
        case 52: {
            const double radians = toReal(g) * (std::numbers::pi / 180.0);
            if ((g.code == 51 ? style->setStartAngle(radians) : style->setEndAngle(radians)) != Kald::eOk)
                throw DxfError(g.line + 1, "the cap angle is out of range.");
            return true;
        }
        case 71:
            inElements = true;
            return true;
        case 49: {
            if (!inElements)
                throw DxfError(g.line, "an element offset (49) before the element count (71).");
            StyleElement& element = elements.add();
            element = {toReal(g), KxCmColor(), "BYLAYER"};
            element.color.setColorIndex(KxCmColor::kIndexByBlock);
            return true;
        }
        case 6:
            if (elements.listed == 0)
                return false;
            elements.last().linetype = std::string(trimmed(g.value));
            return true;
        default:
            if (!inElements)
                return readColorGroup(g, fill);
            if (elements.listed == 0)
                return false;
            return readColorGroup(g, elements.last().color);
        }
    });
    style->setFillColor(fill);
    return style;
}

// Makes a style kept unopened (one without elements) as readMlineStyle
// would have made it.
std::unique_ptr<KxDbObject> makeUnopenedStyle(const kaldo::UnopenedRecords::Look& look, KxDbPackedGroupsView groups)
{
    Record record;
    record.assign(look.kind, groups);
    RecordBasics basics;
    StyleElements elements;
    std::unique_ptr<KxDbMlineStyle> style = readStyleHead(record, basics, elements);
    style->setKeptGroups(basics.takeKept());
    return style;
}

// A style that lists no elements is kept unopened while its record is
// small: its elements would need their linetypes found by name.
void readMlineStyle(const Record& record, ReadContext& context)
{
    RecordBasics basics;
    StyleElements elements;
    std::unique_ptr<KxDbMlineStyle> style = readStyleHead(record, basics, elements);
    if (elements.listed == 0
        && keepUnopened(record, basics, sizeof(KxDbMlineStyle), KxDbMlineStyle::desc(), &makeUnopenedStyle, context))
        return;
    // A style holds at most kxdbMaxMlineStyleElements: the first ones the
    // file lists are kept.
    const std::size_t kept = elements.kept.size();
    for (const StyleElement& element : elements.kept) {
        int index = 0;
        style->addElement(index, element.offset, element.color, context.linetype(element.linetype), false);
    }
    if (kept < elements.listed)
        context.repairs.push_back("line " + std::to_string(record.line()) + ": the multiline style \""
                                  + utf8FromWide(style->name()) + "\" lists " + std::to_string(elements.listed)
                                  + " elements; the first " + std::to_string(kept) + " are kept and "
                                  + std::to_string(elements.listed - kept) + " left out, from its multilines too.");
    // The style keeps its elements by offset, largest first (equal offsets
    // in file order); multilines follow the file's order.
    std::vector<std::size_t> order(kept);
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return elements.kept[a].offset > elements.kept[b].offset; });
    std::vector<std::size_t> places(order.size());
    for (std::size_t place = 0; place < order.size(); ++place)
        places[order[place]] = place;
    const bool reordered = !std::is_sorted(order.begin(), order.end());
    const KxDbObjectId id = context.add(style.release(), std::move(basics));
    if (reordered || kept < elements.listed)
        context.styleElementOrders[context.db.peekObject(id)->handle()] = {elements.listed, std::move(places)};
}

// The owner's handle a record kept unopened gives, read as when it was kept.
std::uint64_t keptOwner(const Record& record)
{
    if (record.kind() != "MLINESTYLE")
        return rawRecordBasics(record).owner;
    RecordBasics basics;
    StyleElements elements;
    readStyleHead(record, basics, elements);
    return basics.owner;
}

void writeDictionary(GroupWriter& w, const KxDbDatabase& db, const KxDbDictionary& dict)
{
    writeRecordHead(w, "DICTIONARY", dict);
    w.text(100, "AcDbDictionary");
    writeKeptPart(w, dict, 1);
    const int entryCode = dict.isTreatElementsAsHard() ? 360 : 350;
    const bool styles = dict.objectId() == db.mlineStyleDictionaryId();
    for (auto it = dict.newIterator(); !it->done(); it->next()) {
        // The reader refuses an entry of the style dictionary that names
        // something else: such a drawing is not saved either.
        // Asked of the registry: saving opens no style kept unopened.
        if (const KxRxClass* cls = kaldo::registeredClass(it->objectId());
            styles && !(cls && cls->isDerivedFrom(KxDbMlineStyle::desc())))
            throw DxfError(0, "the multiline style dictionary's entry \"" + utf8FromWide(it->name())
                                  + "\" names no multiline style.");
        w.wide(3, it->name());
        w.handle(entryCode, handleOf(db, it->objectId()));
    }
    writeKeptPart(w, dict, kxdbExtendedDataPart);
}

int styleFlags(const KxDbMlineStyle& s)
{
    return (s.filled() ? kFill : 0) | (s.showMiters() ? kMiters : 0) | (s.startSquareCap() ? kStartSquare : 0)
           | (s.startInnerArcs() ? kStartInner : 0) | (s.startRoundCap() ? kStartRound : 0)
           | (s.endSquareCap() ? kEndSquare : 0) | (s.endInnerArcs() ? kEndInner : 0)
           | (s.endRoundCap() ? kEndRound : 0);
}

void writeMlineStyle(GroupWriter& w, const KxDbDatabase& db, const KxDbMlineStyle& style)
{
    writeRecordHead(w, "MLINESTYLE", style);
    w.text(100, "AcDbMlineStyle");
    w.wide(2, style.name());
    w.integer(70, styleFlags(style));
    w.wide(3, style.description());
    writeColor(w, style.fillColor());
    w.degrees(51, style.startAngle());
    w.degrees(52, style.endAngle());
    if (style.numElements() == 0) {
        // Other readers refuse a style without elements: it is written with
        // one element on the axis, which its multilines never draw.
        w.integer(71, 1);
        w.real(49, 0.0);
        w.integer(62, KxCmColor::kIndexByLayer);
        w.text(6, "BYLAYER");
    } else {
        w.integer(71, style.numElements());
    }
    for (int i = 0; i < style.numElements(); ++i) {
        double offset = 0;
        KxCmColor color;
        KxDbObjectId linetype;
        style.getElementAt(i, offset, color, linetype);
        w.real(49, offset);
        writeColor(w, color);
        // Styles spell the reserved linetypes in capitals.
        const std::optional<std::wstring> name = kaldo::TableRecords::nameIn(db, linetype);
        if (!name || linetype == db.byLayerLinetype())
            w.text(6, "BYLAYER");
        else if (linetype == db.byBlockLinetype())
            w.text(6, "BYBLOCK");
        else
            w.text(6, utf8FromWide(*name));
    }
    writeKeptPart(w, style, 1);
    writeKeptPart(w, style, kxdbExtendedDataPart);
}

}  // namespace

KxDbObjectId keepBlockEnd(const Record& record, std::uint64_t handle, ReadContext& context)
{
    kaldo::UnopenedRecords::Look look;
    look.kind = record.kind();
    look.maker = &makeUnmodelled;
    const KxDbObjectId id = context.db.unopenedRecords().keep(KxDbUnmodelledObject::desc(), look,
                                                              record.packedGroups(), context.fileHandle(handle));
    if (!id.isNull())
        return id;
    return context.add(new KxDbUnmodelledObject(record.kind(), record.packedGroups()), RecordBasics{handle, 0, {}});
}

void readObject(const Record& record, ReadContext& context)
{
    if (gatherKeptObject(record, context))
        return;
    const RecordKind kind = record.kindCode();
    if (kind == RecordKind::Dictionary) {
        const bool isRoot = context.roots.namedObjects.isNull();
        if (isRoot) {
            readDictionary(record, context, true);
            return;
        }
        // The style dictionary is the first record of its handle. A second
        // one (a file of two OBJECTS sections) would take the styles from
        // it: it is left out.
        const std::uint64_t handle = context.mlineStyleDictionaryHandle;
        if (handle != 0 && rawRecordBasics(record).handle == handle) {
            const KxDbObjectId taken = context.db.objectIdFromHandle(handle);
            if (taken.isNull()) {
                readDictionary(record, context, false);
                return;
            }
            if (KxDbDictionary::cast(context.db.peekObject(taken))) {
                context.repairs.push_back("line " + std::to_string(record.line())
                                          + ": a second record of the multiline style dictionary (handle "
                                          + handleText(handle) + ") is left out.");
                return;
            }
        }
    } else if (kind == RecordKind::MlineStyle) {
        readMlineStyle(record, context);
        return;
    }
    readUnmodelled(record, context);
}

void noteKeptOwners(ReadContext& context)
{
    if (context.keptOwnersUnknown == 0)
        return;
    context.ownerReferences.reserve(context.ownerReferences.size() + context.keptOwnersUnknown);
    Record record;
    context.db.unopenedRecords().forEachOwnerUnknown(
        [&](KxDbObjectId id, const kaldo::UnopenedRecords::Kept& kept) {
            record.assign(kept.look->kind, kept.groups);
            context.ownerReferences.push_back({id, keptOwner(record)});
        });
}

bool isBlockEnd(std::string_view kind)
{
    return kind == "BLOCK" || kind == "ENDBLK";
}

bool writeObject(GroupWriter& w, const KxDbDatabase& db, const KxDbObject& obj)
{
    if (const auto* dict = KxDbDictionary::cast(&obj)) {
        writeDictionary(w, db, *dict);
    } else if (const auto* style = KxDbMlineStyle::cast(&obj)) {
        writeMlineStyle(w, db, *style);
    } else if (const auto* unmodelled = KxDbUnmodelledObject::cast(&obj)) {
        if (isBlockEnd(unmodelled->dxfName()))
            return false;
        forEachKeptRecord(*unmodelled, unmodelled->handle(), [&](KxDbPackedGroupsView groups, std::uint64_t handle) {
            writeUnmodelledRecord(w, unmodelled->dxfName(), groups, handle);
        });
    } else {
        return false;
    }
    return true;
}

}  // namespace kaldo::dxf
