// How fast an exploded copy is made and written: 10 000 filled multilines
// of four elements and ten vertices exploded into lines and fills, then
// written in the usual form (one HATCH per multiline) and in the R12 form
// (a SOLID per filled quadrilateral), into memory, in ms and MB.
#include "ZigzagMultilines.h"
#include "kaldo/app/MlineExplosion.h"
#include "kaldo/dxf/DxfFile.h"
#include "kaldo/dxf/R12Writer.h"
#include "kaldo/view/ColorPalette.h"

#include <benchmark/benchmark.h>

#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr int kMultilines = 10000;

std::unique_ptr<KxDbDatabase> explodedDrawing(const kaldo::ExplodeForm& form)
{
    auto db = buildZigzagMultilines(kMultilines);
    {
        KxDbObjectPtr<KxDbDictionary> dict(db->mlineStyleDictionaryId(), KxDb::kForRead);
        KxDbObjectId styleId;
        dict->getAt(L"FOUR", styleId);
        KxDbObjectPtr<KxDbMlineStyle> style(styleId, KxDb::kForWrite);
        style->setFilled(true);
    }
    kaldo::explodeAllMlines(*db, form);
    return db;
}

// Writes with write into a fresh memory file per iteration; reports its size.
template <class Write>
void measure(benchmark::State& state, const kaldo::ExplodeForm& form, Write write)
{
    auto db = explodedDrawing(form);
    off_t size = 0;
    for (auto _ : state) {
        const int fd = memfd_create("kaldo-bench", MFD_CLOEXEC);
        write(fd, *db);
        size = ::lseek(fd, 0, SEEK_END);
        ::close(fd);
    }
    state.counters["MB"] = double(size) / 1e6;
}

void BM_WriteExplodedCopy(benchmark::State& state)
{
    kaldo::dxf::KeptSections kept;
    measure(state, {kaldo::FillForm::Hatch, true, true}, [&](int fd, KxDbDatabase& db) { kaldo::dxf::writeDxf(fd, db, kept); });
}
BENCHMARK(BM_WriteExplodedCopy)->Unit(benchmark::kMillisecond);

void BM_WriteExplodedCopyR12(benchmark::State& state)
{
    const kaldo::dxf::KeptSections kept;
    measure(state, {kaldo::FillForm::Solids, true, false}, [&](int fd, const KxDbDatabase& db) {
        kaldo::dxf::writeDxfR12(fd, db, kept, kaldo::view::nearestColorIndex);
    });
}
BENCHMARK(BM_WriteExplodedCopyR12)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
