// A dialog test host whose drawing takes multiline styles, multilines that
// use them, and a current style.
#pragma once

#include "TestMlines.h"
#include "dlg/DialogFixture.h"
#include "styledlg/CurrentStyle.h"

#include "kxed.h"

#include <initializer_list>
#include <vector>

// An element of a style the tests add.
struct StyleElement {
    double offset;
    int colorIndex = 256;     // by layer
    bool continuous = false;  // else linetype by layer
};

class StyleDrawingFixture : public DialogFixture {
protected:
    // A style of the elements (by default two by layer, at 0.5 and -0.5),
    // with the joints (0x2) and start line cap (0x10) of flags.
    KxDbObjectId addStyle(const wchar_t* name, int flags = 0, std::vector<StyleElement> elements = {{0.5}, {-0.5}},
                          const wchar_t* description = L"")
    {
        return addMlineStyle(db, name, [&](KxDbMlineStyle& style) {
            style.initMlineStyle();
            style.setDescription(description);
            style.setShowMiters(flags & 0x2);
            style.setStartSquareCap(flags & 0x10);
            for (const StyleElement& element : elements) {
                KxCmColor color;
                color.setColorIndex(element.colorIndex);
                const KxDbObjectId linetype = element.continuous ? db.continuousLinetype() : db.byLayerLinetype();
                addElements(style, {element.offset}, linetype, color);
            }
        });
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

    // The style of this name open for reading; null when the drawing lacks it.
    KxDbObjectPtr<KxDbMlineStyle> openStyle(const wchar_t* name)
    {
        const KxDbObjectPtr<KxDbDictionary> dictionary(db.mlineStyleDictionaryId(), KxDb::kForRead);
        KxDbObject* opened = nullptr;
        if (dictionary->getAt(name, opened, KxDb::kForRead) != Kald::eOk)
            opened = nullptr;
        return KxDbObjectPtr<KxDbMlineStyle>(static_cast<KxDbMlineStyle*>(opened));
    }

    std::vector<double> offsetsOf(const wchar_t* name)
    {
        std::vector<double> offsets;
        const KxDbObjectPtr<KxDbMlineStyle> style = openStyle(name);
        for (int i = 0; style && i < style->numElements(); ++i) {
            double offset = 0.0;
            KxCmColor color;
            KxDbObjectId linetype;
            style->getElementAt(i, offset, color, linetype);
            offsets.push_back(offset);
        }
        return offsets;
    }
};
