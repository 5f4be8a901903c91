// ERASE: picks entities one point at a time until Enter, then erases them
// and says how many. Cancel erases nothing.
#include "kaldo/app/commands/HostCommands.h"
#include "kxdb.h"
#include "kxed.h"

#include <algorithm>
#include <vector>

namespace kaldo {

void eraseCommand()
{
    std::vector<KxDbObjectId> picked;
    for (;;) {
        kxds_name name = {0, 0};
        double point[3] = {};
        const int result = kxedEntSel(L"\nSelect object: ", name, point);
        if (result == RTCAN)
            return;
        if (result == RTERROR && pickMissed())
            continue;
        KxDbObjectId id;
        if (result != RTNORM || kxdbGetObjectId(id, name) != Kald::eOk)
            break;
        if (std::find(picked.begin(), picked.end(), id) == picked.end()) {
            picked.push_back(id);
            kxedRedraw(name, 3);
        }
        kxutPrintf(L"\n%d found\n", static_cast<int>(picked.size()));
    }
    int erased = 0;
    for (const KxDbObjectId& id : picked) {
        KxDbObjectPtr<KxDbEntity> entity(id, KxDb::kForWrite);
        if (entity && entity->erase() == Kald::eOk)
            ++erased;
    }
    kxutPrintf(L"\n%d erased.\n", erased);
}

}  // namespace kaldo
