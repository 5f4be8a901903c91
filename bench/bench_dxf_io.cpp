// How fast drawings go to and come from DXF files: a drawing of 100 000
// multilines of 4 elements and 10 vertices (built by our own code) saved
// and opened, in MB/s and ms, beside Debian's ezdxf reading and writing the
// same file in the same run; peak memory of both (ours while opening, also
// as a share of the file's size); what tearing the opened drawing down
// object by object costs (the host skips it at exit); saving and opening
// with a progress report; opening with every record read on the caller's
// thread, and the caller's CPU time; saving a mixed drawing given by
// KALDO_BENCH_MIXED_DXF on two threads and on one.
// KALDO_BENCH_MULTILINES changes the count (ezdxf needs minutes and
// gigabytes for the full file); KALDO_BENCH_DXF names a file to write the
// drawing to and keep, for timing whole runs of the host on it.
#include "BenchPaths.h"
#include "PeakMemory.h"
#include "kaldo/dxf/AtomicFile.h"
#include "kaldo/dxf/DxfFile.h"
#include "kaldo/dxf/GroupReader.h"
#include "kxdb.h"

#include <benchmark/benchmark.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <filesystem>
#include <string>
#include <string_view>
#include <memory>

namespace {

int multilineCount()
{
    const char* text = std::getenv("KALDO_BENCH_MULTILINES");
    return text ? std::max(1, std::atoi(text)) : 100000;
}

KxDbObjectId addFourElementStyle(KxDbDatabase& db)
{
    auto* style = new KxDbMlineStyle;
    style->setName(L"FOUR");
    int index = 0;
    for (const double offset : {0.6, 0.2, -0.2, -0.6})
        style->addElement(index, offset, KxCmColor(), db.byLayerLinetype());
    KxDbObjectPtr<KxDbDictionary> dict(db.mlineStyleDictionaryId(), KxDb::kForWrite);
    KxDbObjectId id;
    dict->setAt(L"FOUR", style, id);
    style->close();
    return id;
}

std::unique_ptr<KxDbDatabase> buildDrawing(int count)
{
    auto db = std::make_unique<KxDbDatabase>();
    const KxDbObjectId style = addFourElementStyle(*db);
    for (int m = 0; m < count; ++m) {
        auto* mline = new KxDbMline;
        mline->setDatabaseDefaults(db.get());
        mline->setStyle(style);
        const double x0 = (m % 320) * 100.0, y0 = (m / 320) * 40.0;
        for (int v = 0; v < 10; ++v)
            mline->appendSeg({x0 + v * 9.0, y0 + (v % 2) * 12.0 + m % 7, 0.0});
        db->addToCurrentSpace(mline);
        mline->close();
    }
    return db;
}

// The file every benchmark of this run uses, written once.
struct SharedFile {
    QTemporaryDir dir;
    std::filesystem::path path;
    double megabytes = 0;
    SharedFile()
    {
        const char* keptPath = std::getenv("KALDO_BENCH_DXF");
        path = keptPath ? std::filesystem::path(keptPath) : std::filesystem::path(dir.filePath("bench.dxf").toStdString());
        auto db = buildDrawing(multilineCount());
        kaldo::dxf::KeptSections kept;
        kaldo::dxf::saveDxfFile(path, *db, kept);
        megabytes = double(std::filesystem::file_size(path)) / 1e6;
    }
};

SharedFile& sharedFile()
{
    static SharedFile file;
    return file;
}

void report(benchmark::State& state, double seconds)
{
    state.SetIterationTime(seconds);
    state.counters["MB"] = sharedFile().megabytes;
    state.counters["MB/s"] = sharedFile().megabytes / seconds;
    state.counters["ms"] = seconds * 1e3;
}

// Times one save of the drawing per iteration, with progress reported to
// progress when it is given.
void timeSaves(benchmark::State& state, const kaldo::dxf::ProgressReport& progress)
{
    auto db = buildDrawing(multilineCount());
    kaldo::dxf::KeptSections kept;
    const std::filesystem::path out = sharedFile().dir.filePath("saved.dxf").toStdString();
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        kaldo::dxf::saveDxfFile(out, *db, kept, false, progress);
        report(state, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
}

// The CPU time of the calling thread so far, in seconds.
double threadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) + 1e-9 * double(now.tv_nsec);
}

// Times one opening of the shared file per iteration, with progress
// reported to progress when it is given; records are read ahead on a
// second thread as the reader decides, or never when oneThread. The
// caller's CPU time is the part that a second core cannot take, whatever
// the load of the machine.
void timeOpens(benchmark::State& state, const kaldo::dxf::ProgressReport& progress, bool oneThread = false)
{
    const std::filesystem::path path = sharedFile().path;
    double callerSeconds = 0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        const double callerStart = threadSeconds();
        if (oneThread) {
            std::FILE* file = std::fopen(path.c_str(), "rb");
            kaldo::dxf::GroupReader reader(file);
            reader.setReadAheadFrom(std::numeric_limits<std::uint64_t>::max());
            kaldo::dxf::DxfDrawing drawing = kaldo::dxf::readDxf(reader);
            benchmark::DoNotOptimize(drawing.database.get());
            std::fclose(file);
        } else {
            kaldo::dxf::DxfDrawing drawing = kaldo::dxf::readDxfFile(path, progress);
            benchmark::DoNotOptimize(drawing.database.get());
        }
        callerSeconds += threadSeconds() - callerStart;
        report(state, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    state.counters["caller_cpu_ms"] = 1000 * callerSeconds / double(state.iterations());
}

void BM_SaveDrawing(benchmark::State& state)
{
    timeSaves(state, {});
}
BENCHMARK(BM_SaveDrawing)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_OpenDrawing(benchmark::State& state)
{
    resetPeakMemory();
    timeOpens(state, {});
    state.counters["peak_MB"] = peakMegabytes();
    state.counters["peak_per_file_MB"] = peakMegabytes() / sharedFile().megabytes;
}
BENCHMARK(BM_OpenDrawing)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

// The same opening with every record read on the calling thread.
void BM_OpenDrawingOnOneThread(benchmark::State& state)
{
    timeOpens(state, {}, true);
}
BENCHMARK(BM_OpenDrawingOnOneThread)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

// A file of 200 000 empty ENTITIES sections (6 MB, more than the reader's
// threshold for a second thread): each section is read on the calling
// thread, as small ones are, rather than starting a thread of its own.
void BM_OpenManyEmptySections(benchmark::State& state)
{
    std::string text;
    for (int i = 0; i < 200000; ++i)
        text += "0\nSECTION\n2\nENTITIES\n0\nENDSEC\n";
    text += "0\nEOF\n";
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        kaldo::dxf::GroupReader reader{std::string_view(text)};
        kaldo::dxf::DxfDrawing drawing = kaldo::dxf::readDxf(reader);
        benchmark::DoNotOptimize(drawing.database.get());
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
}
BENCHMARK(BM_OpenManyEmptySections)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

// Saving and opening with a progress report as the window gives one: each
// report reads a cancel flag. Beside BM_SaveDrawing and BM_OpenDrawing they
// show what the reports cost.
struct WindowLikeProgress {
    std::atomic<bool> cancelled = false;
    double reports = 0;
    kaldo::dxf::ProgressReport report()
    {
        return [this](std::uint64_t, std::uint64_t) {
            ++reports;
            return !cancelled;
        };
    }
};

void BM_ReportedSave(benchmark::State& state)
{
    WindowLikeProgress progress;
    timeSaves(state, progress.report());
    state.counters["reports"] = progress.reports / double(state.iterations());
}
BENCHMARK(BM_ReportedSave)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_ReportedOpen(benchmark::State& state)
{
    WindowLikeProgress progress;
    timeOpens(state, progress.report());
    state.counters["reports"] = progress.reports / double(state.iterations());
}
BENCHMARK(BM_ReportedOpen)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

// Saving the drawing KALDO_BENCH_MIXED_DXF names (bench/compare.sh makes
// mixed ones), its entities made on two threads or on one: wall time and
// the process's CPU time.
void timeMixedSaves(benchmark::State& state, bool oneThread)
{
    const char* path = std::getenv("KALDO_BENCH_MIXED_DXF");
    if (!path) {
        state.SkipWithError("KALDO_BENCH_MIXED_DXF names no drawing");
        return;
    }
    static kaldo::dxf::DxfDrawing drawing = kaldo::dxf::readDxfFile(path);
    const QTemporaryDir dir;
    const std::filesystem::path out = dir.filePath("mixed.dxf").toStdString();
    double cpuSeconds = 0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        timespec cpuStart{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &cpuStart);
        kaldo::dxf::writeFileAtomically(out, [&](int fd) {
            kaldo::dxf::writeDxf(fd, *drawing.database, drawing.kept, {}, {4096, oneThread});
        });
        timespec cpuEnd{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &cpuEnd);
        cpuSeconds += double(cpuEnd.tv_sec - cpuStart.tv_sec) + 1e-9 * double(cpuEnd.tv_nsec - cpuStart.tv_nsec);
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        const double megabytes = double(std::filesystem::file_size(out)) / 1e6;
        state.SetIterationTime(seconds);
        state.counters["MB"] = megabytes;
        state.counters["MB/s"] = megabytes / seconds;
    }
    state.counters["cpu_ms"] = 1000 * cpuSeconds / double(state.iterations());
}

void BM_SaveMixedDrawing(benchmark::State& state)
{
    timeMixedSaves(state, false);
}
BENCHMARK(BM_SaveMixedDrawing)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_SaveMixedDrawingOnOneThread(benchmark::State& state)
{
    timeMixedSaves(state, true);
}
BENCHMARK(BM_SaveMixedDrawingOnOneThread)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_TearDownDrawing(benchmark::State& state)
{
    for (auto _ : state) {
        kaldo::dxf::DxfDrawing drawing = kaldo::dxf::readDxfFile(sharedFile().path);
        const auto start = std::chrono::steady_clock::now();
        drawing.database.reset();
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        state.SetIterationTime(seconds);
        state.counters["ms"] = seconds * 1e3;
    }
}
BENCHMARK(BM_TearDownDrawing)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);

// ezdxf reads and writes the same file in a child process; its own clock
// leaves out the interpreter's start.
void BM_EzdxfOpenAndSave(benchmark::State& state)
{
    const std::filesystem::path script = sourceFile("bench/ezdxf_io.py");
    if (script.empty()) {
        state.SkipWithError("KALDO_SOURCE_DIR is not set: 'make bench' and bench/compare.sh set it");
        return;
    }
    const QString in = QString::fromStdString(sharedFile().path.string());
    const QString out = sharedFile().dir.filePath("ezdxf.dxf");
    for (auto _ : state) {
        QProcess python;
        python.start("/usr/bin/python3", {QString::fromStdString(script.string()), in, out});
        python.waitForFinished(-1);
        const QJsonObject result = QJsonDocument::fromJson(python.readAllStandardOutput()).object();
        if (python.exitCode() != 0 || result.isEmpty()) {
            state.SkipWithError("ezdxf did not run (is python3-ezdxf installed?)");
            return;
        }
        const double read = result["read_seconds"].toDouble();
        report(state, read);
        state.counters["write_ms"] = result["write_seconds"].toDouble() * 1e3;
        state.counters["write_MB/s"] = sharedFile().megabytes / result["write_seconds"].toDouble();
        state.counters["peak_MB"] = result["peak_mb"].toDouble();
    }
}
BENCHMARK(BM_EzdxfOpenAndSave)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
