// A multiline of STANDARD at scale 20 (or the scale given) and zero
// justification, added to a drawing's current space: its element lines lie
// 10 units (scale / 2) either side of the axis through the given points.
#pragma once

#include "kxdb.h"

#include <vector>

inline KxDbObjectId addStandardMline(KxDbDatabase& db, const std::vector<KxGePoint3d>& points, bool closed = false,
                                     double scale = 20)
{
    auto* mline = new KxDbMline;
    mline->setDatabaseDefaults(&db);
    mline->setScale(scale);
    mline->setJustification(Mline::kZero);
    for (const KxGePoint3d& p : points)
        mline->appendSeg(p);
    mline->setClosedMline(closed);
    KxDbObjectId id;
    db.addToCurrentSpace(mline, id);
    mline->close();
    return id;
}
