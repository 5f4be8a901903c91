// Pieces every record writer uses: the head of a record (kind, handle,
// kept reactor blocks, owner) and the kept groups of one part.
#pragma once

#include <string>

#include "kaldo/dxf/DxfError.h"
#include "kaldo/dxf/GroupWriter.h"
#include "kxdbobject.h"

namespace kaldo::dxf {

void writeRecordHead(GroupWriter& w, const char* kind, const KxDbObject& obj);
// The same with the object's handle and the owner's (0 for none) given.
void writeRecordHead(GroupWriter& w, const char* kind, const KxDbObject& obj, std::uint64_t handle,
                     std::uint64_t owner);
// The kept groups of one part, of an object's keptGroups() taken once for
// its parts (none, mostly: then nothing is called).
inline void writeKeptPart(GroupWriter& w, KxDbPackedGroupsView kept, std::uint8_t part)
{
    kept.forEach([&](std::int16_t code, std::uint8_t groupPart, std::string_view value) {
        if (groupPart == part)
            w.text(code, value);
    });
}
inline void writeKeptPart(GroupWriter& w, const KxDbObject& obj, std::uint8_t part)
{
    writeKeptPart(w, obj.keptGroups(), part);
}
// The integer value of the first kept group of code, or fallback.
std::int64_t keptInteger(const KxDbObject& obj, int code, std::int64_t fallback);
void writeKeptExcept(GroupWriter& w, const KxDbObject& obj, std::uint8_t part, int skippedCode);
// A record that cannot be written: throws a DxfError that names it (by its
// handle, a multiline style by its name too), so that the user knows what
// to change, followed by error's reason.
[[noreturn]] void refuseRecord(const KxDbObject& obj, const DxfError& error);
// A handle as files write it: upper-case hexadecimal.
std::string handleText(std::uint64_t handle);
// The handle of the object id names, 0 for a null or foreign id.
std::uint64_t handleOf(const KxDbDatabase& db, KxDbObjectId id);

}  // namespace kaldo::dxf
