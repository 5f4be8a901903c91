#include "kaldo/ui/CommandRunner.h"

#include "kaldo/app/CommandLoop.h"
#include "kaldo/app/Session.h"
#include "kaldo/ed/Coordinates.h"
#include "kaldo/view/DrawingRenderer.h"
#include "kxdb.h"
#include "kxstring.h"

#include <algorithm>
#include <string>

namespace kaldo::ui {

CommandRunner::CommandRunner(Session& session) : session_(session)
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
    editor.setDragListener([this](const KxDbEntity* entity) { dragged(entity); });
    editor.setTextScreenListener([this] { emitOnGui([this] { emit textScreenRequested(); }); });
    editor.setHoverListener([this](const KxDbObjectId& entity) { hovered(entity); });
    editor.view().setListener([this](const ViewPlacement& placement) {
        emitOnGui([this, placement] { emit viewPlaced(placement); });
    });
    queue_.setIdleWork([this] { publishIfChanged(); });
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

void CommandRunner::publishIfChanged()
{
    const KxDbDatabase& db = session_.database();
    const bool redraw = !published_.valid || published_.database != &db
        || published_.serial != session_.drawingSerial() || published_.changes != db.changeCount();
    const bool modified = session_.modified();
    const std::wstring path = session_.drawingPath().wstring();
    if (!redraw && modified == published_.modified && path == published_.path)
        return;
    if (redraw) {
        // Said once for each drawing that becomes the working drawing; a
        // drawing that cannot be drawn shows nothing and says so once.
        const bool another = !published_.valid || published_.serial != session_.drawingSerial();
        view::RenderNotes notes;
        std::wstring said;
        try {
            auto scene = std::make_shared<const view::Scene>(view::renderDrawing(db, &notes, view::PointBudget::kPicture, session_.textStyleFonts()));
            published_.index = std::make_shared<const view::SceneIndex>(*scene);
            published_.snaps = std::make_shared<const SnapGeometry>(scene, published_.index);
            published_.scene = std::move(scene);
            published_.failed = false;
        } catch (...) {
            if (another || !published_.failed)
                said = L"The drawing cannot be shown in the window: "
                    + kxutFromMultiByte(view::failureReason(std::current_exception())) + L".\n";
            published_.scene = std::make_shared<const view::Scene>();
            published_.index = std::make_shared<const view::SceneIndex>(*published_.scene);
            published_.snaps = std::make_shared<const SnapGeometry>(published_.scene, published_.index);
            published_.failed = true;
        }
        if (another)
            said = view::describeNotes(notes, L"the window") + said;
        if (!said.empty())
            session_.editor().write(L"\n" + said);
    }
    published_ = {&db, session_.drawingSerial(), db.changeCount(), modified, path, published_.scene,
                  published_.snaps, published_.index, true, published_.failed};
    PublishedDrawing drawing{published_.scene, published_.snaps, published_.index, session_.drawingSerial(), modified,
                             QString::fromStdWString(path)};
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
    const auto found = std::find(highlighted_.begin(), highlighted_.end(), id);
    if (mode == kHighlight && entity && found == highlighted_.end())
        highlighted_.push_back(id);
    else if (mode == kUnhighlight && !entity && !highlighted_.empty())
        highlighted_.clear();
    else if (mode == kUnhighlight && found != highlighted_.end())
        highlighted_.erase(found);
    else
        return;
    publishHighlight();
}

void CommandRunner::publishHighlight()
{
    std::vector<KxDbObjectPtr<KxDbEntity>> opened;
    std::vector<const KxDbEntity*> entities;
    for (const KxDbObjectId& id : highlighted_) {
        opened.emplace_back(id, KxDb::kForRead);
        if (opened.back())
            entities.push_back(opened.back().get());
    }
    auto scene = std::make_shared<const view::Scene>(view::renderEntities(session_.database(), entities));
    emitOnGui([this, scene] { emit highlightChanged(scene); });
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

void CommandRunner::dragged(const KxDbEntity* entity)
{
    if (!entity)
        return;
    dragShown_ = true;
    auto scene = std::make_shared<const view::Scene>(view::renderEntities(session_.database(), {entity}));
    emitOnGui([this, scene] { emit dragSceneChanged(scene); });
}

}  // namespace kaldo::ui
