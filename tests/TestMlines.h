// Multiline styles and multilines the tests add to their drawings.
#pragma once

#include "kxdb.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <numbers>
#include <vector>

// A style added to db's style dictionary under name, once configure has
// set it up (its elements, caps, joints, fill).
inline KxDbObjectId addMlineStyle(KxDbDatabase& db, const wchar_t* name,
                                  const std::function<void(KxDbMlineStyle&)>& configure)
{
    auto* style = new KxDbMlineStyle;
    configure(*style);
    style->setName(name);
    KxDbObjectPtr<KxDbDictionary> styles(db.mlineStyleDictionaryId(), KxDb::kForWrite);
    KxDbObjectId id;
    EXPECT_EQ(styles->setAt(name, style, id), Kald::eOk) << "style " << name;
    style->close();
    return id;
}

// Elements of style at offsets, in the given colour and linetype.
inline void addElements(KxDbMlineStyle& style, const std::vector<double>& offsets, KxDbObjectId linetype,
                        const KxCmColor& color = {})
{
    for (double offset : offsets) {
        int index = 0;
        style.addElement(index, offset, color, linetype);
    }
}

// A style of by-layer elements at offsets between the given end angles;
// shape sets its caps, joints and fill.
inline KxDbObjectId addTestStyle(KxDbDatabase& db, const wchar_t* name, const std::vector<double>& offsets,
                                 double startAngle = std::numbers::pi / 2, double endAngle = std::numbers::pi / 2,
                                 const std::function<void(KxDbMlineStyle&)>& shape = {})
{
    return addMlineStyle(db, name, [&](KxDbMlineStyle& style) {
        style.setStartAngle(startAngle);
        style.setEndAngle(endAngle);
        if (shape)
            shape(style);
        addElements(style, offsets, db.byLayerLinetype());
    });
}

// A multiline through points, in no space yet: of style (null: the
// drawing's current one), justification and scale, closed or open.
inline std::unique_ptr<KxDbMline> makeMline(KxDbDatabase& db, KxDbObjectId style,
                                            const std::vector<KxGePoint3d>& points, int justification = Mline::kZero,
                                            double scale = 1.0, bool closed = false)
{
    auto mline = std::make_unique<KxDbMline>();
    mline->setDatabaseDefaults(&db);
    if (!style.isNull())
        mline->setStyle(style);
    mline->setJustification(justification);
    mline->setScale(scale);
    for (const KxGePoint3d& p : points)
        mline->appendSeg(p);
    mline->setClosedMline(closed);
    return mline;
}
