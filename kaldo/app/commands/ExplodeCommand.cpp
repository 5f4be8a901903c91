// EXPLODE: picks multilines one at a time until Enter and turns each into
// the lines, arcs and fill it is drawn with as it is picked. Other kinds of
// entities are refused with a message.
#include "kaldo/app/MlineExplosion.h"
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/core/Host.h"
#include "kxdb.h"
#include "kxed.h"

namespace kaldo {

namespace {

bool isMline(KxDbObjectId id)
{
    const KxDbObjectPtr<KxDbEntity> entity(id, KxDb::kForRead);
    return entity && KxDbMline::cast(entity.get());
}

}  // namespace

void explodeCommand()
{
    KxDbDatabase* db = host().database;
    if (!db)
        return;
    int exploded = 0;
    for (;;) {
        kxds_name name = {0, 0};
        double point[3] = {};
        const int result = kxedEntSel(L"\nSelect multiline to explode: ", name, point);
        if (result == RTERROR && pickMissed())
            continue;
        KxDbObjectId id;
        if (result != RTNORM || kxdbGetObjectId(id, name) != Kald::eOk)
            break;
        if (!isMline(id)) {
            kxutPrintf(L"\nNot a multiline.\n");
            continue;
        }
        const Explosion made = explodeMline(*db, id);
        if (!made.exploded) {
            kxutPrintf(L"\nThe multiline cannot be exploded.\n");
            continue;
        }
        ++exploded;
        kxutPrintf(L"\n%d lines, %d arcs, %d hatches.\n", made.lines, made.arcs, made.hatches);
    }
    kxutPrintf(L"\n%d exploded.\n", exploded);
}

}  // namespace kaldo
