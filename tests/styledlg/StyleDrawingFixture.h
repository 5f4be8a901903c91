// A dialog test host whose drawing takes multiline styles, multilines that
// use them, and a current style.
#pragma once

#include "dlg/DialogFixture.h"
#include "styledlg/CurrentStyle.h"

#include "kxed.h"

class StyleDrawingFixture : public DialogFixture {
protected:
    // A style of two elements at 0.5 and -0.5 (or of elements 0.001 apart),
    // with the joints (0x2) and start line cap (0x10) of flags.
    KxDbObjectId addStyle(const wchar_t* name, int flags = 0, int elements = 2)
    {
        auto* style = new KxDbMlineStyle;
        style->initMlineStyle();
        style->setName(name);
        style->setShowMiters(flags & 0x2);
        style->setStartSquareCap(flags & 0x10);
        for (int i = 0; i < elements; ++i) {
            int index = 0;
            style->addElement(index, elements == 2 ? 0.5 - i : 0.001 * i, KxCmColor(), db.byLayerLinetype());
        }
        KxDbObjectPtr<KxDbDictionary> dictionary(db.mlineStyleDictionaryId(), KxDb::kForWrite);
        KxDbObjectId id;
        dictionary->setAt(name, style, id);
        style->close();
        return id;
    }

    void useStyle(KxDbObjectId style)
    {
        auto* mline = new KxDbMline;
        mline->setDatabaseDefaults(&db);
        mline->setStyle(style);
        mline->appendSeg({0, 0, 0});
        mline->appendSeg({10, 0, 0});
        db.addToCurrentSpace(mline);
        mline->close();
    }

    bool hasStyle(const wchar_t* name)
    {
        const KxDbObjectPtr<KxDbDictionary> dictionary(db.mlineStyleDictionaryId(), KxDb::kForRead);
        return dictionary->has(name);
    }
};
