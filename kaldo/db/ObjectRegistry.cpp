#include "kaldo/db/ObjectRegistry.h"

#include <unordered_map>

#include "kxdbobject.h"

namespace kaldo {
namespace {

struct Registry {
    std::uint64_t lastSerial = 0;
    std::unordered_map<std::uint64_t, KxDbObject*> objects;
};

Registry& registry()
{
    static Registry r;
    return r;
}

}  // namespace

KxDbObjectId registerObject(KxDbObject* obj)
{
    Registry& r = registry();
    const std::uint64_t serial = ++r.lastSerial;
    r.objects.emplace(serial, obj);
    return KxDbObjectId::fromOldId(serial);
}

void unregisterObject(KxDbObjectId id)
{
    registry().objects.erase(id.asOldId());
}

KxDbObject* lookupObject(KxDbObjectId id)
{
    const Registry& r = registry();
    const auto it = r.objects.find(id.asOldId());
    return it == r.objects.end() ? nullptr : it->second;
}

}  // namespace kaldo

bool KxDbObjectId::isValid() const
{
    return kaldo::lookupObject(*this) != nullptr;
}

bool KxDbObjectId::isErased() const
{
    const KxDbObject* obj = kaldo::lookupObject(*this);
    return obj && obj->isErased();
}

KxDbDatabase* KxDbObjectId::database() const
{
    const KxDbObject* obj = kaldo::lookupObject(*this);
    return obj ? obj->database() : nullptr;
}
