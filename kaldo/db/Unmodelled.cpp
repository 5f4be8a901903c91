#include "kxdbunmodelled.h"

KX_RX_DEFINE_MEMBERS(KxDbUnmodelledObject, KxDbObject)
KX_RX_DEFINE_MEMBERS(KxDbUnmodelledEntity, KxDbEntity)

Kald::ErrorStatus KxDbUnmodelledObject::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbObject::copyFrom(other); es != Kald::eOk)
        return es;
    copyRecord(*static_cast<const KxDbUnmodelledObject*>(other));
    return Kald::eOk;
}

Kald::ErrorStatus KxDbUnmodelledEntity::copyFrom(const KxDbObject* other)
{
    if (const Kald::ErrorStatus es = KxDbEntity::copyFrom(other); es != Kald::eOk)
        return es;
    copyRecord(*static_cast<const KxDbUnmodelledEntity*>(other));
    return Kald::eOk;
}
