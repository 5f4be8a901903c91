// The process-wide table from object id to object: ids are serial numbers
// given out once, so an id never names a different object later.
#pragma once

#include "kxdbid.h"

class KxDbObject;

namespace kaldo {

KxDbObjectId registerObject(KxDbObject* obj);
// Puts an object back under the id it had before unregisterObject (undo
// taking back the removal of an added object).
void registerObjectAs(KxDbObjectId id, KxDbObject* obj);
void unregisterObject(KxDbObjectId id);
// The live object id names, or null.
KxDbObject* lookupObject(KxDbObjectId id);

}  // namespace kaldo
