#include "kaldo/ed/Coordinates.h"

#include "kaldo/core/Host.h"
#include "kxdbdatabase.h"

namespace kaldo {

Ucs currentUcs()
{
    const KxDbDatabase* db = host().database;
    if (!db)
        return {};
    return {db->ucsorg(), db->ucsxdir(), db->ucsydir()};
}

KxGePoint3d ucsToWorld(const Ucs& ucs, const KxGePoint3d& p, bool displacement)
{
    const KxGePoint3d origin = displacement ? KxGePoint3d() : ucs.origin;
    return origin + ucs.xAxis * p.x + ucs.yAxis * p.y + ucs.zAxis() * p.z;
}

KxGePoint3d worldToUcs(const Ucs& ucs, const KxGePoint3d& p, bool displacement)
{
    const KxGeVector3d v = displacement ? p - KxGePoint3d() : p - ucs.origin;
    return {dot(v, ucs.xAxis), dot(v, ucs.yAxis), dot(v, ucs.zAxis())};
}

}  // namespace kaldo
