// EXPLODE: turns the selected multilines into the lines, arcs and fill they
// are drawn with. Other kinds of entities stay as they were and are named.
#include "kaldo/app/EntityEdits.h"
#include "kaldo/app/MlineExplosion.h"
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/app/commands/ModifyPrompts.h"
#include "kaldo/core/Host.h"
#include "kaldo/db/EntityKinds.h"
#include "kxdb.h"
#include "kxed.h"

namespace kaldo {

void explodeCommand()
{
    KxDbDatabase* db = host().database;
    SelectionSet set;
    if (!db || !selectForCommand(set))
        return;
    EditTally tally;
    Explosion made;
    for (const KxDbObjectId& id : set.ids()) {
        std::wstring kind;
        {
            const KxDbObjectPtr<KxDbEntity> entity(id, KxDb::kForRead);
            if (!entity)
                continue;
            kind = entityKindName(*entity);
        }
        const Explosion pieces = kind == L"MLINE" ? explodeMline(*db, id) : Explosion{};
        if (!pieces.exploded) {
            ++tally.unchanged[kind];
            continue;
        }
        ++tally.changed;
        made.lines += pieces.lines;
        made.arcs += pieces.arcs;
        made.hatches += pieces.hatches;
    }
    reportUnchanged(tally);
    if (tally.changed > 0)
        kxutPrintf(L"\n%d lines, %d arcs, %d hatches.\n", made.lines, made.arcs, made.hatches);
    kxutPrintf(L"\n%d exploded.\n", tally.changed);
}

}  // namespace kaldo
