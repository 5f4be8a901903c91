// The entities of model and paper space, the body of the ENTITIES section,
// written a chunk at a time: each of two threads makes the text of a chunk
// in memory and writes it to the file once the chunk before it is written.
#pragma once

#include "kaldo/dxf/DxfFile.h"
#include "kaldo/dxf/EntityRecords.h"
#include "kaldo/dxf/GroupWriter.h"

class KxDbEntity;

namespace kaldo::dxf {

// Writes the entity, or throws DxfError naming it when it cannot be written.
void writeEntityRecord(GroupWriter& w, const KxDbDatabase& db, const KxDbEntity& entity, NameCache& names);

// Writes the entities to fd at its position (nothing may wait in a writer
// of fd). Reading the drawing from two threads is safe, as nothing changes
// it while it is saved. The bytes, the first refused entity and the
// progress (told on the calling thread) are those of one thread; only two
// chunks' lists and texts are held.
void writeSpaceEntities(int fd, const KxDbDatabase& db, const KeptSections& kept, NameCache& names,
                        ProgressMeter& meter, const EntityChunks& chunks);

}  // namespace kaldo::dxf
