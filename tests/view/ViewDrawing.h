// A drawing built by hand for rendering tests: styles, layers, linetypes
// and multilines whose parameter lists the tests set directly.
#pragma once

#include <gtest/gtest.h>

#include <QGuiApplication>

#include <initializer_list>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include "MlineLists.h"
#include "TestMlines.h"
#include "kaldo/view/DrawingRenderer.h"
#include "kxdb.h"
#include "kxdbunmodelled.h"

// A QGuiApplication for the tests that lay out texts (fonts), made once.
inline void ensureFonts()
{
    static int argc = 1;
    static char name[] = "test_view";
    static char* argv[] = {name, nullptr};
    if (!QCoreApplication::instance())
        static QGuiApplication app(argc, argv);
}

struct ElementSpec {
    ElementSpec(double o, const KxCmColor& c, KxDbObjectId l = {}) : offset(o), color(c), linetype(l) {}
    double offset;
    KxCmColor color;
    KxDbObjectId linetype;  // null: ByLayer
};

inline KxCmColor indexColor(int index)
{
    KxCmColor c;
    c.setColorIndex(index);
    return c;
}

struct ViewDrawing {
    KxDbDatabase db;

    // A style of these elements; configure sets flags before it is added.
    template <class Configure>
    KxDbObjectId addStyle(const wchar_t* name, std::initializer_list<ElementSpec> elements, Configure configure)
    {
        return addMlineStyle(db, name, [&](KxDbMlineStyle& style) {
            for (const ElementSpec& e : elements)
                addElements(style, {e.offset}, e.linetype.isNull() ? db.byLayerLinetype() : e.linetype, e.color);
            configure(style);
        });
    }

    KxDbObjectId addLinetype(const wchar_t* name, std::vector<double> dashes)
    {
        auto* record = new KxDbLinetypeTableRecord;
        record->setName(name);
        record->setDashes(std::move(dashes));
        KxDbObjectPtr<KxDbLinetypeTable> table(db.linetypeTableId(), KxDb::kForWrite);
        KxDbObjectId id;
        table->add(record, id);
        record->close();
        return id;
    }

    // A multiline (zero justification) through points, kept open for write
    // in the returned pointer until the test is done changing it.
    KxDbObjectPtr<KxDbMline> addMline(KxDbObjectId style, std::initializer_list<KxGePoint3d> points,
                                      double scale = 1.0, bool closed = false)
    {
        KxDbMline* mline = makeMline(db, style, points, Mline::kZero, scale, closed).release();
        db.addToCurrentSpace(mline);
        return KxDbObjectPtr<KxDbMline>(mline);
    }

    kaldo::view::Scene render() { return kaldo::view::renderDrawing(db); }
};

// Groups of a record as a file gives them: code and text.
inline std::vector<KxDbFileGroup> groups(std::initializer_list<std::pair<std::int16_t, std::string>> list)
{
    std::vector<KxDbFileGroup> result;
    for (const auto& [code, value] : list)
        result.push_back({code, 0, value});
    return result;
}

// Adds an empty block of this name to the block table.
inline KxDbObjectId addBlock(KxDbDatabase& db, const wchar_t* name)
{
    auto* block = new KxDbBlockTableRecord;
    block->setName(name);
    KxDbBlockTable* table = nullptr;
    db.getBlockTable(table, KxDb::kForWrite);
    KxDbObjectId id;
    table->add(block, id);
    table->close();
    block->close();
    return id;
}

// Adds a record of a kind the database keeps as read (its groups as in a
// file) to the current space, or to the block into.
inline KxDbObjectId addRecord(KxDbDatabase& db, const char* kind, std::vector<KxDbFileGroup> groups,
                              KxDbObjectId into = {})
{
    auto* record = new KxDbUnmodelledEntity(kind, std::move(groups));
    record->setDatabaseDefaults(&db);
    KxDbObjectId id;
    if (into.isNull()) {
        db.addToCurrentSpace(record, id);
    } else {
        KxDbObjectPtr<KxDbBlockTableRecord> block(into, KxDb::kForWrite);
        block->appendKxDbEntity(id, record);
    }
    record->close();
    return id;
}
