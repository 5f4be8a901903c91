#include "styledlg/StyleDictionary.h"

#include "kxdb.h"

#include <memory>

namespace kdml {

KxDbObjectId searchDictionary(const kxds_name dictionary, const std::wstring& key)
{
    KxDbObjectId id;
    const std::unique_ptr<kxresbuf, int (*)(kxresbuf*)> found(kxdbDictSearch(dictionary, key.c_str(), 0), kxutRelRb);
    for (const kxresbuf* rb = found.get(); rb; rb = rb->rbnext) {
        if (rb->restype == -1) {
            kxdbGetObjectId(id, rb->resval.rlname);
            break;
        }
    }
    return id;
}

bool findStyleDictionary(StyleDictionary& found)
{
    kxds_name named = {0, 0};
    if (kxdbNamedObjDict(named) != RTNORM)
        return false;
    found.id = searchDictionary(named, kxdbMlineStyleDictionaryName);
    return !found.id.isNull() && kxdbGetEntityName(found.name, found.id) == Kald::eOk;
}

}  // namespace kdml
