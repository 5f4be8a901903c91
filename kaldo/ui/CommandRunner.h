// The command thread of a window session. The command loop runs there and
// reads its input from a queue that the window (GUI thread) fills; work
// that needs the drawing is posted to that queue and runs there too. What
// the window shows comes back as signals, emitted on the GUI thread: the
// transcript, the drawing's scene (built on a thread of its own whenever
// the drawing changed and the queue ran dry, while the command line takes
// the next command: SceneBuilder), the drag's entity and the highlighted
// entities as scenes of their own, what the command line waits for, views
// placed by ZOOM, requests for the text window, and how far opening or
// saving a drawing has come.
#pragma once

#include "kaldo/ed/Editor.h"
#include "kaldo/ed/InputSource.h"
#include "kaldo/ui/ObjectSnaps.h"
#include "kaldo/ui/SceneBuilder.h"
#include "kxdbid.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <thread>
#include <unordered_set>
#include <vector>

class KxDbEntity;

namespace kaldo {
class Session;
}

namespace kaldo::ui {

// What the command line waits for, with the settings the window needs to
// show it (pick box, units, the user coordinate system).
struct InputState {
    Editor::InputRequest::Kind kind = Editor::InputRequest::Kind::Command;
    bool hasBase = false;
    view::Point2 base;
    bool corner = false;  // the rubber band is the box from base
    bool acceptBlanks = false;
    bool selectionWindow = false;  // the box is a selection window (see Editor::InputRequest)
    QStringList keywords;          // local words
    int pickbox = 3;
    int linearUnits = 2;
    int linearPrecision = 4;
    KxGeVector3d ucsX{1, 0, 0};
    KxGeVector3d ucsY{0, 1, 0};
    KxGePoint3d ucsOrigin;
};

class CommandRunner : public QObject {
    Q_OBJECT
public:
    using Work = QueuedInputSource::Work;

    // Takes over the session's editor: its input, transcript and listeners.
    explicit CommandRunner(Session& session);
    // Waits for the command thread (call stop() first).
    ~CommandRunner() override;

    void start();
    // Cancels what runs and ends the command loop.
    void stop();
    bool running() const { return thread_.joinable() && !ended_; }

    void push(InputEvent event) { queue_.push(std::move(event)); }
    // Runs work on the command thread, in order with the input; readsOnly:
    // the work changes nothing in the drawing (a scene being built goes on
    // after it).
    void post(Work work, bool readsOnly = false) { queue_.post(std::move(work), readsOnly); }
    // Runs work on the command thread once the command line stands at its
    // command prompt (at once when it already does).
    void postAtCommandPrompt(Work work);

    Session& session() { return session_; }
    SceneBuilder& sceneBuilder() { return builder_; }

    // On the command thread: how far opening or saving a drawing has come.
    void reportProgress(std::uint64_t done, std::uint64_t total)
    {
        emitOnGui([this, done, total] { emit progressed(done, total); });
    }

signals:
    void transcriptWritten(const QString& text);
    void drawingPublished(const kaldo::ui::PublishedDrawing& drawing);
    void dragSceneChanged(std::shared_ptr<const kaldo::view::Scene> scene);
    // The highlighted entities, and their grips (stretch points, world XY).
    void highlightChanged(std::shared_ptr<const kaldo::view::Scene> scene,
                          std::shared_ptr<const std::vector<kaldo::view::Point2>> grips);
    // The entity under the cursor while an entity pick waits; null for none.
    void hoverChanged(std::shared_ptr<const kaldo::view::Scene> scene);
    void inputRequested(const kaldo::ui::InputState& state);
    void viewPlaced(const kaldo::ViewPlacement& placement);
    void textScreenRequested();
    void progressed(std::uint64_t done, std::uint64_t total);
    void loopEnded();

private:
    // Emits a signal on the GUI thread with arguments taken now.
    template <class Emit>
    void emitOnGui(Emit emitter)
    {
        QMetaObject::invokeMethod(this, std::move(emitter), Qt::QueuedConnection);
    }

    // On the command thread:
    void run();
    void publishIfChanged();
    void interrupted(bool readsOnly);
    // Publishes a scene built, when it shows the drawing as it stands.
    void adopt(const SceneBuilder::Built& built);
    DrawingState drawingState();
    // Emits drawing (its scene's, the session's serial, modified and path)
    // when it differs from the one emitted last.
    void publish(PublishedDrawing drawing, bool building);
    void requested(const Editor::InputRequest& request);
    void redrawn(const std::int64_t* entity, int mode);
    void dragged(std::span<const KxDbEntity* const> entities);
    void hovered(const KxDbObjectId& entity);
    void publishHighlight();
    void runPromptWork();

    Session& session_;
    QueuedInputSource queue_;
    std::thread thread_;
    std::atomic<bool> ended_ = false;

    // Command thread only.
    struct Published {
        DrawingState state;  // what the last scene built shows
        bool valid = false;  // a scene was built
        bool failed = false;  // the drawing could not be drawn
        std::optional<unsigned> saidSerial;  // the drawing whose notes were said
        PublishedDrawing drawing;  // as emitted last
    } published_;
    std::vector<KxDbObjectId> highlighted_;
    KxDbObjectId hovered_;
    std::unordered_set<KxDbObjectId> highlightedIds_;
    bool highlightStale_ = false;
    bool dragShown_ = false;
    bool atPrompt_ = false;

    std::mutex promptWorkMutex_;
    std::vector<Work> promptWork_;

    // Last: stopped before what its builds report to goes.
    SceneBuilder builder_;
};

}  // namespace kaldo::ui
