// The window's costs on a drawing of 100 000 multilines: a frame while the
// rubber band moves (the drawing's picture copied, the drag's multiline, the
// crosshair and the snap search drawn on top), a redraw after a pan (the
// strips it uncovers painted), a redraw after a wheel step in or out at the
// cursor (the drawing painted again); an object snap search among 1 000 000
// line segments, and an entity pick among 1 000 000 lines. Frames are timed
// by the clock on the wall, as painting uses more than one thread.
#include "ZigzagMultilines.h"
#include "kaldo/ed/PickIndex.h"
#include "kaldo/ui/Canvas.h"
#include "kaldo/ui/ViewGeometry.h"
#include "kaldo/view/DrawingRenderer.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QMouseEvent>
#include <QWheelEvent>

#include <cstdlib>
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
        auto scene = std::make_shared<const kaldo::view::Scene>(kaldo::view::renderDrawing(*db_));
        auto index = std::make_shared<const kaldo::view::SceneIndex>(*scene);
        auto snaps = std::make_shared<const kaldo::ui::SnapGeometry>(scene, index);
        canvas_.showDrawing({scene, snaps, index, 1, false, {}});
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
