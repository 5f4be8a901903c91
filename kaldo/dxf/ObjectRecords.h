// Objects: the named-object dictionary, the multiline-style dictionary and
// MLINESTYLE objects are modelled; every other object is kept whole. Small
// records are kept unopened (kaldo/db/UnopenedRecords.h) until first looked
// up.
#pragma once

#include "kaldo/dxf/Record.h"
#include "kxdbid.h"

#include <cstdint>
#include <string_view>

class KxDbDatabase;
class KxDbObject;

namespace kaldo::dxf {

struct ReadContext;
class GroupWriter;

// Reads one record of the OBJECTS section. The first dictionary is the
// named-object dictionary; its "ACAD_MLINESTYLE" entry names the style
// dictionary.
void readObject(const Record& record, ReadContext& context);

// Notes the owners of the objects kept unopened that were not read before
// them among the references to resolve once the whole file is read.
void noteKeptOwners(ReadContext& context);

// Keeps a BLOCK or ENDBLK record (an unmodelled object written with its
// block) under handle, unopened; returns its id.
KxDbObjectId keepBlockEnd(const Record& record, std::uint64_t handle, ReadContext& context);
// Whether records of the kind are a block's BLOCK or ENDBLK.
bool isBlockEnd(std::string_view kind);

// Writes an object of the OBJECTS section; false for objects that are
// written elsewhere (table records, entities, block begin and end).
bool writeObject(GroupWriter& w, const KxDbDatabase& db, const KxDbObject& obj);

}  // namespace kaldo::dxf
