// MOVE and COPY: a selection moved, or copied, by a displacement given as
// a base and a second point (or typed); the entities follow the cursor.
// COPY goes on making copies from the same base point until Enter.
#include "kaldo/app/EntityEdits.h"
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/app/commands/ModifyPrompts.h"
#include "kaldo/core/Host.h"
#include "kxdb.h"
#include "kxed.h"

namespace kaldo {

namespace {

void translated(const KxGeVector3d& offset, std::size_t, KxDbEntity& shown)
{
    shown.transformBy(KxGeMatrix3d::translation(offset));
}

// Takes back copies made by one point.
void eraseCopies(const std::vector<KxDbObjectId>& made)
{
    for (const KxDbObjectId& id : made) {
        KxDbObjectPtr<KxDbEntity> copy(id, KxDb::kForWrite);
        if (copy)
            copy->erase();
    }
}

// COPY's further copies from base, one displacement after another until
// Enter; Undo takes back the latest copies, down to first's.
void copyAgain(const SelectionSet& set, SelectionDrag& drag, const KxGePoint3d& base, std::vector<KxDbObjectId> first)
{
    // The copies of each point, latest last, for Undo.
    std::vector<std::vector<KxDbObjectId>> made{std::move(first)};
    for (;;) {
        const Editor::DragInput next =
            askDragged(drag, L"\nSpecify second point or [Exit/Undo] <Exit>: ", L"Exit Undo _Exit Undo", base,
                       Editor::DragNumbers::None,
                       [&](const KxGePoint3d& world, std::size_t index, KxDbEntity& shown) {
                           translated(world - base, index, shown);
                       });
        if (next.kind == Editor::DragInput::Kind::Keyword && next.keyword == 2) {
            if (made.empty()) {
                kxutPrintf(L"\nNothing to undo.\n");
                continue;
            }
            eraseCopies(made.back());
            made.pop_back();
            continue;
        }
        if (next.kind != Editor::DragInput::Kind::Point)
            return;
        const EditTally copies = transformEntities(set.ids(), KxGeMatrix3d::translation(next.world - base), true);
        reportUnchanged(copies);
        made.push_back(copies.made);
    }
}

// MOVE moves the selection once; COPY copies it, and goes on copying from
// the same base point.
void moveOrCopy(bool copies)
{
    SelectionSet set;
    if (!selectForCommand(set))
        return;
    SelectionDrag drag(set.ids());
    const auto displacement = askDisplacement(drag, translated);
    if (!displacement)
        return;
    EditTally first = copies ? transformEntities(set.ids(), KxGeMatrix3d::translation(displacement->offset), true)
                             : moveEntities(set.ids(), displacement->offset, host().editor->pickIndex());
    reportUnchanged(first);
    if (copies && displacement->base)
        copyAgain(set, drag, *displacement->base, std::move(first.made));
}

}  // namespace

void moveCommand()
{
    moveOrCopy(false);
}

void copyCommand()
{
    moveOrCopy(true);
}

}  // namespace kaldo
