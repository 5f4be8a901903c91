#include "kxdbobject.h"

#include <cstdio>

#include "kaldo/core/Host.h"
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

KxDbObject::~KxDbObject() = default;

Kald::ErrorStatus KxDbObject::setOwnerId(KxDbObjectId owner)
{
    kaldo::recordBeforeChange(*this);
    m_owner = owner;
    return Kald::eOk;
}

std::wstring KxDbObject::handleText() const
{
    wchar_t text[20];
    std::swprintf(text, 20, L"%llX", static_cast<unsigned long long>(m_handle));
    return text;
}

Kald::ErrorStatus KxDbObject::erase(bool erasing)
{
    if (!isWriteEnabled())
        return Kald::eNotOpenForWrite;
    kaldo::recordBeforeChange(*this);
    m_erased = erasing;
    kaldo::setErased(m_id, erasing);
    return Kald::eOk;
}

Kald::ErrorStatus KxDbObject::close()
{
    if (!m_database)
        return Kald::eOk;
    if (m_openForWrite) {
        m_openForWrite = false;
        // Changes made while open count once more when they are done.
        m_database->noteChange();
    } else if (m_readers > 0)
        --m_readers;
    else
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
    m_database->undoHistory().recordBefore(*this);
    m_database->noteChange();
    return Kald::eOk;
}

Kald::ErrorStatus KxDbObject::copyFrom(const KxDbObject* other)
{
    if (!other || !other->isKindOf(isA()) || !isKindOf(other->isA()))
        return Kald::eWrongObjectType;
    m_keptGroups = other->m_keptGroups ? std::make_unique<std::vector<KxDbFileGroup>>(*other->m_keptGroups) : nullptr;
    return Kald::eOk;
}

const std::vector<KxDbFileGroup>& KxDbObject::keptGroups() const
{
    static const std::vector<KxDbFileGroup> none;
    return m_keptGroups ? *m_keptGroups : none;
}

void KxDbObject::setKeptGroups(std::vector<KxDbFileGroup> groups)
{
    m_keptGroups = groups.empty() ? nullptr : std::make_unique<std::vector<KxDbFileGroup>>(std::move(groups));
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
        if (found->m_database) {
            found->m_database->undoHistory().recordBefore(*found);
            found->m_database->noteChange();
        }
    } else {
        ++found->m_readers;
    }
    obj = found;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbEntity::setLayer(KxDbObjectId layer)
{
    m_layer = layer;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbEntity::setColor(const KxCmColor& color, bool)
{
    m_color = color;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbEntity::setLinetype(KxDbObjectId linetype, bool)
{
    m_linetype = linetype;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbEntity::setLineWeight(int weight, bool)
{
    constexpr int kHeaviest = 211;
    if (weight < KxDb::kLnWtByLwDefault || weight > kHeaviest)
        return Kald::eInvalidInput;
    m_lineWeight = std::int16_t(weight);
    return Kald::eOk;
}

Kald::ErrorStatus KxDbEntity::setLinetypeScale(double scale, bool)
{
    if (!(scale > 0))
        return Kald::eInvalidInput;
    m_linetypeScale = scale;
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
    m_layer = db->clayer();
    m_color = db->cecolor();
    m_linetype = db->celtype();
}

Kald::ErrorStatus KxDbEntity::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbObject::copyFrom(other); es != Kald::eOk)
        return es;
    const auto* src = static_cast<const KxDbEntity*>(other);
    m_layer = src->m_layer;
    m_color = src->m_color;
    m_linetype = src->m_linetype;
    m_lineWeight = src->m_lineWeight;
    m_linetypeScale = src->m_linetypeScale;
    return Kald::eOk;
}
