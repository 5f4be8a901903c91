// What the modify commands do to the entities they selected: transform them
// (or copies of them) and stretch them, counting the kinds they had to
// leave as they were.
#pragma once

#include "kaldo/ed/SelectionSet.h"
#include "kxdbid.h"
#include "kxgematrix.h"

#include <map>
#include <span>
#include <string>
#include <vector>

class KxDbEntity;

namespace kaldo {

class PickIndex;

struct EditTally {
    int changed = 0;
    std::vector<KxDbObjectId> transformed;  // entities changed in place
    std::map<std::wstring, int> unchanged;  // per kind of entity
    std::vector<KxDbObjectId> made;        // copies added to the drawing
};

// Transforms every entity by m; with copies, a copy of each instead, added
// to the current space (the original stays).
EditTally transformEntities(std::span<const KxDbObjectId> ids, const KxGeMatrix3d& m, bool copies);
// Moves every entity by offset, and the boxes index keeps of them with
// them, so that the next pick or window does not measure the moved
// entities anew.
EditTally moveEntities(std::span<const KxDbObjectId> ids, const KxGeVector3d& offset, PickIndex& index);

// The indices of the entity's stretch points that lie in one of the
// windows (world XY).
std::vector<int> stretchIndices(const KxDbEntity& entity, std::span<const Box> windows);
// Moves by offset the stretch points that lie in the selection's windows:
// an entity with all of them inside moves whole, one without any stays.
EditTally stretchEntities(const SelectionSet& set, const KxGeVector3d& offset);

// "Not changed: 2 TEXT, 1 HATCH." when kinds were left as they were.
void reportUnchanged(const EditTally& tally);

}  // namespace kaldo
