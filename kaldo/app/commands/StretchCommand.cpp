// STRETCH: the stretch points (line ends, polyline and multiline vertices,
// arc and circle centres) that lie in the windows of the selection move by
// a displacement; entities with all of them inside move whole.
#include "kaldo/app/EntityEdits.h"
#include "kaldo/app/commands/HostCommands.h"
#include "kaldo/app/commands/ModifyPrompts.h"
#include "kxdb.h"
#include "kxed.h"

namespace kaldo {

void stretchCommand()
{
    kxutPrintf(L"\nSelect objects to stretch by crossing-window or crossing-polygon...\n");
    SelectionSet set;
    if (!selectForCommand(set))
        return;
    // The stretch points in the windows, of the entities the drag shows.
    std::vector<std::vector<int>> indices;
    for (std::size_t i = 0; i < set.size() && i < SelectionDrag::kMostShown; ++i) {
        const KxDbObjectPtr<KxDbEntity> entity(set.ids()[i], KxDb::kForRead);
        indices.push_back(entity ? stretchIndices(*entity, set.windows()) : std::vector<int>());
    }
    SelectionDrag drag(set.ids());
    const auto displacement =
        askDisplacement(drag, [&](const KxGeVector3d& offset, std::size_t index, KxDbEntity& shown) {
            if (index < indices.size())
                shown.moveStretchPointsAt(indices[index], offset);
        });
    if (!displacement)
        return;
    reportUnchanged(stretchEntities(set, displacement->offset));
}

}  // namespace kaldo
