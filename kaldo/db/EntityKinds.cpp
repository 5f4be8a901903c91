#include "kaldo/db/EntityKinds.h"

#include "kxdbents.h"
#include "kxdbmline.h"
#include "kxdbunmodelled.h"
#include "kxstring.h"

namespace kaldo {

EntityKind entityKind(const KxDbEntity& entity)
{
    const KxRxClass* const line = KxDbLine::desc();
    const KxRxClass* const arc = KxDbArc::desc();
    const KxRxClass* const circle = KxDbCircle::desc();
    const KxRxClass* const polyline = KxDbPolyline::desc();
    const KxRxClass* const mline = KxDbMline::desc();
    const KxRxClass* const unmodelled = KxDbUnmodelledEntity::desc();
    for (const KxRxClass* c = entity.isA(); c; c = c->myParent()) {
        if (c == line)
            return EntityKind::Line;
        if (c == arc)
            return EntityKind::Arc;
        if (c == circle)
            return EntityKind::Circle;
        if (c == polyline)
            return EntityKind::Polyline;
        if (c == mline)
            return EntityKind::Mline;
        if (c == unmodelled)
            return EntityKind::Unmodelled;
    }
    return EntityKind::Other;
}

std::wstring entityKindName(const KxDbEntity& entity)
{
    switch (entityKind(entity)) {
    case EntityKind::Line:
        return L"LINE";
    case EntityKind::Arc:
        return L"ARC";
    case EntityKind::Circle:
        return L"CIRCLE";
    case EntityKind::Polyline:
        return L"LWPOLYLINE";
    case EntityKind::Mline:
        return L"MLINE";
    case EntityKind::Unmodelled:
        return kxutFromMultiByte(std::string(static_cast<const KxDbUnmodelledEntity&>(entity).dxfName()));
    case EntityKind::Other:
        break;
    }
    return entity.isA()->name();
}

}  // namespace kaldo
