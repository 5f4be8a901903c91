// "Select objects:": a selection set made step by step, each step a pick, a
// window, the last entity or the previous set, adding or taking out.
#include "kaldo/core/Host.h"
#include "kaldo/db/RecordRun.h"
#include "kaldo/ed/Coordinates.h"
#include "kaldo/ed/Editor.h"
#include "kaldo/ed/Text.h"
#include "kxdb.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>

namespace kaldo {

namespace {

constexpr const wchar_t* kSelectKeywords =
    L"Window Crossing Last Previous Remove Add _Window Crossing Last Previous Remove Add";

// The last entity of the working drawing's current space, or nothing; the
// last record of a run of kept records is split off to be taken alone.
std::vector<KxDbObjectId> lastEntity()
{
    KxDbDatabase* db = host().database;
    if (!db)
        return {};
    const KxDbObjectPtr<KxDbBlockTableRecord> space(db->currentSpaceId(), KxDb::kForRead);
    if (!space)
        return {};
    KxDbObjectId last;
    const auto it = space->newIterator();
    for (it->start(); !it->done(); it->step())
        last = it->getEntityId();
    if (!last.isNull())
        last = splitOffLastRecord(*db, last);
    return last.isNull() ? std::vector<KxDbObjectId>() : std::vector<KxDbObjectId>{last};
}

Box boxOf(const KxGePoint3d& a, const KxGePoint3d& b)
{
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
}

}  // namespace

int Editor::getWorldPoint(std::wstring_view prompt, const KxGePoint3d* corner, KxGePoint3d& world)
{
    const Ucs ucs = currentUcs();
    InputRequest request{InputRequest::Kind::Point, corner != nullptr, corner ? *corner : KxGePoint3d(), false, {}};
    request.corner = corner != nullptr;
    request.selectionWindow = corner != nullptr;
    const KxGePoint3d reference = corner ? worldToUcs(ucs, *corner) : variables_.pointValue(L"LASTPOINT");
    return ask(prompt, 0, request, [&](const InputEvent& event) -> std::optional<int> {
        if (event.kind == InputEvent::Kind::Point) {
            world = event.point;
            return RTNORM;
        }
        if (const auto typed = parsePointInput(event.text, reference, angleConvention())) {
            world = ucsToWorld(ucs, *typed);
            return RTNORM;
        }
        complain(L"Invalid point.", prompt);
        return std::nullopt;
    });
}

std::vector<KxDbObjectId> Editor::windowed(const Box& window, bool crossing)
{
    const KxDbDatabase* db = host().database;
    if (!db)
        return {};
    return crossing ? pickIndex_.crossing(*db, window) : pickIndex_.inside(*db, window);
}

Editor::StepResult Editor::selectionStep(bool removing, std::vector<KxDbObjectId>& found, std::optional<Box>& window)
{
    const std::wstring_view prompt = removing ? L"\nRemove objects: " : L"\nSelect objects: ";
    const Controls controls{0, parseKeywordList(kSelectKeywords)};
    const Ucs ucs = currentUcs();
    KxGePoint3d picked;
    bool shiftPick = false;
    const InputRequest request{InputRequest::Kind::Entity, false, {}, false, controls.keywords};
    const int result = ask(prompt, 0, request, [&](const InputEvent& event) -> std::optional<int> {
        if (event.kind == InputEvent::Kind::Motion) {
            if (hoverListener_)
                hoverListener_(entityAt(event.point));
            return std::nullopt;
        }
        if (event.kind == InputEvent::Kind::Point) {
            picked = event.point;
            shiftPick = event.removing;
        } else if (const auto typed = parsePointInput(event.text, variables_.pointValue(L"LASTPOINT"), angleConvention())) {
            picked = ucsToWorld(ucs, *typed);
        } else if (takeKeyword(controls, trimmed(event.text))) {
            return RTKWORD;
        } else {
            complain(L"Invalid point or option keyword.", prompt);
            return std::nullopt;
        }
        return RTNORM;
    });
    if (hoverListener_)
        hoverListener_(KxDbObjectId());
    if (result == RTCAN)
        return StepResult::Cancelled;
    if (result == RTNONE)
        return StepResult::Ended;
    if (result != RTKWORD) {
        const StepResult step = pickedAt(picked, found, window);
        return shiftPick && step == StepResult::Found ? StepResult::FoundToRemove : step;
    }
    const std::wstring keyword = keyword_.value_or(L"");
    if (keyword == L"Remove" || keyword == L"Add")
        return StepResult::Switched;
    if (keyword == L"Last" || keyword == L"Previous") {
        found = keyword == L"Last" ? lastEntity() : previous_.withoutErased().ids();
        return StepResult::Found;
    }
    KxGePoint3d first;
    const int corner = getWorldPoint(L"\nSpecify first corner: ", nullptr, first);
    if (corner != RTNORM)
        return corner == RTCAN ? StepResult::Cancelled : StepResult::Found;
    return windowFrom(first, keyword == L"Crossing", found, window);
}

Editor::StepResult Editor::pickedAt(const KxGePoint3d& picked, std::vector<KxDbObjectId>& found,
                                    std::optional<Box>& window)
{
    const KxDbObjectId hit = entityAt(picked);
    if (!hit.isNull()) {
        found = {hit};
        return StepResult::Found;
    }
    // A pick that hit nothing is a window's first corner: the opposite
    // corner to its right makes a window, to its left a crossing.
    return windowFrom(picked, std::nullopt, found, window);
}

Editor::StepResult Editor::windowFrom(const KxGePoint3d& first, std::optional<bool> crossing,
                                      std::vector<KxDbObjectId>& found, std::optional<Box>& window)
{
    KxGePoint3d other;
    const int corner = getWorldPoint(L"\nSpecify opposite corner: ", &first, other);
    if (corner != RTNORM)
        return corner == RTCAN ? StepResult::Cancelled : StepResult::Found;
    window = boxOf(first, other);
    found = windowed(*window, crossing.value_or(other.x < first.x));
    return StepResult::Found;
}

bool Editor::ranGripDrag(const KxGePoint3d& world)
{
    if (!gripHandler_)
        return false;
    const double tolerance = variables_.shortValue(L"PICKBOX", 3) * view_.unitSquarePerPixel();
    for (const KxDbObjectId& id : implied_.ids()) {
        std::vector<KxGePoint3d> grips;
        if (const KxDbObjectPtr<KxDbEntity> entity(id, KxDb::kForRead); entity)
            entity->getStretchPoints(grips);
        for (std::size_t i = 0; i < grips.size(); ++i) {
            if (std::max(std::abs(grips[i].x - world.x), std::abs(grips[i].y - world.y)) <= tolerance) {
                gripHandler_(id, int(i), grips[i]);
                return true;
            }
        }
    }
    return false;
}

void Editor::highlight(std::span<const KxDbObjectId> ids, int mode)
{
    for (const KxDbObjectId& id : ids) {
        std::int64_t name[2] = {0, 0};
        kxdbGetEntityName(name, id);
        redraw(name, mode);
    }
}

void Editor::selectForNextCommand(const KxGePoint3d& picked, bool removing)
{
    std::vector<KxDbObjectId> found;
    std::optional<Box> window;
    if (pickedAt(picked, found, window) != StepResult::Found)
        return;
    if (removing) {
        removeFromSelection(implied_, found);
        return;
    }
    addToSelection(implied_, found);
    if (window)
        implied_.addWindow(*window);
}

std::size_t Editor::addToSelection(SelectionSet& set, std::span<const KxDbObjectId> found)
{
    std::vector<KxDbObjectId> added;
    std::copy_if(found.begin(), found.end(), std::back_inserter(added), [&](const KxDbObjectId& id) { return set.add(id); });
    highlight(added, 3);
    return added.size();
}

std::size_t Editor::removeFromSelection(SelectionSet& set, std::span<const KxDbObjectId> found)
{
    std::vector<KxDbObjectId> taken;
    std::copy_if(found.begin(), found.end(), std::back_inserter(taken),
                 [&](const KxDbObjectId& id) { return set.contains(id); });
    set.remove(taken);
    highlight(taken, 4);
    return taken.size();
}

void Editor::clearImpliedSelection()
{
    highlight(implied_.ids(), 4);
    implied_.clear();
}

int Editor::selectObjects(SelectionSet& set)
{
    if (!implied_.empty()) {
        set = std::exchange(implied_, {}).withoutErased();
        if (!set.empty()) {
            write(L"\n" + std::to_wstring(set.size()) + L" found\n");
            previous_ = set;
            return RTNORM;
        }
    }
    bool removing = false;
    while (true) {
        std::vector<KxDbObjectId> found;
        std::optional<Box> window;
        const StepResult step = selectionStep(removing, found, window);
        if (step == StepResult::Cancelled)
            return RTCAN;
        if (step == StepResult::Ended)
            break;
        if (step == StepResult::Switched) {
            removing = keyword_ == L"Remove";
            continue;
        }
        std::wstring report = L"\n" + std::to_wstring(found.size()) + L" found";
        if (removing || step == StepResult::FoundToRemove) {
            const std::size_t taken = removeFromSelection(set, found);
            report += L", " + std::to_wstring(taken) + L" removed, " + std::to_wstring(set.size()) + L" total";
        } else {
            // Only windows that add count as the windows STRETCH moves
            // what lies in.
            if (window)
                set.addWindow(*window);
            if (const std::size_t added = addToSelection(set, found); added < found.size())
                report += L" (" + std::to_wstring(found.size() - added) + L" duplicate), " + std::to_wstring(set.size())
                    + L" total";
        }
        write(report + L"\n");
    }
    previous_ = set;
    return RTNORM;
}

}  // namespace kaldo
