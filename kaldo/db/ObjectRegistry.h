// The process-wide table from object id to object and its database: ids
// are serial numbers given out once, so an id never names a different
// object later.
#pragma once

#include <cstdint>
#include <optional>

#include "kxdbid.h"

class KxDbDatabase;
class KxDbObject;
class KxRxClass;

namespace kaldo {

KxDbObjectId registerObject(KxDbObject* obj, KxDbDatabase* db);
// Gives the serials after serial next, as a process would that had made
// that many objects (ids past 32 bits without making four billion first).
void skipSerialsTo(std::uint64_t serial);
// Puts an object back under the id it had before unregisterObject (undo
// taking back the removal of an added object), or in place of the record
// an unopened record's id names.
void registerObjectAs(KxDbObjectId id, KxDbObject* obj, KxDbDatabase* db);
// A new id of class cls in db that names a record kept unopened, by
// entry (below 2^63) among db's unopenedRecords(): the lookups below
// make the object through it, the others do not.
KxDbObjectId registerUnopened(const KxRxClass* cls, std::uint64_t entry, KxDbDatabase* db);
// Names another entry for the record an unopened record's id names (its
// place once it is stored: what it stores may depend on its id).
void setUnopenedEntry(KxDbObjectId id, std::uint64_t entry);
// Whether id names a record kept unopened.
bool isUnopened(KxDbObjectId id);
// The entry an unopened record's id names, else nothing.
std::optional<std::uint64_t> unopenedEntry(KxDbObjectId id);
void unregisterObject(KxDbObjectId id);
// A database that goes, after its objects: its place in the table is free
// for another.
void unregisterDatabase(KxDbDatabase* db);
// The live object id names, or null.
KxDbObject* lookupObject(KxDbObjectId id);
// The database of the live object id names, or null.
KxDbDatabase* registeredDatabase(KxDbObjectId id);
// The live object id names when it is db's, else null.
KxDbObject* lookupObjectOf(KxDbObjectId id, const KxDbDatabase* db);
// What the table knows of an object without reading it: its class (taken
// when it is registered) and whether it is erased (told by setErased), so
// that walks over many ids touch only the objects they open.
const KxRxClass* registeredClass(KxDbObjectId id);
bool isRegisteredLive(KxDbObjectId id);
void setErased(KxDbObjectId id, bool erased);

}  // namespace kaldo
