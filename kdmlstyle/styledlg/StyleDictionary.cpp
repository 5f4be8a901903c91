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

bool removeStyle(KxDbObjectId dictionaryId, const std::wstring& name)
{
    KxDbObjectId styleId;
    {
        const KxDbObjectPtr<KxDbDictionary> dictionary(dictionaryId, KxDb::kForWrite);
        if (!dictionary)
            return false;
        if (dictionary->remove(name.c_str(), styleId) != Kald::eOk)
            return true;
    }
    const KxDbObjectPtr<KxDbObject> style(styleId, KxDb::kForWrite);
    if (style)
        style->erase();
    return true;
}

}  // namespace kdml
