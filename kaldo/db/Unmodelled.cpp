#include "kxdbunmodelled.h"

KX_RX_DEFINE_MEMBERS(KxDbUnmodelledObject, KxDbObject)
KX_RX_DEFINE_MEMBERS(KxDbUnmodelledEntity, KxDbEntity)

Kald::ErrorStatus KxDbUnmodelledObject::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbObject::copyFrom(other); es != Kald::eOk)
        return es;
    const auto* src = static_cast<const KxDbUnmodelledObject*>(other);
    m_dxfName = src->m_dxfName;
    m_groups = src->m_groups;
    return Kald::eOk;
}

Kald::ErrorStatus KxDbUnmodelledEntity::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbEntity::copyFrom(other); es != Kald::eOk)
        return es;
    const auto* src = static_cast<const KxDbUnmodelledEntity*>(other);
    m_dxfName = src->m_dxfName;
    m_groups = src->m_groups;
    return Kald::eOk;
}
