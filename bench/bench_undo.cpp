// What the undo history costs: a command that moves a vertex of a long
// multiline (its copy is recorded, taken back and restored), a command that
// adds a line to a drawing of many multilines (undo takes the line out
// again), and whole runs of the host on scripts of N LINE commands, each
// one step of the history (wall time and the run's peak memory).
#include "BenchPaths.h"
#include "ZigzagMultilines.h"
#include "kaldo/db/UndoHistory.h"
#include "kxdb.h"

#include <benchmark/benchmark.h>

#include <QTemporaryDir>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <string>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

extern char** environ;

namespace {

void BM_UndoRedoVertexMove(benchmark::State& state)
{
    KxDbDatabase db;
    auto* mline = new KxDbMline;
    mline->setDatabaseDefaults(&db);
    const int n = static_cast<int>(state.range(0));
    for (int i = 0; i < n; ++i)
        mline->appendSeg({i * 10.0, (i % 2) * 7.0, 0.0});
    KxDbObjectId id;
    db.addToCurrentSpace(mline, id);
    mline->close();
    kaldo::UndoHistory& history = db.undoHistory();
    double y = 0;
    for (auto _ : state) {
        history.beginStep(L"MOVE");
        {
            KxDbObjectPtr<KxDbMline> edited(id, KxDb::kForWrite);
            edited->moveVertexAt(0, {0, y += 1, 0});
        }
        history.endStep();
        history.undo(1);
        history.redo();
    }
    state.counters["bytes_per_step"] = double(history.bytes()) / double(history.undoableSteps());
    state.SetComplexityN(n);
}
BENCHMARK(BM_UndoRedoVertexMove)->RangeMultiplier(10)->Range(10, 10000)->Complexity();

void BM_UndoLineAddedToLargeDrawing(benchmark::State& state)
{
    const std::unique_ptr<KxDbDatabase> db = buildZigzagMultilines(static_cast<int>(state.range(0)));
    kaldo::UndoHistory& history = db->undoHistory();
    for (auto _ : state) {
        history.beginStep(L"LINE");
        auto* line = new KxDbLine(KxGePoint3d{0, 0, 0}, KxGePoint3d{10, 0, 0});
        db->addToCurrentSpace(line);
        line->close();
        history.endStep();
        history.undo(1);
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_UndoLineAddedToLargeDrawing)->Arg(1000)->Arg(100000);

// A script of count LINE commands, each drawing one segment.
void writeLineScript(const std::string& path, int count)
{
    std::ofstream script(path);
    for (int i = 0; i < count; ++i) {
        const int x = i % 1000, y = i / 1000;
        script << "LINE\n" << x << ',' << y << '\n' << x + 1 << ',' << y << "\n\n";
    }
}

struct RunFigures {
    double seconds = 0;
    double processorSeconds = 0;
    double peakMegabytes = 0;
    bool ok = false;
};

// Runs the staged host (KALDO_STAGE names another staged build) on the
// script, its transcript thrown away; the wall time, and the child's own
// processor time and peak resident memory.
RunFigures runHost(const std::string& script)
{
    const char* stage = std::getenv("KALDO_STAGE");
    const std::string kaldo = stage ? std::string(stage) + "/bin/kaldo" : stagedProgram("kaldo").string();
    const char* argv[] = {kaldo.c_str(), "--script", script.c_str(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    RunFigures figures;
    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    const int spawned = posix_spawn(&child, kaldo.c_str(), &actions, nullptr, const_cast<char**>(argv), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0)
        return figures;
    int status = 0;
    rusage usage{};
    if (wait4(child, &status, 0, &usage) != child)
        return figures;
    figures.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const auto toSeconds = [](const timeval& t) { return double(t.tv_sec) + double(t.tv_usec) * 1e-6; };
    figures.processorSeconds = toSeconds(usage.ru_utime) + toSeconds(usage.ru_stime);
    figures.peakMegabytes = double(usage.ru_maxrss) / 1024.0;
    figures.ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return figures;
}

void BM_LineScript(benchmark::State& state)
{
    const QTemporaryDir dir;
    const std::string script = dir.filePath("lines.scr").toStdString();
    const int count = int(state.range(0));
    writeLineScript(script, count);
    for (auto _ : state) {
        const RunFigures run = runHost(script);
        if (!run.ok) {
            state.SkipWithError("the host did not run the script to its end");
            return;
        }
        state.SetIterationTime(run.seconds);
        state.counters["s"] = run.seconds;
        state.counters["cpu_s"] = run.processorSeconds;
        state.counters["us_per_LINE"] = run.seconds * 1e6 / count;
        state.counters["peak_MB"] = run.peakMegabytes;
    }
}
BENCHMARK(BM_LineScript)->Arg(10000)->Arg(100000)->Arg(1000000)->UseManualTime()->Unit(benchmark::kSecond)
    ->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
