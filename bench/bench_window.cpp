// The window's costs on a drawing of 100 000 multilines: a frame while the
// rubber band moves (the drawing's picture copied, the drag's multiline, the
// crosshair and the snap search drawn on top), a redraw after a pan (the
// strips it uncovers painted), a redraw after a wheel step in or out at the
// cursor (the drawing painted again); an object snap search among 1 000 000
// line segments, and an entity pick among 1 000 000 lines. Frames are timed
// by the clock on the wall, as painting uses more than one thread.
// On a mixed drawing (KALDO_BENCH_MIXED_DXF names it, as bench/compare.sh
// writes it with generate_drawing; skipped without it): what the command
// thread does before the window can show it (the scene, its index), the
// first picture of a canvas given that scene (the first frame, then the
// complete picture), a middle-button pan of the whole drawing and of a
// close view, and a wheel step (its frame and its complete picture), each
// with the process's peak memory; and how long the window's command thread
// keeps a command waiting after the drawing opens and after a line is drawn
// in it.
#include "PeakMemory.h"
#include "ZigzagMultilines.h"
#include "kaldo/app/Session.h"
#include "kaldo/dxf/DxfFile.h"
#include "kaldo/ed/PickIndex.h"
#include "kaldo/ui/Canvas.h"
#include "kaldo/ui/CommandRunner.h"
#include "kaldo/ui/ViewGeometry.h"
#include "kaldo/view/DrawingRenderer.h"
#include "kaldo/view/SceneIndex.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QMouseEvent>
#include <QWheelEvent>

#include <chrono>
#include <ctime>
#include <cstdlib>
#include <filesystem>
#include <random>

namespace {

constexpr int kMultilines = 100000;
constexpr int kSegments = 1000000;

using kaldo::ui::Canvas;

// A canvas of 1600 x 1000 pixels showing the whole drawing, with a
// multiline being dragged and the cursor over the drawing.
class DragFrame {
public:
    DragFrame() : db_(buildZigzagMultilines(kMultilines)), target_(1600, 1000, QImage::Format_RGB32)
    {
        canvas_.resize(target_.size());
        canvas_.showDrawing(
            kaldo::ui::publishedScene(std::make_shared<const kaldo::view::Scene>(kaldo::view::renderDrawing(*db_))));
        KxDbMline dragged;
        dragged.setDatabaseDefaults(db_.get());
        for (const KxGePoint3d& p : {KxGePoint3d(100, 100, 0), KxGePoint3d(5000, 100, 0), KxGePoint3d(9000, 4000, 0)})
            dragged.appendSeg(p);
        canvas_.showDragScene(
            std::make_shared<const kaldo::view::Scene>(kaldo::view::renderEntities(*db_, {&dragged})));
        kaldo::ui::InputState state;
        state.kind = kaldo::Editor::InputRequest::Kind::Drag;
        canvas_.setInputState(state);
        moveCursor();
    }

    // The cursor moves a pixel (the snap search runs), then a frame is
    // painted.
    void moveCursor()
    {
        cursor_.rx() += step_;
        step_ = -step_;
        QMouseEvent move(QEvent::MouseMove, cursor_, cursor_, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&canvas_, &move);
    }
    void paint() { canvas_.render(&target_); }
    Canvas& canvas() { return canvas_; }
    const QImage& target() const { return target_; }

private:
    std::unique_ptr<KxDbDatabase> db_;
    Canvas canvas_;
    QImage target_;
    QPointF cursor_{700, 450};
    double step_ = 1;
};

void BM_RubberBandFrame(benchmark::State& state)
{
    DragFrame frame;
    frame.paint();
    for (auto _ : state) {
        frame.moveCursor();
        frame.paint();
        benchmark::DoNotOptimize(frame.target().constBits());
    }
}
BENCHMARK(BM_RubberBandFrame)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_RedrawAfterPan(benchmark::State& state)
{
    DragFrame frame;
    for (auto _ : state) {
        frame.canvas().setPlacement(kaldo::ui::panned(frame.canvas().placement(), {3, 2}));
        frame.paint();
        benchmark::DoNotOptimize(frame.target().constBits());
    }
}
BENCHMARK(BM_RedrawAfterPan)->Unit(benchmark::kMillisecond)->Iterations(10)->UseRealTime();

// Wheel steps in and out in turn, from the whole drawing.
void BM_RedrawAfterZoom(benchmark::State& state)
{
    DragFrame frame;
    frame.paint();
    const QPointF at(700, 450);
    int steps = 120;
    for (auto _ : state) {
        QWheelEvent wheel(at, at, {}, {0, steps}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&frame.canvas(), &wheel);
        steps = -steps;
        frame.paint();
        benchmark::DoNotOptimize(frame.target().constBits());
    }
}
BENCHMARK(BM_RedrawAfterZoom)->Unit(benchmark::kMillisecond)->Iterations(10)->UseRealTime();

void BM_SnapAmongAMillionSegments(benchmark::State& state)
{
    // A grid of short lines, 1000 by 1000.
    auto scene = std::make_shared<kaldo::view::Scene>();
    for (int i = 0; i < kSegments; ++i) {
        const double x = (i % 1000) * 10.0, y = (i / 1000) * 10.0;
        scene->addLine({x, y}, {x + 7, y + 3}, 0);
    }
    const kaldo::ui::SnapGeometry snaps(scene, std::make_shared<const kaldo::view::SceneIndex>(*scene));
    std::mt19937 random(1);
    std::uniform_real_distribution<double> place(0, 10000);
    for (auto _ : state) {
        const kaldo::view::Point2 cursor{place(random), place(random)};
        benchmark::DoNotOptimize(snaps.find(cursor, 2.0, &cursor));
    }
}
BENCHMARK(BM_SnapAmongAMillionSegments)->Unit(benchmark::kMicrosecond);

void BM_PickAmongAMillionLines(benchmark::State& state)
{
    KxDbDatabase db;
    for (int i = 0; i < kSegments; ++i) {
        const double x = (i % 1000) * 10.0, y = (i / 1000) * 10.0;
        auto* line = new KxDbLine({x, y, 0}, {x + 7, y + 3, 0});
        line->setDatabaseDefaults(&db);
        db.addToCurrentSpace(line);
        line->close();
    }
    kaldo::PickIndex picks;
    picks.nearest(db, {0, 0, 0}, 1.0);  // builds the index
    std::mt19937 random(1);
    std::uniform_real_distribution<double> place(0, 10000);
    for (auto _ : state)
        benchmark::DoNotOptimize(picks.nearest(db, {place(random), place(random), 0}, 1.0));
}
BENCHMARK(BM_PickAmongAMillionLines)->Unit(benchmark::kMicrosecond);

// The mixed drawing, opened once for the run, and its scene as the command
// thread publishes it, made when a benchmark first asks for it: the window
// holds the drawing and one scene, so the scene's build is measured without
// a second one beside it.
struct MixedDrawing {
    MixedDrawing() : path(std::getenv("KALDO_BENCH_MIXED_DXF")), drawing(kaldo::dxf::readDxfFile(path)) {}
    const kaldo::ui::PublishedDrawing& published()
    {
        if (!scene.scene)
            scene = kaldo::ui::publishedScene(
                std::make_shared<const kaldo::view::Scene>(kaldo::view::renderDrawing(*drawing.database)));
        return scene;
    }
    const char* path;
    kaldo::dxf::DxfDrawing drawing;
    kaldo::ui::PublishedDrawing scene;
};

// Null (the benchmark skipped) without a drawing named.
MixedDrawing* mixedDrawing(benchmark::State& state)
{
    if (!std::getenv("KALDO_BENCH_MIXED_DXF")) {
        state.SkipWithError("KALDO_BENCH_MIXED_DXF names no drawing");
        return nullptr;
    }
    static MixedDrawing drawing;
    return &drawing;
}

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// A canvas of 1600 x 1000 pixels showing the mixed drawing.
class MixedCanvas {
public:
    explicit MixedCanvas(const kaldo::ui::PublishedDrawing& drawing) : target_(1600, 1000, QImage::Format_RGB32)
    {
        canvas_.resize(target_.size());
        canvas_.showDrawing(drawing);
    }

    // Paints a frame; returns the milliseconds since start until it was
    // painted, and adds those until the picture was complete to complete.
    // Waiting sleeps until an event comes (the landing picture's queued
    // call), as the window's event loop does, rather than spinning on a
    // processor the painting threads need.
    // The processor time of all the process's threads until the picture
    // was complete is added to completeCpu, which a loaded machine leaves
    // more telling than the wall clock.
    double frame(Clock::time_point start, double& complete)
    {
        const std::clock_t cpuStart = std::clock();
        canvas_.render(&target_);
        const double frame = millisecondsSince(start);
        while (canvas_.refining())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        canvas_.render(&target_);
        complete += millisecondsSince(start);
        completeCpu += 1000.0 * double(std::clock() - cpuStart) / CLOCKS_PER_SEC;
        return frame;
    }
    double completeCpu = 0;
    void send(QEvent& event) { QApplication::sendEvent(&canvas_, &event); }
    void mouse(QEvent::Type type, const QPointF& at, Qt::MouseButtons buttons)
    {
        QMouseEvent event(type, at, at, Qt::MiddleButton, buttons, Qt::NoModifier);
        send(event);
    }
    void wheel(const QPointF& at, int angle)
    {
        QWheelEvent event(at, at, {}, {0, angle}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        send(event);
    }

private:
    Canvas canvas_;
    QImage target_;
};

void reportMemory(benchmark::State& state, double peak)
{
    state.counters["peak_MB"] = peak;
    state.counters["file_MB"] = double(std::filesystem::file_size(std::getenv("KALDO_BENCH_MIXED_DXF"))) / 1e6;
}

// Runs work once per iteration and reports the process's peak memory
// during it.
template <class Work>
void measureEach(benchmark::State& state, Work&& work)
{
    reportMemory(state, largestPeakOfEach(state, work));
}

// The command thread's work after a drawing opens, before the window has
// anything to show: the scene and its index.
void BM_MixedSceneAndIndex(benchmark::State& state)
{
    MixedDrawing* mixed = mixedDrawing(state);
    if (!mixed)
        return;
    double scene = 0;
    measureEach(state, [&] {
        const Clock::time_point start = Clock::now();
        const kaldo::view::Scene built = kaldo::view::renderDrawing(*mixed->drawing.database);
        scene += millisecondsSince(start);
        const kaldo::view::SceneIndex index(built);
        benchmark::DoNotOptimize(&index);
    });
    state.counters["scene_ms"] = scene / double(state.iterations());
}
BENCHMARK(BM_MixedSceneAndIndex)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();

// A canvas shown the published drawing: its first frame and its complete
// picture.
void BM_MixedFirstPicture(benchmark::State& state)
{
    MixedDrawing* mixed = mixedDrawing(state);
    if (!mixed)
        return;
    const kaldo::ui::PublishedDrawing& published = mixed->published();
    double first = 0, complete = 0, completeCpu = 0;
    measureEach(state, [&] {
        const Clock::time_point start = Clock::now();
        MixedCanvas canvas(published);
        first += canvas.frame(start, complete);
        completeCpu += canvas.completeCpu;
    });
    state.counters["first_frame_ms"] = first / double(state.iterations());
    state.counters["complete_ms"] = complete / double(state.iterations());
    state.counters["complete_cpu_ms"] = completeCpu / double(state.iterations());
}
BENCHMARK(BM_MixedFirstPicture)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

// A middle-button drag by a few pixels a step, of the whole drawing
// (zoom 0) or of a view four wheel steps in (zoom 4): each step's frame,
// once the picture before it is complete.
void BM_MixedPan(benchmark::State& state)
{
    MixedDrawing* mixed = mixedDrawing(state);
    if (!mixed)
        return;
    MixedCanvas canvas(mixed->published());
    const QPointF centre(800, 500);
    for (int step = 0; step < state.range(0); ++step)
        canvas.wheel(centre, 120);
    double complete = 0, frames = 0, peak = 0;
    canvas.frame(Clock::now(), complete);
    QPointF at = centre;
    canvas.mouse(QEvent::MouseButtonPress, at, Qt::MiddleButton);
    resetPeakMemory();
    complete = 0;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        at += QPointF(3, 2);
        canvas.mouse(QEvent::MouseMove, at, Qt::MiddleButton);
        frames += canvas.frame(start, complete);
    }
    peak = peakMegabytes();
    canvas.mouse(QEvent::MouseButtonRelease, at, Qt::NoButton);
    state.counters["frame_ms"] = frames / double(state.iterations());
    state.counters["complete_ms"] = complete / double(state.iterations());
    reportMemory(state, peak);
}
BENCHMARK(BM_MixedPan)->Arg(0)->Arg(4)->Unit(benchmark::kMillisecond)->Iterations(10)->UseRealTime();

// Wheel steps in and out in turn at a point of the whole drawing: the
// frame after the step and the complete picture.
void BM_MixedZoom(benchmark::State& state)
{
    MixedDrawing* mixed = mixedDrawing(state);
    if (!mixed)
        return;
    MixedCanvas canvas(mixed->published());
    double complete = 0, frames = 0;
    canvas.frame(Clock::now(), complete);
    resetPeakMemory();
    complete = 0;
    canvas.completeCpu = 0;
    int angle = 120;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        canvas.wheel({700, 450}, angle);
        angle = -angle;
        frames += canvas.frame(start, complete);
    }
    state.counters["frame_ms"] = frames / double(state.iterations());
    state.counters["complete_ms"] = complete / double(state.iterations());
    state.counters["complete_cpu_ms"] = canvas.completeCpu / double(state.iterations());
    reportMemory(state, peakMegabytes());
}
BENCHMARK(BM_MixedZoom)->Unit(benchmark::kMillisecond)->Iterations(6)->UseRealTime();

// The window's command thread, without a window: typed lines go in, the
// transcript comes back.
class TypedSession {
public:
    explicit TypedSession(const std::filesystem::path& dir)
        : session_(sessionPaths(dir)), runner_(session_)
    {
        QObject::connect(&runner_, &kaldo::ui::CommandRunner::transcriptWritten,
                         [this](const QString& text) { transcript_ += text; });
        runner_.start();
        waitFor("Command: ");
    }
    ~TypedSession()
    {
        runner_.stop();
        while (runner_.running())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    // Types lines at once and waits until the transcript has grown and ends
    // with prompt; returns the milliseconds that took.
    double type(const QStringList& lines, const QString& prompt)
    {
        const Clock::time_point start = Clock::now();
        const qsizetype before = transcript_.size();
        for (const QString& line : lines)
            runner_.push(line.isEmpty() ? kaldo::InputEvent::enter() : kaldo::InputEvent::typed(line.toStdWString()));
        waitFor(prompt, before);
        return millisecondsSince(start);
    }

private:
    static kaldo::SessionPaths sessionPaths(const std::filesystem::path& dir)
    {
        kaldo::SessionPaths paths = kaldo::defaultSessionPaths(std::filesystem::canonical("/proc/self/exe").parent_path());
        paths.profile = dir / "kaldo.ini";
        paths.crashDir = dir / "crash";
        return paths;
    }
    void waitFor(const QString& prompt, qsizetype after = 0)
    {
        while (transcript_.size() <= after || !transcript_.endsWith(prompt))
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

    kaldo::Session session_;
    kaldo::ui::CommandRunner runner_;
    QString transcript_;
};

// The command line while the window's scene of the mixed drawing is made:
// LINE typed as soon as the drawing has opened, and again as soon as a
// line was drawn in it, each until LINE asks for its first point.
void BM_MixedCommandLineWaits(benchmark::State& state)
{
    if (!std::getenv("KALDO_BENCH_MIXED_DXF")) {
        state.SkipWithError("KALDO_BENCH_MIXED_DXF names no drawing");
        return;
    }
    const std::filesystem::path dir = std::filesystem::temp_directory_path() / "kaldo-bench-window";
    std::filesystem::create_directories(dir);
    double afterOpen = 0, afterLine = 0;
    for (auto _ : state) {
        TypedSession typed(dir);
        // FILEDIA's own "Command: " must not be taken for the one after OPEN.
        typed.type({"FILEDIA", "0"}, "Command: ");
        typed.type({"OPEN", std::getenv("KALDO_BENCH_MIXED_DXF")}, "Command: ");
        afterOpen += typed.type({"LINE"}, "Specify first point: ");
        typed.type({"0,0", "10,10"}, "Specify next point or [Undo]: ");
        afterLine += typed.type({"", "LINE"}, "Specify first point: ");
    }
    state.counters["after_open_ms"] = afterOpen / double(state.iterations());
    state.counters["after_line_ms"] = afterLine / double(state.iterations());
}
BENCHMARK(BM_MixedCommandLineWaits)->Unit(benchmark::kMillisecond)->Iterations(2)->UseRealTime();

}  // namespace

int main(int argc, char** argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
