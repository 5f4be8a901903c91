#include "kxdbdatabase.h"

#include <algorithm>
#include <cmath>

#include "kaldo/db/HandleTable.h"
#include "kaldo/db/NameKey.h"
#include "kaldo/db/ObjectRegistry.h"
#include "kaldo/db/UndoHistory.h"
#include "kaldo/db/UnopenedRecords.h"
#include "kxdbdict.h"
#include "kxdbmline.h"
#include "kxdbmlstyle.h"
#include "kxdbsymtb.h"

KxDbDatabase::KxDbDatabase(bool buildDefault)
    : m_handles(std::make_unique<kaldo::HandleTable>()),
      m_undo(std::make_unique<kaldo::UndoHistory>(*this)),
      m_unopened(std::make_unique<kaldo::UnopenedRecords>(*this))
{
    if (buildDefault)
        buildDefaultDrawing();
}

KxDbDatabase::~KxDbDatabase()
{
    for (const KxDbObjectId id : m_objectIds) {
        const KxDbObject* obj = kaldo::lookupObjectOf(id, this);
        kaldo::unregisterObject(id);
        delete obj;
    }
    m_unopened.reset();
    kaldo::unregisterDatabase(this);
}

namespace {

// Adds a new object and closes it: the drawing's own set-up holds nothing open.
template <class T>
KxDbObjectId addClosed(KxDbDatabase& db, T* obj)
{
    db.addObject(obj);
    obj->close();
    return obj->objectId();
}

template <class Record>
KxDbObjectId addRecord(KxDbSymbolTable& table, Record* record, const wchar_t* name)
{
    record->setName(name);
    table.add(record);
    record->close();
    return record->objectId();
}

}  // namespace

void KxDbDatabase::buildDefaultDrawing()
{
    auto* blocks = new KxDbBlockTable;
    auto* layers = new KxDbLayerTable;
    auto* linetypes = new KxDbLinetypeTable;
    auto* named = new KxDbDictionary;
    auto* styles = new KxDbDictionary;
    m_blockTable = addClosed(*this, blocks);
    m_layerTable = addClosed(*this, layers);
    m_linetypeTable = addClosed(*this, linetypes);
    m_namedObjects = addClosed(*this, named);

    m_byBlock = addRecord(*linetypes, new KxDbLinetypeTableRecord, L"ByBlock");
    m_byLayer = addRecord(*linetypes, new KxDbLinetypeTableRecord, L"ByLayer");
    auto* continuous = new KxDbLinetypeTableRecord;
    continuous->setDescription(L"Solid line");
    m_continuous = addRecord(*linetypes, continuous, L"Continuous");

    auto* layer0 = new KxDbLayerTableRecord;
    KxCmColor white;
    white.setColorIndex(7);
    layer0->setColor(white);
    layer0->setLinetypeObjectId(m_continuous);
    m_header.clayer = addRecord(*layers, layer0, L"0");

    m_modelSpace = addRecord(*blocks, new KxDbBlockTableRecord, kxdbModelSpaceName);
    m_paperSpace = addRecord(*blocks, new KxDbBlockTableRecord, kxdbPaperSpaceName);
    m_currentSpace = m_modelSpace;

    KxDbObjectId id;
    named->setAt(kxdbMlineStyleDictionaryName, styles, id);
    styles->close();

    auto* standard = new KxDbMlineStyle;
    standard->setName(kxdbStandardStyleName);
    int index = 0;
    standard->addElement(index, 0.5, KxCmColor(), m_byLayer, false);
    standard->addElement(index, -0.5, KxCmColor(), m_byLayer, false);
    styles->setAt(kxdbStandardStyleName, standard, m_header.cmlstyle);
    standard->close();

    m_header.celtype = m_byLayer;
}

Kald::ErrorStatus KxDbDatabase::addObject(KxDbObject* obj, std::uint64_t handle)
{
    if (!obj || !obj->objectId().isNull())
        return Kald::eInvalidInput;
    m_undo->recordHeader();
    obj->m_openForWrite = true;
    obj->m_readers = 0;
    obj->putId(kaldo::registerObject(obj, this));
    m_objectIds.push_back(obj->objectId());
    // The handle given unless an object has it, else a new one.
    if (handle == 0 || !m_handles->insertNew(handle, obj->objectId())) {
        handle = newHandle();
        m_handles->insert(handle, obj->objectId());
    }
    if (handle <= kxdbHighestHandle)
        m_header.handseed = std::max(m_header.handseed, handle + 1);
    m_undo->recordAdded(*obj, handle);
    noteChange();
    return Kald::eOk;
}

std::uint64_t KxDbDatabase::newHandle()
{
    if (m_header.handseed <= kxdbHighestHandle)
        return m_header.handseed;
    while (m_handles->isTaken(m_lowestFreeHandle))
        ++m_lowestFreeHandle;
    return m_lowestFreeHandle;
}

void KxDbDatabase::reserveHandle(std::uint64_t handle)
{
    m_handles->reserve(handle);
}

std::uint64_t KxDbDatabase::reserveNewHandle()
{
    const std::uint64_t handle = newHandle();
    m_undo->recordHeader();
    m_header.handseed = std::max(m_header.handseed, handle + 1);
    reserveHandle(handle);
    return handle;
}

Kald::ErrorStatus KxDbDatabase::addToCurrentSpace(KxDbEntity* entity)
{
    KxDbObjectId id;
    return addToCurrentSpace(entity, id);
}

Kald::ErrorStatus KxDbDatabase::addToCurrentSpace(KxDbEntity* entity, KxDbObjectId& id)
{
    id.setNull();
    auto* space = KxDbBlockTableRecord::cast(peekObject(m_currentSpace));
    if (!space)
        return Kald::eNotApplicable;
    return space->appendKxDbEntity(id, entity);
}

std::unique_ptr<KxDbObject> KxDbDatabase::detachObject(KxDbObjectId id, std::uint64_t& handle)
{
    // Only an object the list holds (never a record kept unopened, which a
    // lookup would make) is taken out.
    if (!m_objectIds.eraseLast(id))
        return nullptr;
    std::unique_ptr<KxDbObject> obj(kaldo::lookupObjectOf(id, this));
    handle = m_handles->handleOf(id);
    m_handles->erase(handle);
    kaldo::unregisterObject(id);
    return obj;
}

void KxDbDatabase::nameMade(KxDbObject& obj, KxDbObjectId id, KxDbObjectId owner)
{
    obj.putId(id);
    obj.putOwner(owner);
    obj.m_openForWrite = false;
    obj.m_readers = 0;
}

void KxDbDatabase::reattachObject(std::unique_ptr<KxDbObject> obj, std::uint64_t handle)
{
    kaldo::registerObjectAs(obj->objectId(), obj.get(), this);
    m_handles->insert(handle, obj->objectId());
    m_objectIds.push_back(obj->objectId());
    obj.release();
}

KxDbObjectId KxDbDatabase::objectIdFromHandle(std::uint64_t handle) const
{
    return m_handles->find(handle);
}

Kald::ErrorStatus KxDbDatabase::setRoots(const KxDbDatabaseRoots& roots)
{
    const auto is = [this](KxDbObjectId id, const KxRxClass* cls) {
        const KxDbObject* obj = peekObject(id);
        return obj && obj->isKindOf(cls);
    };
    if (!is(roots.namedObjects, KxDbDictionary::desc()) || !is(roots.blockTable, KxDbBlockTable::desc())
        || !is(roots.layerTable, KxDbLayerTable::desc()) || !is(roots.linetypeTable, KxDbLinetypeTable::desc())
        || !is(roots.modelSpace, KxDbBlockTableRecord::desc()) || !is(roots.paperSpace, KxDbBlockTableRecord::desc())
        || !is(roots.byLayer, KxDbLinetypeTableRecord::desc()) || !is(roots.byBlock, KxDbLinetypeTableRecord::desc())
        || !is(roots.continuous, KxDbLinetypeTableRecord::desc()))
        return Kald::eWrongObjectType;
    m_namedObjects = roots.namedObjects;
    m_blockTable = roots.blockTable;
    m_layerTable = roots.layerTable;
    m_linetypeTable = roots.linetypeTable;
    m_modelSpace = roots.modelSpace;
    m_paperSpace = roots.paperSpace;
    m_currentSpace = roots.modelSpace;
    m_byLayer = roots.byLayer;
    m_byBlock = roots.byBlock;
    m_continuous = roots.continuous;
    return Kald::eOk;
}

KxDbIdRuns KxDbDatabase::objectIds() const
{
    KxDbIdRuns ids;
    m_unopened->listWith(m_objectIds, ids);
    return ids;
}

KxDbObject* KxDbDatabase::peekObject(KxDbObjectId id) const
{
    return kaldo::lookupObjectOf(id, this);
}

KxDbObjectId KxDbDatabase::mlineStyleDictionaryId() const
{
    const auto* named = KxDbDictionary::cast(peekObject(m_namedObjects));
    KxDbObjectId id;
    if (named)
        named->getAt(kxdbMlineStyleDictionaryName, id);
    return id;
}

Kald::ErrorStatus KxDbDatabase::setCurrentSpaceId(KxDbObjectId space)
{
    const auto* block = KxDbBlockTableRecord::cast(peekObject(space));
    if (!block || !block->isLayout())
        return Kald::eInvalidInput;
    m_currentSpace = space;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbDatabase::getMLStyleDictionary(KxDbDictionary*& dict, int mode) const
{
    return kxdbOpenObject(dict, mlineStyleDictionaryId(), mode);
}

Kald::ErrorStatus KxDbDatabase::getNamedObjectsDictionary(KxDbDictionary*& dict, int mode) const
{
    return kxdbOpenObject(dict, m_namedObjects, mode);
}

Kald::ErrorStatus KxDbDatabase::getBlockTable(KxDbBlockTable*& table, int mode) const
{
    return kxdbOpenObject(table, m_blockTable, mode);
}

Kald::ErrorStatus KxDbDatabase::getLayerTable(KxDbLayerTable*& table, int mode) const
{
    return kxdbOpenObject(table, m_layerTable, mode);
}

Kald::ErrorStatus KxDbDatabase::getLinetypeTable(KxDbLinetypeTable*& table, int mode) const
{
    return kxdbOpenObject(table, m_linetypeTable, mode);
}

Kald::ErrorStatus KxDbDatabase::setCmlstyleID(KxDbObjectId style, const wchar_t* spelling)
{
    const KxDbObject* obj = peekObject(style);
    if (!obj || obj->isErased() || !KxDbMlineStyle::cast(obj))
        return Kald::eInvalidInput;
    m_undo->recordHeader();
    m_header.cmlstyle = style;
    m_header.cmlstyleSpelling = spelling ? spelling : L"";
    noteChange();
    return Kald::eOk;
}

std::wstring KxDbDatabase::cmlstyleName() const
{
    const auto* style = KxDbMlineStyle::cast(peekObject(m_header.cmlstyle));
    if (!style || style->isErased())
        return {};
    // A rename since the name was written leaves the style's own spelling.
    if (kaldo::sameName(m_header.cmlstyleSpelling, style->name()))
        return m_header.cmlstyleSpelling;
    return style->name();
}

// Header whole numbers run from 0 to highest; the old header is recorded for
// undo before the change.
Kald::ErrorStatus KxDbDatabase::setHeaderInt(int Header::*field, int value, int highest)
{
    if (value < 0 || value > highest)
        return Kald::eOutOfRange;
    m_undo->recordHeader();
    m_header.*field = value;
    noteChange();
    return Kald::eOk;
}

Kald::ErrorStatus KxDbDatabase::setCmljust(int justification)
{
    return setHeaderInt(&Header::cmljust, justification, 2);
}

Kald::ErrorStatus KxDbDatabase::setCmlscale(double scale)
{
    if (!std::isfinite(scale))
        return Kald::eInvalidInput;
    // A scale that puts the current style's elements beyond the largest
    // number is refused.
    if (const auto* style = KxDbMlineStyle::cast(peekObject(m_header.cmlstyle))) {
        const std::vector<double> offsets = kxdbMlineElementOffsets(*style, scale, m_header.cmljust);
        if (!std::all_of(offsets.begin(), offsets.end(), [](double offset) { return std::isfinite(offset); }))
            return Kald::eOutOfRange;
    }
    m_undo->recordHeader();
    m_header.cmlscale = scale;
    noteChange();
    return Kald::eOk;
}

Kald::ErrorStatus KxDbDatabase::setMeasurement(int value)
{
    return setHeaderInt(&Header::measurement, value, 1);
}

Kald::ErrorStatus KxDbDatabase::setTilemode(int value)
{
    return setHeaderInt(&Header::tilemode, value, 1);
}

Kald::ErrorStatus KxDbDatabase::setDimzin(int value)
{
    return setHeaderInt(&Header::dimzin, value, 15);
}

Kald::ErrorStatus KxDbDatabase::setUcs(const KxGePoint3d& origin, const KxGeVector3d& xDir, const KxGeVector3d& yDir)
{
    if (xDir.length() <= kxGeTolerance || yDir.length() <= kxGeTolerance)
        return Kald::eInvalidInput;
    const KxGeVector3d x = normalized(xDir);
    const KxGeVector3d y = normalized(yDir);
    if (std::abs(dot(x, y)) > 1e-6)
        return Kald::eInvalidInput;
    m_undo->recordHeader();
    m_header.ucsOrigin = origin;
    m_header.ucsXDir = x;
    m_header.ucsYDir = y;
    noteChange();
    return Kald::eOk;
}

Kald::ErrorStatus KxDbDatabase::setClayer(KxDbObjectId layer)
{
    if (!KxDbLayerTableRecord::cast(peekObject(layer)))
        return Kald::eInvalidInput;
    m_undo->recordHeader();
    m_header.clayer = layer;
    noteChange();
    return Kald::eOk;
}

Kald::ErrorStatus KxDbDatabase::setCeltype(KxDbObjectId linetype)
{
    if (!KxDbLinetypeTableRecord::cast(peekObject(linetype)))
        return Kald::eInvalidInput;
    m_undo->recordHeader();
    m_header.celtype = linetype;
    noteChange();
    return Kald::eOk;
}

Kald::ErrorStatus KxDbDatabase::setCecolor(const KxCmColor& color)
{
    m_undo->recordHeader();
    m_header.cecolor = color;
    noteChange();
    return Kald::eOk;
}

Kald::ErrorStatus KxDbDatabase::setHandseed(std::uint64_t seed)
{
    if (m_handles->greatestHandle() >= seed)
        return Kald::eInvalidInput;
    m_header.handseed = seed;
    return Kald::eOk;
}
