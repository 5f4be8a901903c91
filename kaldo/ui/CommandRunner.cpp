#include "kaldo/ui/CommandRunner.h"

#include "kaldo/app/CommandLoop.h"
#include "kaldo/app/Session.h"
#include "kaldo/ed/Coordinates.h"
#include "kaldo/view/DrawingRenderer.h"
#include "kxdb.h"
#include "kxstring.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

namespace kaldo::ui {

CommandRunner::CommandRunner(Session& session)
    : session_(session),
      builder_([this](SceneBuilder::Built built) {
          queue_.post([this, built = std::move(built)] { adopt(built); }, true);
      })
{
    Editor& editor = session_.editor();
    editor.setInputSource(&queue_);
    editor.setTranscript([this](std::wstring_view text) {
        emitOnGui([this, text = QString::fromWCharArray(text.data(), qsizetype(text.size()))] {
            emit transcriptWritten(text);
        });
    });
    editor.setRequestListener([this](const Editor::InputRequest& request) { requested(request); });
    editor.setRedrawListener([this](const std::int64_t* entity, int mode) { redrawn(entity, mode); });
    editor.setDragListener([this](std::span<const KxDbEntity* const> entities) { dragged(entities); });
    editor.setTextScreenListener([this] { emitOnGui([this] { emit textScreenRequested(); }); });
    editor.setHoverListener([this](const KxDbObjectId& entity) { hovered(entity); });
    editor.view().setListener([this](const ViewPlacement& placement) {
        emitOnGui([this, placement] { emit viewPlaced(placement); });
    });
    queue_.setIdleWork([this] { publishIfChanged(); }, [this](bool readsOnly) { interrupted(readsOnly); });
}

CommandRunner::~CommandRunner()
{
    queue_.close();
    if (thread_.joinable())
        thread_.join();
    Editor& editor = session_.editor();
    editor.setInputSource(nullptr);
    editor.setTranscript({});
    editor.setRequestListener({});
    editor.setRedrawListener({});
    editor.setDragListener({});
    editor.setTextScreenListener({});
    editor.setHoverListener({});
    editor.view().setListener({});
}

void CommandRunner::start()
{
    thread_ = std::thread([this] { run(); });
}

void CommandRunner::stop()
{
    queue_.push(InputEvent::cancel());
    queue_.close();
}

void CommandRunner::postAtCommandPrompt(Work work)
{
    {
        std::lock_guard lock(promptWorkMutex_);
        promptWork_.push_back(std::move(work));
    }
    queue_.post([this] {
        if (atPrompt_)
            runPromptWork();
    });
}

void CommandRunner::run()
{
    // Nothing leaves the thread: what escapes the command loop (work posted
    // to the queue runs outside any command) is said, and the loop goes on.
    while (true) {
        try {
            runCommandLoop(session_);
            break;
        } catch (...) {
            session_.editor().write(
                L"\nStopped: " + kxutFromMultiByte(view::failureReason(std::current_exception())) + L".\n");
        }
    }
    ended_ = true;
    emitOnGui([this] { emit loopEnded(); });
}

void CommandRunner::runPromptWork()
{
    std::vector<Work> work;
    {
        std::lock_guard lock(promptWorkMutex_);
        work.swap(promptWork_);
    }
    for (const Work& w : work)
        w();
}

DrawingState CommandRunner::drawingState()
{
    const KxDbDatabase& db = session_.database();
    return {&db, session_.drawingSerial(), db.changeCount()};
}

void CommandRunner::interrupted(bool readsOnly)
{
    if (readsOnly)
        builder_.pause();
    else
        builder_.stop();
}

void CommandRunner::publishIfChanged()
{
    if (std::exchange(highlightStale_, false))
        publishHighlight();
    const DrawingState state = drawingState();
    const bool current = published_.valid && published_.state == state;
    if (current)
        builder_.stop();
    else if (builder_.building(state))
        builder_.resume();
    else
        builder_.start(state, session_.database(), session_.textStyleFonts());
    // Another drawing shows empty until its scene is built.
    const bool another = !published_.drawing.scene || published_.drawing.serial != state.serial;
    publish(another && !current ? publishedScene(std::make_shared<const view::Scene>()) : published_.drawing,
            !current);
}

void CommandRunner::adopt(const SceneBuilder::Built& built)
{
    if (built.state != drawingState())
        return;
    // Said once for each drawing that becomes the working drawing; a
    // drawing that cannot be drawn shows nothing and says so once.
    const bool another = published_.saidSerial != built.state.serial;
    std::wstring said;
    if (built.failure && (another || !published_.failed))
        said = L"The drawing cannot be shown in the window: " + kxutFromMultiByte(view::failureReason(built.failure))
            + L".\n";
    if (another)
        said = view::describeNotes(built.notes, L"the window") + said;
    published_.saidSerial = built.state.serial;
    published_.state = built.state;
    published_.valid = true;
    published_.failed = built.failure != nullptr;
    publish(built.failure ? publishedScene(std::make_shared<const view::Scene>()) : built.drawing, false);
    if (!said.empty())
        session_.editor().write(L"\n" + said);
}

void CommandRunner::publish(PublishedDrawing drawing, bool building)
{
    drawing.serial = session_.drawingSerial();
    drawing.modified = session_.modified();
    drawing.path = QString::fromStdWString(session_.drawingPath().wstring());
    drawing.building = building;
    const PublishedDrawing& last = published_.drawing;
    if (drawing.scene == last.scene && drawing.serial == last.serial && drawing.modified == last.modified
        && drawing.path == last.path && drawing.building == last.building)
        return;
    published_.drawing = drawing;
    emitOnGui([this, drawing] { emit drawingPublished(drawing); });
}

void CommandRunner::requested(const Editor::InputRequest& request)
{
    using Kind = Editor::InputRequest::Kind;
    atPrompt_ = request.kind == Kind::Command;
    if (request.kind != Kind::Drag && dragShown_) {
        dragShown_ = false;
        emitOnGui([this] { emit dragSceneChanged(nullptr); });
    }
    const SystemVariables& variables = session_.editor().variables();
    const Ucs ucs = currentUcs();
    InputState state;
    state.kind = request.kind;
    state.hasBase = request.hasBase;
    state.base = {request.base.x, request.base.y};
    state.corner = request.corner;
    state.acceptBlanks = request.acceptBlanks;
    state.selectionWindow = request.selectionWindow;
    for (const Keyword& keyword : request.keywords)
        if (!keyword.local.empty())
            state.keywords << QString::fromStdWString(keyword.local);
    state.pickbox = variables.shortValue(L"PICKBOX", 3);
    state.linearUnits = variables.shortValue(L"LUNITS", 2);
    state.linearPrecision = variables.shortValue(L"LUPREC", 4);
    state.ucsX = ucs.xAxis;
    state.ucsY = ucs.yAxis;
    state.ucsOrigin = ucs.origin;
    emitOnGui([this, state] { emit inputRequested(state); });
    if (atPrompt_)
        runPromptWork();
}

void CommandRunner::redrawn(const std::int64_t* entity, int mode)
{
    constexpr int kHighlight = 3;
    constexpr int kUnhighlight = 4;
    if (mode != kHighlight && mode != kUnhighlight)
        return;
    KxDbObjectId id;
    if (entity && kxdbGetObjectId(id, entity) != Kald::eOk)
        return;
    const bool shown = highlightedIds_.contains(id);
    if (mode == kHighlight && entity && !shown) {
        highlighted_.push_back(id);
        highlightedIds_.insert(id);
    } else if (mode == kUnhighlight && !entity && !highlighted_.empty()) {
        highlighted_.clear();
        highlightedIds_.clear();
    } else if (mode == kUnhighlight && shown) {
        highlighted_.erase(std::find(highlighted_.begin(), highlighted_.end(), id));
        highlightedIds_.erase(id);
    } else {
        return;
    }
    // Published once the command waits again: a window of many entities
    // highlights them one by one.
    highlightStale_ = true;
}

void CommandRunner::publishHighlight()
{
    std::vector<KxDbObjectPtr<KxDbEntity>> opened;
    std::vector<const KxDbEntity*> entities;
    auto grips = std::make_shared<std::vector<view::Point2>>();
    std::vector<KxGePoint3d> points;
    for (const KxDbObjectId& id : highlighted_) {
        opened.emplace_back(id, KxDb::kForRead);
        if (!opened.back())
            continue;
        entities.push_back(opened.back().get());
        points.clear();
        opened.back()->getStretchPoints(points);
        for (const KxGePoint3d& p : points)
            grips->push_back({p.x, p.y});
    }
    auto scene = std::make_shared<const view::Scene>(view::renderEntities(session_.database(), entities));
    std::shared_ptr<const std::vector<view::Point2>> shownGrips = std::move(grips);
    emitOnGui([this, scene, shownGrips] { emit highlightChanged(scene, shownGrips); });
}

void CommandRunner::hovered(const KxDbObjectId& entity)
{
    if (entity == hovered_)
        return;
    hovered_ = entity;
    std::shared_ptr<const view::Scene> scene;
    if (const KxDbObjectPtr<KxDbEntity> opened(entity, KxDb::kForRead); opened)
        scene = std::make_shared<const view::Scene>(view::renderEntities(session_.database(), {opened.get()}));
    emitOnGui([this, scene] { emit hoverChanged(scene); });
}

void CommandRunner::dragged(std::span<const KxDbEntity* const> entities)
{
    std::vector<const KxDbEntity*> shown;
    std::copy_if(entities.begin(), entities.end(), std::back_inserter(shown), [](const KxDbEntity* e) { return e; });
    if (shown.empty())
        return;
    dragShown_ = true;
    auto scene = std::make_shared<const view::Scene>(view::renderEntities(session_.database(), shown));
    emitOnGui([this, scene] { emit dragSceneChanged(scene); });
}

}  // namespace kaldo::ui
