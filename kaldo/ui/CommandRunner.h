// The command thread of a window session. The command loop runs there and
// reads its input from a queue that the window (GUI thread) fills; work
// that needs the drawing is posted to that queue and runs there too. What
// the window shows comes back as signals, emitted on the GUI thread: the
// transcript, the drawing's scene (rendered on the command thread whenever
// the drawing changed and the queue ran dry), the drag's entity and the
// highlighted entities as scenes of their own, what the command line waits
// for, views placed by ZOOM, requests for the text window, and how far
// opening or saving a drawing has come.
#pragma once

#include "kaldo/ed/Editor.h"
#include "kaldo/ed/InputSource.h"
#include "kaldo/ui/ObjectSnaps.h"
#include "kaldo/view/SceneIndex.h"
#include "kxdbid.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <thread>
#include <unordered_set>
#include <vector>

class KxDbEntity;

namespace kaldo {
class Session;
}

namespace kaldo::ui {

// The drawing as the window shows it.
struct PublishedDrawing {
    std::shared_ptr<const view::Scene> scene;
    std::shared_ptr<const SnapGeometry> snaps;
    std::shared_ptr<const view::SceneIndex> index;  // where the scene's items lie
    view::Bounds bounds;  // the scene's, worked out once, as the window fits them
    unsigned serial = 0;  // grows when another drawing is opened
    bool modified = false;
    QString path;  // empty for a drawing never saved
};

// A drawing of scene with its index, snaps and bounds worked out (serial,
// modified and path as for a new drawing never saved).
PublishedDrawing publishedScene(std::shared_ptr<const view::Scene> scene);

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
    // Runs work on the command thread, in order with the input.
    void post(Work work) { queue_.post(std::move(work)); }
    // Runs work on the command thread once the command line stands at its
    // command prompt (at once when it already does).
    void postAtCommandPrompt(Work work);

    Session& session() { return session_; }

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
        const void* database = nullptr;
        unsigned serial = 0;
        std::uint64_t changes = 0;
        bool modified = false;
        std::wstring path;
        PublishedDrawing drawing;  // its scene, index, snaps and bounds
        bool valid = false;
        bool failed = false;  // the drawing could not be drawn
    } published_;
    std::vector<KxDbObjectId> highlighted_;
    KxDbObjectId hovered_;
    std::unordered_set<KxDbObjectId> highlightedIds_;
    bool highlightStale_ = false;
    bool dragShown_ = false;
    bool atPrompt_ = false;

    std::mutex promptWorkMutex_;
    std::vector<Work> promptWork_;
};

}  // namespace kaldo::ui
