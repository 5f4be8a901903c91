// What every drawing has, added to a drawing read from a file that lacks
// it: the linetype table with ByLayer, ByBlock and Continuous, the layer
// table with layer "0", the block table with model and paper space, the
// named-object dictionary, "ACAD_MLINESTYLE" and the style STANDARD. New
// records get handles above the file's handle seed.
#pragma once

#include "kxdbid.h"

namespace kaldo::dxf {

struct ReadContext;

KxDbObjectId ensureBlockTable(ReadContext& context);
KxDbObjectId ensureLayerTable(ReadContext& context);
KxDbObjectId ensureLinetypeTable(ReadContext& context);
void ensureLayoutBlocks(ReadContext& context);
// Adds everything missing and names the database's roots.
void addMissingRecords(ReadContext& context);

}  // namespace kaldo::dxf
