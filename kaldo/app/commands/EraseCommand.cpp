// ERASE: erases the selected entities and says how many. Cancel erases
// nothing.
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/app/commands/ModifyPrompts.h"
#include "kxdb.h"
#include "kxed.h"

namespace kaldo {

void eraseCommand()
{
    SelectionSet set;
    if (Editor* editor = currentEditor(); !editor || editor->selectObjects(set) != RTNORM)
        return;
    int erased = 0;
    for (const KxDbObjectId& id : set.ids()) {
        KxDbObjectPtr<KxDbEntity> entity(id, KxDb::kForWrite);
        if (entity && entity->erase() == Kald::eOk)
            ++erased;
    }
    kxutPrintf(L"\n%d erased.\n", erased);
}

}  // namespace kaldo
