// The process-wide table from object id to object: ids are serial numbers
// given out once, so an id never names a different object later.
#pragma once

#include "kxdbid.h"

class KxDbObject;
class KxRxClass;

namespace kaldo {

KxDbObjectId registerObject(KxDbObject* obj);
// Puts an object back under the id it had before unregisterObject (undo
// taking back the removal of an added object).
void registerObjectAs(KxDbObjectId id, KxDbObject* obj);
void unregisterObject(KxDbObjectId id);
// The live object id names, or null.
KxDbObject* lookupObject(KxDbObjectId id);
// What the table knows of an object without reading it: its class (taken
// when it is registered) and whether it is erased (told by setErased), so
// that walks over many ids touch only the objects they open.
const KxRxClass* registeredClass(KxDbObjectId id);
bool isRegisteredLive(KxDbObjectId id);
void setErased(KxDbObjectId id, bool erased);

}  // namespace kaldo
