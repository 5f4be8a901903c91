#include "kxdbobject.h"

#include <atomic>
#include <cstring>
#include <cstdio>
#include <limits>

#include "kaldo/core/Host.h"
#include "kaldo/db/HandleTable.h"
#include "kaldo/db/ObjectRegistry.h"
#include "kaldo/db/UndoHistory.h"
#include "kxdbdatabase.h"

KxRxClass* KxRxObject::desc()
{
    static KxRxClass cls(L"KxRxObject", nullptr);
    return &cls;
}

KX_RX_DEFINE_MEMBERS(KxDbObject, KxRxObject)
KX_RX_DEFINE_MEMBERS(KxDbEntity, KxDbObject)

namespace {

// Readers are counted atomically, so that two threads may open and close
// objects for read at once while nothing writes (the renderer reads a
// drawing on two threads). Adds a reader; false at the most readers.
bool addReader(std::uint16_t& readers)
{
    std::atomic_ref<std::uint16_t> count(readers);
    std::uint16_t now = count.load(std::memory_order_relaxed);
    do {
        if (now == std::numeric_limits<std::uint16_t>::max())
            return false;
    } while (!count.compare_exchange_weak(now, std::uint16_t(now + 1), std::memory_order_relaxed));
    return true;
}

// Lets a reader go; false when there was none.
bool dropReader(std::uint16_t& readers)
{
    std::atomic_ref<std::uint16_t> count(readers);
    std::uint16_t now = count.load(std::memory_order_relaxed);
    do {
        if (now == 0)
            return false;
    } while (!count.compare_exchange_weak(now, std::uint16_t(now - 1), std::memory_order_relaxed));
    return true;
}

}  // namespace

// An object is a pointer to its class and three words; an entity adds its
// properties in one more.
static_assert(sizeof(KxDbObject) == 32);
static_assert(sizeof(KxDbEntity) == 40);

KxDbObject::~KxDbObject() = default;

KxDbDatabase* KxDbObject::database() const
{
    return kaldo::registeredDatabase(objectId());
}

std::uint64_t KxDbObject::handle() const
{
    const KxDbDatabase* db = database();
    return db ? db->m_handles->handleOf(objectId()) : 0;
}

Kald::ErrorStatus KxDbObject::setOwnerId(KxDbObjectId owner)
{
    kaldo::recordBeforeChange(*this);
    putOwner(owner);
    return Kald::eOk;
}

std::wstring KxDbObject::handleText() const
{
    wchar_t text[20];
    std::swprintf(text, 20, L"%llX", static_cast<unsigned long long>(handle()));
    return text;
}

Kald::ErrorStatus KxDbObject::erase(bool erasing)
{
    if (!isWriteEnabled())
        return Kald::eNotOpenForWrite;
    kaldo::recordBeforeChange(*this);
    m_erased = erasing;
    kaldo::setErased(objectId(), erasing);
    return Kald::eOk;
}

Kald::ErrorStatus KxDbObject::close()
{
    if (m_id == 0)
        return Kald::eOk;
    if (m_openForWrite) {
        m_openForWrite = false;
        // Changes made while open count once more when they are done.
        if (KxDbDatabase* db = database())
            db->noteChange();
    } else if (!dropReader(m_readers))
        return Kald::eNotApplicable;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbObject::upgradeOpen()
{
    if (isWriteEnabled())
        return Kald::eOk;
    if (m_readers != 1)
        return Kald::eWasOpenForRead;
    m_readers = 0;
    m_openForWrite = true;
    if (KxDbDatabase* db = database()) {
        db->undoHistory().recordBefore(*this);
        db->noteChange();
    }
    return Kald::eOk;
}

Kald::ErrorStatus KxDbObject::copyFrom(const KxDbObject* other)
{
    if (!other || !other->isKindOf(isA()) || !isKindOf(other->isA()))
        return Kald::eWrongObjectType;
    // Of the same class, so an entity's part of the extras is its to copy;
    // the object's own id and owner stay.
    const KxDbObjectId id = objectId();
    const KxDbObjectId owner = ownerId();
    m_extras = other->m_extras ? std::make_unique<Extras>(*other->m_extras) : nullptr;
    if (m_extras)
        m_extras->farId = m_extras->farOwner = KxDbObjectId::kNull;
    putId(id);
    putOwner(owner);
    dropExtrasIfDefault();
    return Kald::eOk;
}

KxDbPackedGroupsView KxDbObject::keptGroups() const
{
    return m_extras ? m_extras->keptGroups.view() : KxDbPackedGroupsView();
}

void KxDbObject::setKeptGroups(KxDbPackedGroups groups)
{
    if (groups.empty() && !m_extras)
        return;
    extrasForWrite().keptGroups = std::move(groups);
    dropExtrasIfDefault();
}

KxDbObject::Extras& KxDbObject::extrasForWrite()
{
    if (!m_extras)
        m_extras = std::make_unique<Extras>();
    return *m_extras;
}

void KxDbObject::dropExtrasIfDefault()
{
    if (m_extras && m_extras->keptGroups.empty() && !m_extras->namedColor && m_extras->linetypeScale == 1.0
        && !m_extras->normal && m_extras->farId.isNull() && m_extras->farOwner.isNull()
        && m_extras->farLayer.isNull() && m_extras->farLinetype.isNull())
        m_extras.reset();
}

Kald::ErrorStatus kxdbOpenObjectOfClass(KxDbObject*& obj, KxDbObjectId id, int mode, bool openErased,
                                        const KxRxClass* cls)
{
    obj = nullptr;
    if (id.isNull())
        return Kald::eNullObjectId;
    if (mode != KxDb::kForRead && mode != KxDb::kForWrite)
        return Kald::eInvalidInput;
    KxDbObject* found = kaldo::lookupObject(id);
    if (!found)
        return Kald::eKeyNotFound;
    if (found->m_erased && !openErased)
        return Kald::eWasErased;
    if (cls && !found->isKindOf(cls))
        return Kald::eWrongObjectType;
    if (found->m_openForWrite)
        return Kald::eWasOpenForWrite;
    if (mode == KxDb::kForWrite) {
        if (found->m_readers > 0)
            return Kald::eWasOpenForRead;
        found->m_openForWrite = true;
        if (KxDbDatabase* db = kaldo::registeredDatabase(id)) {
            db->undoHistory().recordBefore(*found);
            db->noteChange();
        }
    } else {
        if (!addReader(found->m_readers))
            return Kald::eOutOfRange;
    }
    obj = found;
    return Kald::eOk;
}

void KxDbObject::setCompactIdWithExtras(std::uint32_t& compact, KxDbObjectId Extras::*far, KxDbObjectId id)
{
    if (id.asOldId() < kFarId) {
        compact = std::uint32_t(id.asOldId());
        if (extras() && !(extras()->*far).isNull()) {
            extrasForWrite().*far = KxDbObjectId::kNull;
            dropExtrasIfDefault();
        }
    } else {
        compact = kFarId;
        extrasForWrite().*far = id;
    }
}

void KxDbEntity::setPlaneNormal(const KxGeVector3d& normal)
{
    static constexpr KxGeVector3d zAxis(0, 0, 1);
    if (std::memcmp(&normal, &zAxis, sizeof normal) != 0) {
        extrasForWrite().normal = normal;
    } else if (extras() && extras()->normal) {
        extrasForWrite().normal.reset();
        dropExtrasIfDefault();
    }
}

Kald::ErrorStatus KxDbEntity::setLayer(KxDbObjectId layer)
{
    setCompactId(m_layer, &Extras::farLayer, layer);
    return Kald::eOk;
}

KxCmColor KxDbEntity::color() const
{
    if (extras() && extras()->namedColor)
        return *extras()->namedColor;
    KxCmColor color;
    color.setColor(m_color);
    return color;
}

Kald::ErrorStatus KxDbEntity::setColor(const KxCmColor& color, bool)
{
    m_color = color.color();
    if (*color.colorName() || *color.bookName()) {
        extrasForWrite().namedColor = color;
    } else if (extras() && extras()->namedColor) {
        extrasForWrite().namedColor.reset();
        dropExtrasIfDefault();
    }
    return Kald::eOk;
}

Kald::ErrorStatus KxDbEntity::setColorIndex(int index)
{
    KxCmColor changed = color();
    if (const Kald::ErrorStatus es = changed.setColorIndex(index); es != Kald::eOk)
        return es;
    return setColor(changed);
}

Kald::ErrorStatus KxDbEntity::setLinetype(KxDbObjectId linetype, bool)
{
    setCompactId(m_linetype, &Extras::farLinetype, linetype);
    return Kald::eOk;
}

Kald::ErrorStatus KxDbEntity::setLineWeight(int weight, bool)
{
    constexpr int kHeaviest = 211;
    if (weight < KxDb::kLnWtByLwDefault || weight > kHeaviest)
        return Kald::eInvalidInput;
    m_lineWeight = std::uint8_t(weight - KxDb::kLnWtByLwDefault);
    return Kald::eOk;
}

Kald::ErrorStatus KxDbEntity::setLinetypeScale(double scale, bool)
{
    if (!(scale > 0))
        return Kald::eInvalidInput;
    if (scale != 1.0 || extras()) {
        extrasForWrite().linetypeScale = scale;
        dropExtrasIfDefault();
    }
    return Kald::eOk;
}

Kald::ErrorStatus KxDbEntity::setDatabaseDefaults(KxDbDatabase* db)
{
    if (!db)
        db = kaldo::host().database;
    if (!db)
        return Kald::eNotApplicable;
    subSetDatabaseDefaults(db);
    return Kald::eOk;
}

void KxDbEntity::subSetDatabaseDefaults(KxDbDatabase* db)
{
    setLayer(db->clayer());
    setColor(db->cecolor());
    setLinetype(db->celtype());
}

Kald::ErrorStatus KxDbEntity::copyFrom(const KxDbObject* other)
{
    // The extras (book names, linetype scale, far references) come with
    // the object's part.
    if (const Kald::ErrorStatus es = KxDbObject::copyFrom(other); es != Kald::eOk)
        return es;
    const auto* src = static_cast<const KxDbEntity*>(other);
    m_layer = src->m_layer;
    m_color = src->m_color;
    m_linetype = src->m_linetype;
    m_lineWeight = src->m_lineWeight;
    return Kald::eOk;
}
