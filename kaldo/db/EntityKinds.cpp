#include "kaldo/db/EntityKinds.h"

#include "kxdbents.h"
#include "kxdbmline.h"
#include "kxdbunmodelled.h"
#include "kxstring.h"

namespace kaldo {

namespace {

// The classes of the kinds, asked once: each class's descriptor is a
// function of its own, and asking all six took most of a walk.
struct KindClasses {
    const KxRxClass* line = KxDbLine::desc();
    const KxRxClass* arc = KxDbArc::desc();
    const KxRxClass* circle = KxDbCircle::desc();
    const KxRxClass* polyline = KxDbPolyline::desc();
    const KxRxClass* mline = KxDbMline::desc();
    const KxRxClass* unmodelled = KxDbUnmodelledEntity::desc();
};

}  // namespace

EntityKind entityKind(const KxDbEntity& entity)
{
    static const KindClasses kinds;
    for (const KxRxClass* c = entity.isA(); c; c = c->myParent()) {
        if (c == kinds.line)
            return EntityKind::Line;
        if (c == kinds.arc)
            return EntityKind::Arc;
        if (c == kinds.circle)
            return EntityKind::Circle;
        if (c == kinds.polyline)
            return EntityKind::Polyline;
        if (c == kinds.mline)
            return EntityKind::Mline;
        if (c == kinds.unmodelled)
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
