#include "kaldo/db/TableRecords.h"

#include "kaldo/db/NameKey.h"
#include "kaldo/db/ObjectRegistry.h"
#include "kaldo/db/UnopenedRecords.h"
#include "kaldo/util/Utf8.h"
#include "kxdbdatabase.h"
#include "kxdbsymtb.h"

namespace kaldo {

namespace {

std::uint64_t hashOf(std::wstring_view key)
{
    return std::hash<std::wstring_view>()(key);
}

}  // namespace

std::wstring TableRecords::nameOf(KxDbObjectId id)
{
    if (isUnopened(id)) {
        std::wstring name;
        if (const auto kept = registeredDatabase(id)->unopenedRecords().kept(id))
            kept->groups.forEach([&](std::int16_t code, std::uint8_t, std::string_view value) {
                if (code == 2)
                    name = wideFromUtf8(value);
                return code != 2;
            });
        return name;
    }
    const auto* record = static_cast<const KxDbSymbolTableRecord*>(lookupObject(id));
    return record ? record->name() : std::wstring();
}

std::optional<std::wstring> TableRecords::nameIn(const KxDbDatabase& db, KxDbObjectId id)
{
    const KxRxClass* cls = registeredClass(id);
    if (registeredDatabase(id) != &db || !cls || !cls->isDerivedFrom(KxDbSymbolTableRecord::desc()))
        return std::nullopt;
    return nameOf(id);
}

KxDbObjectId TableRecords::find(std::wstring_view name, const std::function<bool(KxDbObjectId)>& accept) const
{
    const std::wstring key = foldName(name);
    return KxDbObjectId::fromOldId(m_byName.find(hashOf(key), [&](std::uint64_t serial) {
        const KxDbObjectId id = KxDbObjectId::fromOldId(serial);
        return foldName(nameOf(id)) == key && accept(id);
    }));
}

void TableRecords::index(KxDbObjectId id, std::wstring_view name)
{
    m_byName.insert(hashOf(foldName(name)), id.asOldId(),
                    [](std::uint64_t serial) { return hashOf(foldName(nameOf(KxDbObjectId::fromOldId(serial)))); });
}

void TableRecords::unindex(KxDbObjectId id, std::wstring_view name)
{
    m_byName.erase(hashOf(foldName(name)), id.asOldId());
}

}  // namespace kaldo
