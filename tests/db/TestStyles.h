// The multiline styles the database tests add to their drawings.
#pragma once

#include "kxdb.h"

#include <functional>
#include <initializer_list>
#include <numbers>

// A style of the given element offsets added to db under name; shape sets
// its caps, joints and fill before it is added.
inline KxDbObjectId addTestStyle(KxDbDatabase& db, const wchar_t* name, std::initializer_list<double> offsets,
                                 double startAngle = std::numbers::pi / 2, double endAngle = std::numbers::pi / 2,
                                 const std::function<void(KxDbMlineStyle&)>& shape = {})
{
    auto* style = new KxDbMlineStyle;
    style->setName(name);
    style->setStartAngle(startAngle);
    style->setEndAngle(endAngle);
    if (shape)
        shape(*style);
    int index = 0;
    for (double o : offsets)
        style->addElement(index, o, KxCmColor(), db.byLayerLinetype());
    KxDbObjectPtr<KxDbDictionary> dict(db.mlineStyleDictionaryId(), KxDb::kForWrite);
    KxDbObjectId id;
    dict->setAt(name, style, id);
    style->close();
    return id;
}
