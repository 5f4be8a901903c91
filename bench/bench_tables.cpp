// How opening a drawing grows with its tables and dictionaries: drawings of
// N layers, N linetypes, N blocks (each holding a line) and N multiline
// styles, built by our own code and saved once, then opened, in ms and in
// microseconds per record. Every name and block the reader looks up is
// found by a hashed or ordered index, so the time per record stays flat
// from 10 000 to 100 000 records.
#include "kaldo/dxf/DxfFile.h"
#include "kxdb.h"

#include <benchmark/benchmark.h>

#include <QTemporaryDir>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace {

using Fill = std::function<void(KxDbDatabase&, int)>;

std::wstring numbered(const wchar_t* prefix, int i)
{
    return prefix + std::to_wstring(i);
}

// Adds count records named prefix0, prefix1, ... to a table, each filled
// by fill once it is in the table.
template <class Table, class Record>
void addRecords(KxDbObjectId tableId, const wchar_t* prefix, int count, const std::function<void(Record&, int)>& fill)
{
    KxDbObjectPtr<Table> table(tableId, KxDb::kForWrite);
    for (int i = 0; i < count; ++i) {
        auto* record = new Record;
        record->setName(numbered(prefix, i).c_str());
        table->add(record);
        fill(*record, i);
        record->close();
    }
}

void addLayers(KxDbDatabase& db, int count)
{
    addRecords<KxDbLayerTable, KxDbLayerTableRecord>(db.layerTableId(), L"Layer-", count,
                                                     [&](KxDbLayerTableRecord& layer, int i) {
                                                         KxCmColor color;
                                                         color.setColorIndex(1 + i % 255);
                                                         layer.setColor(color);
                                                         layer.setLinetypeObjectId(db.continuousLinetype());
                                                     });
}

void addLinetypes(KxDbDatabase& db, int count)
{
    addRecords<KxDbLinetypeTable, KxDbLinetypeTableRecord>(db.linetypeTableId(), L"Dashes-", count,
                                                           [](KxDbLinetypeTableRecord& linetype, int i) {
                                                               linetype.setDescription(L"__ __ __");
                                                               linetype.setDashes({1.0 + i % 7, -0.5});
                                                           });
}

void addBlocks(KxDbDatabase& db, int count)
{
    addRecords<KxDbBlockTable, KxDbBlockTableRecord>(db.blockTableId(), L"Block-", count,
                                                     [&](KxDbBlockTableRecord& block, int i) {
                                                         auto* line = new KxDbLine(KxGePoint3d{0, 0, 0},
                                                                                   KxGePoint3d{1.0 + i % 9, 1, 0});
                                                         line->setDatabaseDefaults(&db);
                                                         block.appendKxDbEntity(line);
                                                         line->close();
                                                     });
}

void addStyles(KxDbDatabase& db, int count)
{
    KxDbObjectPtr<KxDbDictionary> styles(db.mlineStyleDictionaryId(), KxDb::kForWrite);
    for (int i = 0; i < count; ++i) {
        auto* style = new KxDbMlineStyle;
        const std::wstring name = numbered(L"Style-", i);
        style->setName(name.c_str());
        int index = 0;
        style->addElement(index, 0.5 + i % 5, KxCmColor(), db.byLayerLinetype());
        style->addElement(index, -0.5, KxCmColor(), db.byLayerLinetype());
        KxDbObjectId id;
        styles->setAt(name.c_str(), style, id);
        style->close();
    }
}

void timeOpening(benchmark::State& state, const Fill& fill)
{
    const int count = int(state.range(0));
    const QTemporaryDir dir;
    const std::filesystem::path path = dir.filePath("tables.dxf").toStdString();
    {
        KxDbDatabase db;
        fill(db, count);
        kaldo::dxf::KeptSections kept;
        kaldo::dxf::saveDxfFile(path, db, kept);
    }
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        kaldo::dxf::DxfDrawing drawing = kaldo::dxf::readDxfFile(path);
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        benchmark::DoNotOptimize(drawing.database.get());
        state.SetIterationTime(seconds);
        state.counters["ms"] = seconds * 1e3;
        state.counters["us_per_record"] = seconds * 1e6 / count;
    }
    state.counters["MB"] = double(std::filesystem::file_size(path)) / 1e6;
}

void BM_OpenLayers(benchmark::State& state)
{
    timeOpening(state, addLayers);
}

void BM_OpenLinetypes(benchmark::State& state)
{
    timeOpening(state, addLinetypes);
}

void BM_OpenBlocks(benchmark::State& state)
{
    timeOpening(state, addBlocks);
}

void BM_OpenStyles(benchmark::State& state)
{
    timeOpening(state, addStyles);
}

}  // namespace

BENCHMARK(BM_OpenLayers)->Arg(10000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_OpenLinetypes)->Arg(10000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_OpenBlocks)->Arg(10000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_OpenStyles)->Arg(10000)->Arg(100000)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

BENCHMARK_MAIN();
