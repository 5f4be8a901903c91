#include "kaldo/dxf/RecordWriting.h"

#include "kaldo/db/ObjectRegistry.h"
#include "kaldo/db/PackedGroupValue.h"
#include "kaldo/db/UnopenedRecords.h"
#include "kaldo/dxf/GroupReader.h"
#include "kaldo/util/Utf8.h"
#include "kxdbdatabase.h"
#include "kxdbmlstyle.h"

#include <charconv>
#include <cstdio>

namespace kaldo::dxf {

std::string handleText(std::uint64_t handle)
{
    char text[24];
    std::snprintf(text, sizeof text, "%llX", static_cast<unsigned long long>(handle));
    return text;
}

void refuseRecord(const KxDbObject& obj, const DxfError& error)
{
    std::string named = "the object with handle " + handleText(obj.handle());
    if (const auto* style = KxDbMlineStyle::cast(&obj))
        named = "the multiline style \"" + utf8FromWide(style->name()) + "\" (handle " + handleText(obj.handle()) + ")";
    else if (KxDbEntity::cast(&obj))
        named = "the entity with handle " + handleText(obj.handle());
    throw DxfError(0, named + ": " + error.what());
}

std::uint64_t handleOf(const KxDbDatabase& db, KxDbObjectId id)
{
    // From the handle table alone, for an object as for a record kept
    // unopened (an entity's block, a dictionary's entry), which is not
    // opened for it: one lookup of the registry.
    return kaldo::registeredDatabase(id) == &db ? db.unopenedRecords().handleOf(id) : 0;
}

void writeRecordHead(GroupWriter& w, const char* kind, const KxDbObject& obj)
{
    // From the handle table alone (obj.handle() looks the database up
    // again).
    const KxDbDatabase* db = obj.database();
    writeRecordHead(w, kind, obj, db ? db->unopenedRecords().handleOf(obj.objectId()) : 0,
                    db ? handleOf(*db, obj.ownerId()) : 0);
}

void writeRecordHead(GroupWriter& w, const char* kind, const KxDbObject& obj, std::uint64_t handle,
                     std::uint64_t owner)
{
    w.plain(0, kind);
    w.handle(5, handle);
    writeKeptPart(w, obj, 0);
    w.handle(330, owner);
}

void writeKeptExcept(GroupWriter& w, const KxDbObject& obj, std::uint8_t part, int skippedCode)
{
    obj.keptGroups().forEach([&](std::int16_t code, std::uint8_t groupPart, std::string_view value) {
        if (groupPart == part && code != skippedCode)
            w.text(code, value);
    });
}

std::int64_t keptInteger(const KxDbObject& obj, int code, std::int64_t fallback)
{
    std::int64_t value = fallback;
    if (const auto found = kaldo::firstGroupValue(obj.keptGroups(), code)) {
        const std::string_view text = trimmed(*found);
        std::from_chars(text.data(), text.data() + text.size(), value);
    }
    return value;
}

}  // namespace kaldo::dxf
