#include "kaldo/dxf/DefaultRecords.h"

#include "kaldo/dxf/DxfError.h"
#include "kaldo/dxf/ReadContext.h"
#include "kxdbdict.h"
#include "kxdbmlstyle.h"
#include "kxdbsymtb.h"

#include <algorithm>

namespace kaldo::dxf {

namespace {

// New objects start above every handle the file used.
void raiseHandseed(ReadContext& context)
{
    context.db.setHandseed(std::max(context.db.handseed(), context.maxHandle + 1));
}

template <class Table>
KxDbObjectId ensureTable(ReadContext& context, KxDbObjectId& id)
{
    if (id.isNull()) {
        raiseHandseed(context);
        auto* table = new Table;
        context.db.addObject(table);
        table->close();
        id = table->objectId();
    }
    return id;
}

template <class Record>
KxDbObjectId ensureRecord(ReadContext& context, KxDbObjectId tableId, KxDbObjectId& id, const wchar_t* name)
{
    if (!id.isNull())
        return id;
    auto* table = KxDbSymbolTable::cast(context.db.peekObject(tableId));
    if (table->getAt(name, id) == Kald::eOk)
        return id;
    raiseHandseed(context);
    auto* record = new Record;
    record->setName(name);
    table->add(record, id);
    record->close();
    return id;
}

}  // namespace

KxDbObjectId ensureBlockTable(ReadContext& context)
{
    return ensureTable<KxDbBlockTable>(context, context.roots.blockTable);
}

KxDbObjectId ensureLayerTable(ReadContext& context)
{
    return ensureTable<KxDbLayerTable>(context, context.roots.layerTable);
}

KxDbObjectId ensureLinetypeTable(ReadContext& context)
{
    return ensureTable<KxDbLinetypeTable>(context, context.roots.linetypeTable);
}

void ensureLayoutBlocks(ReadContext& context)
{
    const KxDbObjectId blocks = ensureBlockTable(context);
    ensureRecord<KxDbBlockTableRecord>(context, blocks, context.roots.modelSpace, kxdbModelSpaceName);
    ensureRecord<KxDbBlockTableRecord>(context, blocks, context.roots.paperSpace, kxdbPaperSpaceName);
}

void addMissingRecords(ReadContext& context)
{
    KxDbDatabaseRoots& roots = context.roots;
    const KxDbObjectId linetypes = ensureLinetypeTable(context);
    ensureRecord<KxDbLinetypeTableRecord>(context, linetypes, roots.byBlock, L"ByBlock");
    ensureRecord<KxDbLinetypeTableRecord>(context, linetypes, roots.byLayer, L"ByLayer");
    if (roots.continuous.isNull()) {
        ensureRecord<KxDbLinetypeTableRecord>(context, linetypes, roots.continuous, L"Continuous");
        if (auto* continuous = KxDbLinetypeTableRecord::cast(context.db.peekObject(roots.continuous));
            continuous && continuous->description().empty())
            continuous->setDescription(L"Solid line");
    }
    KxDbObjectId layer0;
    ensureRecord<KxDbLayerTableRecord>(context, ensureLayerTable(context), layer0, L"0");
    if (auto* layer = KxDbLayerTableRecord::cast(context.db.peekObject(layer0));
        layer && layer->linetypeObjectId().isNull())
        layer->setLinetypeObjectId(roots.continuous);
    ensureLayoutBlocks(context);

    if (roots.namedObjects.isNull()) {
        raiseHandseed(context);
        auto* named = new KxDbDictionary;
        context.db.addObject(named);
        named->close();
        roots.namedObjects = named->objectId();
    }
    if (context.db.setRoots(roots) != Kald::eOk)
        throw DxfError(0, "the drawing's tables are not what they should be.");
    if (context.db.clayer().isNull())
        context.db.setClayer(layer0);
    if (context.db.celtype().isNull())
        context.db.setCeltype(roots.byLayer);

    auto* named = KxDbDictionary::cast(context.db.peekObject(roots.namedObjects));
    KxDbObjectId stylesId = context.db.mlineStyleDictionaryId();
    if (stylesId.isNull()) {
        raiseHandseed(context);
        auto* styles = new KxDbDictionary;
        named->setAt(kxdbMlineStyleDictionaryName, styles, stylesId);
        styles->close();
    }
    auto* styles = KxDbDictionary::cast(context.db.peekObject(stylesId));
    if (!styles)
        throw DxfError(0, "the entry ACAD_MLINESTYLE of the named-object dictionary is no dictionary.");
    KxDbObjectId standard;
    if (styles->getAt(kxdbStandardStyleName, standard) != Kald::eOk) {
        raiseHandseed(context);
        auto* style = new KxDbMlineStyle;
        style->setName(kxdbStandardStyleName);
        int index = 0;
        style->addElement(index, 0.5, KxCmColor(), roots.byLayer, false);
        style->addElement(index, -0.5, KxCmColor(), roots.byLayer, false);
        styles->setAt(kxdbStandardStyleName, style, standard);
        style->close();
    }
    if (context.db.cmlstyleID().isNull())
        context.db.setCmlstyleID(standard);
}

}  // namespace kaldo::dxf
