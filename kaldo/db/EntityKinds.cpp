#include "kaldo/db/EntityKinds.h"

#include "kxdbents.h"
#include "kxdbmline.h"
#include "kxdbunmodelled.h"
#include "kxstring.h"

namespace kaldo {

std::wstring entityKindName(const KxDbEntity& entity)
{
    if (KxDbLine::cast(&entity))
        return L"LINE";
    if (KxDbArc::cast(&entity))
        return L"ARC";
    if (KxDbCircle::cast(&entity))
        return L"CIRCLE";
    if (KxDbPolyline::cast(&entity))
        return L"LWPOLYLINE";
    if (KxDbMline::cast(&entity))
        return L"MLINE";
    if (const auto* record = KxDbUnmodelledEntity::cast(&entity))
        return kxutFromMultiByte(std::string(record->dxfName()));
    return entity.isA()->name();
}

}  // namespace kaldo
