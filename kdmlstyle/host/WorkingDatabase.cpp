#include "host/WorkingDatabase.h"

#include "kxdb.h"

namespace kdml {

KxDbDatabase* workingDatabase()
{
    kxds_name name = {0, 0};
    KxDbObjectId id;
    if (kxdbNamedObjDict(name) != RTNORM || kxdbGetObjectId(id, name) != Kald::eOk)
        return nullptr;
    return id.database();
}

}  // namespace kdml
