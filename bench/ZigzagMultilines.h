// A drawing for benchmarks: multilines of a four-element style in a grid of
// cells, each a zigzag of ten vertices.
#pragma once

#include "kxdb.h"

#include <memory>

inline KxDbObjectId addFourElementStyle(KxDbDatabase& db)
{
    auto* style = new KxDbMlineStyle;
    style->setName(L"FOUR");
    int index = 0;
    const double offsets[] = {0.6, 0.2, -0.2, -0.6};
    for (int i = 0; i < 4; ++i) {
        KxCmColor color;
        color.setColorIndex(i + 1);
        style->addElement(index, offsets[i], color, db.byLayerLinetype());
    }
    style->setStartSquareCap(true);
    style->setEndSquareCap(true);
    KxDbObjectPtr<KxDbDictionary> dict(db.mlineStyleDictionaryId(), KxDb::kForWrite);
    KxDbObjectId id;
    dict->setAt(L"FOUR", style, id);
    style->close();
    return id;
}

inline std::unique_ptr<KxDbDatabase> buildZigzagMultilines(int count)
{
    constexpr int kColumns = 320;
    auto db = std::make_unique<KxDbDatabase>();
    const KxDbObjectId style = addFourElementStyle(*db);
    for (int m = 0; m < count; ++m) {
        const double x0 = (m % kColumns) * 100.0;
        const double y0 = (m / kColumns) * 40.0;
        auto* mline = new KxDbMline;
        mline->setDatabaseDefaults(db.get());
        mline->setStyle(style);
        for (int v = 0; v < 10; ++v)
            mline->appendSeg({x0 + v * 9.0, y0 + (v % 2) * 12.0 + m % 7, 0.0});
        db->addToCurrentSpace(mline);
        mline->close();
    }
    return db;
}
