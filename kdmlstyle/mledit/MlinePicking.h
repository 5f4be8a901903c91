// Telling whether a selection is a multiline, and filling a pick from the
// selected multiline and the selection point.
#pragma once

#include "mledit/MlineEditContext.h"

namespace kdml {

// True when name is set and names a multiline (or an object of a class
// derived from it). Otherwise prints message 4018 (only when name was set)
// and clears name.
bool isMultilineEntity(kxds_name_t& name);

// Takes mline (open) into the pick with its vertex and element counts, its
// closed flag, its axis and its element lines; the hit fields are kept
// within its segments and elements.
void loadPickGeometry(MlinePick& pick, KxDbMline* mline);

// Fills pick from the entity name and the context's pickPoint: opens the
// multiline for read (or shares other's object when other names the same
// entity), builds its element lines and finds the first drawn element run
// under the pick box, scanning segments, then elements. On an open
// multiline a pick that hits no run goes to an end of element 0. The hit is
// copied into the mark and the context's pickName cleared. other is null
// for the first pick.
void pickMultiline(MlineEditContext& context, MlinePick& pick, const kxds_name_t& name, const MlinePick* other);

// The weld tool's pick: as pickMultiline, but a pick inside a gap still
// hits, and the hit snaps to the start of its segment, or to its end when
// it lies at or beyond it (snapPoint); the mark takes snapPoint.
void pickMultilineForWeld(MlineEditContext& context, MlinePick& pick, const kxds_name_t& name,
                          const MlinePick* other);

}  // namespace kdml
