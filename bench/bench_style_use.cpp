// The walk the style manager runs on every selection change: is the selected
// style used by any multiline? A drawing of 1 000 000 entities (lines and
// multilines of another style) whose only use of the selected style is the
// last entity, so the walk passes every entity once.
#include "kxdb.h"
#include "styledlg/StyleUse.h"

#include <benchmark/benchmark.h>

namespace {

constexpr int kEntities = 1000000;

KxDbObjectId addStyle(KxDbDatabase& db, const wchar_t* name)
{
    auto* style = new KxDbMlineStyle;
    style->setName(name);
    int index = 0;
    style->addElement(index, 0.5, KxCmColor(), db.byLayerLinetype());
    style->addElement(index, -0.5, KxCmColor(), db.byLayerLinetype());
    KxDbObjectPtr<KxDbDictionary> dict(db.mlineStyleDictionaryId(), KxDb::kForWrite);
    KxDbObjectId id;
    dict->setAt(name, style, id);
    style->close();
    return id;
}

void addMline(KxDbDatabase& db, KxDbObjectId style, double y)
{
    auto* mline = new KxDbMline;
    mline->setDatabaseDefaults(&db);
    mline->setStyle(style);
    mline->appendSeg({0, y, 0});
    mline->appendSeg({10, y, 0});
    db.addToCurrentSpace(mline);
    mline->close();
}

void BM_StyleInUseWalk(benchmark::State& state)
{
    KxDbDatabase db;
    const KxDbObjectId walls = addStyle(db, L"WALLS");
    for (int i = 0; i + 1 < kEntities; ++i) {
        if (i % 2 == 0) {
            auto* line = new KxDbLine({0, double(i), 0}, {10, double(i), 0});
            db.addToCurrentSpace(line);
            line->close();
        } else {
            addMline(db, db.cmlstyleID(), i);
        }
    }
    addMline(db, walls, kEntities);
    for (auto _ : state)
        benchmark::DoNotOptimize(kdml::isStyleInUse(&db, L"walls"));
    state.SetItemsProcessed(state.iterations() * kEntities);
}
BENCHMARK(BM_StyleInUseWalk)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
