// Entities: LINE, ARC, CIRCLE, LWPOLYLINE and MLINE are modelled; any other
// kind becomes an unmodelled entity that keeps every group. A record of
// any kind whose groups take less than half its object is kept unopened
// (kaldo/db/UnopenedRecords.h) until first opened.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "kaldo/dxf/NameCache.h"
#include "kaldo/dxf/Record.h"
#include "kaldo/dxf/SectionRecords.h"
#include "kxdbid.h"

class KxDbDatabase;
class KxDbEntity;

namespace kaldo::dxf {

struct ReadContext;
class GroupWriter;

// Reads the entity record into the database and appends it to block (or,
// when block is null, to the block its owner names, else model space, or
// paper space for an entity flagged so). ahead is what readEntityAhead
// made of the record, if anything.
void readEntity(const Record& record, ReadContext& context, KxDbObjectId block, RecordAhead* ahead = nullptr);
// Small records of kinds that nothing reads by name, given without owner
// or look, and all without handles or all with handles nothing else has
// (in any order), are gathered while they follow one another (in one
// block, or among the objects) and held as one entity or object a run
// (kaldo/db/RecordRun.h). finishRecordRun adds the run being gathered, if
// any: before anything else is added to the drawing (a block's end, the
// end of a section).
void finishRecordRun(ReadContext& context);
// Once every record is read: makes the records of runs that a dictionary
// entry or an owner names by handle objects of their own, so that the
// references find them as they would had no run held them.
void separateNamedRunRecords(ReadContext& context);
// Gathers an object record into a run, or finishes the run (false) when it
// cannot join one.
bool gatherKeptObject(const Record& record, ReadContext& context);
// Takes a LINE, ARC, CIRCLE or LWPOLYLINE record apart on the reading
// thread (SectionRecords' ReadAhead): what makes the entity (made by
// readEntity on the building thread, unless the record is kept unopened)
// with its layer's and linetype's names, for readEntity to add to the
// drawing.
void readEntityAhead(const Record& record, std::unique_ptr<RecordAhead>& slot);

void writeEntity(GroupWriter& w, const KxDbDatabase& db, const KxDbEntity& entity, NameCache& names);

}  // namespace kaldo::dxf
