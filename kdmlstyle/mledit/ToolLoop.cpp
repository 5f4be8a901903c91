#include "mledit/ToolLoop.h"

#include <wchar.h>

#include "kxed.h"
#include "mledit/MlinePicking.h"
#include "mledit/MlineWriteScope.h"

namespace kdml {

namespace {

constexpr unsigned kUndoKeywords = 4002;
constexpr unsigned kFirstMlineUndoPrompt = 4003;
constexpr unsigned kFirstMlinePrompt = 4004;
constexpr unsigned kSecondMlinePrompt = 4005;
constexpr unsigned kClosedRefusedMessage = 4006;
constexpr unsigned kOneMlineUndoPrompt = 4008;
constexpr unsigned kOneMlinePrompt = 4009;
constexpr unsigned kFirstPointUndoPrompt = 4010;
constexpr unsigned kFirstPointPrompt = 4011;
constexpr unsigned kSecondPointPrompt = 4012;
constexpr unsigned kUndoneMessage = 4016;

enum class Answer { Selected, Keyword, Retry, End };

// Asks for an entity with prompt and sorts the result. Enter reaches a
// selection as an error with ERRNO 52 and ends the tool like empty input.
Answer select(MlineEditContext& context, unsigned prompt)
{
    double point[3] = {};
    context.status = kxedEntSel(loadText(context, prompt), context.pickName.id, point);
    context.pickPoint = KxGePoint3d(point[0], point[1], point[2]);
    switch (context.status) {
    case RTNORM:
        return Answer::Selected;
    case RTKWORD:
        return Answer::Keyword;
    case RTERROR: {
        kxresbuf errno_;
        const bool enter = kxedGetVar(L"ERRNO", &errno_) == RTNORM && errno_.restype == RTSHORT
            && errno_.resval.rint == OL_ENTSELNULL;
        return enter ? Answer::End : Answer::Retry;
    }
    default:
        return Answer::End;
    }
}

// The first prompt: with the undo keyword while an undo copy exists.
Answer selectFirst(MlineEditContext& context, unsigned undoPrompt, unsigned plainPrompt)
{
    if (context.undoFirst) {
        kxedInitGet(0, loadText(context, kUndoKeywords));
        return select(context, undoPrompt);
    }
    kxedInitGet(0, nullptr);
    return select(context, plainPrompt);
}

bool typedUndo(MlineEditContext& context)
{
    kxedGetInput(context.text);
    return wcscasecmp(context.text, L"UNDO") == 0;
}

void restoreFrom(std::unique_ptr<KxDbMline>& copy, const MlinePick& pick, bool undrawFirst)
{
    if (undrawFirst)
        kxedRedraw(pick.name.id, 2);
    restoreMultiline(pick.name, copy.get());
    copy.reset();
    kxedRedraw(pick.name.id, 1);
}

// The first prompt of every pass. UNDO typed there puts the first
// multiline back from its undo copy (undrawn first when undrawFirst), the
// second too when restoreSecond and it is another entity, and says so.
Answer askFirst(MlineEditContext& context, unsigned undoPrompt, unsigned plainPrompt, bool undrawFirst,
                bool restoreSecond)
{
    const Answer first = selectFirst(context, undoPrompt, plainPrompt);
    if (first == Answer::Keyword && typedUndo(context) && context.undoFirst) {
        restoreFrom(context.undoFirst, context.first, undrawFirst);
        if (restoreSecond && context.undoSecond && !sameEntity(context.first, context.second))
            restoreFrom(context.undoSecond, context.second, false);
        kxutPrintf(L"%ls", loadText(context, kUndoneMessage));
    }
    return first;
}

// A closed multiline where an open one is needed: the message, and the
// picks' multilines closed for a fresh start.
bool refusedAsClosed(MlineEditContext& context, const MlinePick& pick)
{
    if (!pick.closed)
        return false;
    kxutPrintf(L"%ls", loadText(context, kClosedRefusedMessage));
    closePicks(context);
    return true;
}

std::unique_ptr<KxDbMline> undoCopyOf(const KxDbMline* mline)
{
    auto copy = std::make_unique<KxDbMline>();
    backupMultiline(copy.get(), mline);
    return copy;
}

// One pass of a tool that changes the first pick's multiline only: opened
// for write, an undo copy taken, edited and redrawn.
void editWithUndoCopy(MlineEditContext& context, const PassEdit& edit)
{
    const MlineWriteScope scope(context.first, context.second);
    if (scope.status() != Kald::eOk)
        return;
    context.undoFirst = undoCopyOf(context.first.mline);
    edit(context);
    kxedRedraw(nullptr, 4);
}

}  // namespace

int runTwoMultilineLoop(MlineEditContext& context, bool changesSecond, const PassEdit& edit, OpenPicks open)
{
    for (;;) {
        if (askFirst(context, kFirstMlineUndoPrompt, kFirstMlinePrompt, false, changesSecond) == Answer::End)
            break;
        if (!isMultilineEntity(context.pickName))
            continue;
        pickMultiline(context, context.first, context.pickName, nullptr);
        if (open != OpenPicks::Any && refusedAsClosed(context, context.first))
            continue;

        Answer second = Answer::Retry;
        while (second != Answer::End && !(second == Answer::Selected && isMultilineEntity(context.pickName))) {
            kxedInitGet(0, nullptr);
            second = select(context, kSecondMlinePrompt);
        }
        if (second == Answer::End)
            break;
        pickMultiline(context, context.second, context.pickName, &context.first);
        if (open == OpenPicks::Both && refusedAsClosed(context, context.second))
            continue;

        const MlineWriteScope scope(context.first, context.second);
        if (scope.status() != Kald::eOk)
            continue;
        context.undoFirst = undoCopyOf(context.first.mline);
        context.undoSecond.reset();
        if (changesSecond && !sameEntity(context.first, context.second))
            context.undoSecond = undoCopyOf(context.second.mline);
        if (edit(context)) {
            kxedRedraw(nullptr, 4);
        } else {
            context.undoFirst.reset();
            context.undoSecond.reset();
        }
    }
    closePicks(context);
    return context.status;
}

int runOneMultilineLoop(MlineEditContext& context, const PassEdit& edit)
{
    for (;;) {
        if (askFirst(context, kOneMlineUndoPrompt, kOneMlinePrompt, true, false) == Answer::End)
            break;
        if (!isMultilineEntity(context.pickName))
            continue;
        pickMultiline(context, context.first, context.pickName, nullptr);
        context.second = MlinePick();

        editWithUndoCopy(context, edit);
    }
    closePicks(context);
    return context.status;
}

int runTwoPointLoop(MlineEditContext& context, PointPick kind, const PassEdit& edit)
{
    const auto fill = [&context, kind](MlinePick& pick, const MlinePick* other) {
        if (kind == PointPick::Weld)
            pickMultilineForWeld(context, pick, context.pickName, other);
        else
            pickMultiline(context, pick, context.pickName, other);
    };
    for (;;) {
        if (askFirst(context, kFirstPointUndoPrompt, kFirstPointPrompt, true, false) == Answer::End)
            break;
        if (!isMultilineEntity(context.pickName))
            continue;
        fill(context.first, nullptr);

        // The second point must lie on the same multiline; anything else
        // asks again.
        Answer second = Answer::Retry;
        for (;;) {
            kxedInitGet(0, nullptr);
            second = select(context, kSecondPointPrompt);
            if (second == Answer::End)
                break;
            if (second != Answer::Selected)
                continue;
            if (kind == PointPick::Weld && !isMultilineEntity(context.pickName))
                continue;
            if (context.pickName.id[0] == context.first.name.id[0])
                break;
        }
        if (second == Answer::End)
            break;
        fill(context.second, &context.first);

        editWithUndoCopy(context, edit);
    }
    closePicks(context);
    return context.status;
}

}  // namespace kdml
