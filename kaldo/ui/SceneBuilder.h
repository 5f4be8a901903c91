// The drawing as the window shows it, and the thread that builds it: the
// scene of a drawing, its index and snaps are made on a thread of their
// own, so that the command thread takes the next command meanwhile. The
// database is read there only while the command thread lets it, which it
// does while it waits for input: before it takes an item from its queue it
// pauses the build (the item only reads the drawing) or stops it (the item
// may change it; a stopped build is dropped and started again later). The
// index and snaps are made from the scene alone, beside the command
// thread.
#pragma once

#include "kaldo/ui/ObjectSnaps.h"
#include "kaldo/view/DrawingRenderer.h"
#include "kaldo/view/Picture.h"
#include "kaldo/view/SceneIndex.h"

#include <QString>

#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

class KxDbDatabase;

namespace kaldo::ui {

// The drawing as the window shows it.
struct PublishedDrawing {
    std::shared_ptr<const view::Scene> scene;
    std::shared_ptr<const SnapGeometry> snaps;
    std::shared_ptr<const view::SceneIndex> index;  // where the scene's items lie
    std::shared_ptr<const view::FillColors> fills;  // the scene's fill colours, for each picture
    view::Bounds bounds;  // the scene's, worked out once, as the window fits them
    unsigned serial = 0;  // grows when another drawing is opened
    bool modified = false;
    QString path;  // empty for a drawing never saved
    // The drawing's scene is being built: the scene is the last one built
    // of this drawing (empty for a drawing just opened).
    bool building = false;
};

// A drawing of scene with its index, snaps, fill colours and bounds worked out (serial,
// modified and path as for a new drawing never saved).
PublishedDrawing publishedScene(std::shared_ptr<const view::Scene> scene);

// Which state of which drawing a scene shows.
struct DrawingState {
    const void* database = nullptr;
    unsigned serial = 0;
    std::uint64_t changes = 0;
    bool operator==(const DrawingState&) const = default;
};

class SceneBuilder {
public:
    // A build's outcome: the drawing (its scene, index, snaps and bounds),
    // or why it could not be drawn.
    struct Built {
        DrawingState state;
        PublishedDrawing drawing;
        view::RenderNotes notes;
        std::exception_ptr failure;
    };
    // Called on the builder's thread with each build that was not stopped.
    using Finished = std::function<void(Built)>;

    explicit SceneBuilder(Finished finished);
    // Stops what is built and ends the thread.
    ~SceneBuilder();
    SceneBuilder(const SceneBuilder&) = delete;
    SceneBuilder& operator=(const SceneBuilder&) = delete;

    // On the command thread. Builds the scene of db in state (fonts as for
    // renderDrawing), dropping a build that still reads the drawing; the
    // build may read db at once.
    void start(const DrawingState& state, const KxDbDatabase& db, view::TextStyleFonts fonts);
    // Whether the scene of state is being built or waits to be.
    bool building(const DrawingState& state);
    // Returns once no build reads the drawing; a paused build goes on
    // after resume(), one that was stopped is dropped.
    void pause();
    void stop();
    void resume();

    // For tests: a build waits, once it has read this many entities of
    // model space (a multiple of view::kEntitiesBetween), until the builds
    // are released; it waits as a paused one does, and a stop drops it.
    void holdBuildsAfter(std::size_t entities);
    void releaseHeldBuilds();
    // Whether a build waits in its hold.
    bool holding();

private:
    struct Job {
        DrawingState state;
        const KxDbDatabase* db = nullptr;
        view::TextStyleFonts fonts;
    };
    enum class Phase { Idle, Reading, Parked, Indexing };
    struct Stopped {};

    void run();
    Built build(const Job& job);
    // Called by the renderer between entities: parks while the drawing is
    // not granted, throws Stopped when the build is dropped.
    void between();
    // With the lock held: drops the build that reads or is parked.
    void dropReading(std::unique_lock<std::mutex>& lock);

    Finished finished_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::optional<Job> next_;
    std::optional<DrawingState> current_;
    Phase phase_ = Phase::Idle;
    bool granted_ = false;  // the build may read the drawing
    bool dropping_ = false;
    bool closing_ = false;
    std::size_t holdAfter_ = 0;  // 0: no hold
    std::size_t read_ = 0;       // entities the build under way has read
    bool holding_ = false;
    std::thread thread_;
};

}  // namespace kaldo::ui
