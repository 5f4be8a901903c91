// Two long multilines for the editing tools' benchmarks: a zigzag along x
// and one along y near x = 5000, 10 000 vertices each; they cross once,
// near (5000.5, 0.25). Built once per benchmark program.
#pragma once

#include "kxdb.h"

constexpr int kCrossingVertices = 10000;

struct CrossingMultilines {
    KxDbDatabase db;
    KxDbObjectId along;
    KxDbObjectId across;

    CrossingMultilines()
    {
        along = add([](int i) { return KxGePoint3d(i, (i % 2) * 0.5); });
        across = add([](int i) { return KxGePoint3d(5000.3 + (i % 2) * 0.5, i - kCrossingVertices / 2.0); });
    }

    template <class Vertex>
    KxDbObjectId add(Vertex vertex)
    {
        auto* mline = new KxDbMline;
        mline->setDatabaseDefaults(&db);
        mline->setScale(0.1);
        for (int i = 0; i < kCrossingVertices; ++i)
            mline->appendSeg(vertex(i));
        KxDbObjectId id;
        db.addToCurrentSpace(mline, id);
        mline->close();
        return id;
    }
};

inline CrossingMultilines& crossingMultilines()
{
    static CrossingMultilines built;
    return built;
}
