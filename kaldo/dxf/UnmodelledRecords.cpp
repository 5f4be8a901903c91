#include "kaldo/dxf/UnmodelledRecords.h"

#include "kaldo/dxf/GroupWriter.h"

#include <algorithm>

namespace kaldo::dxf {

RecordBasics rawRecordBasics(const Record& record)
{
    RecordBasics basics;
    bool inBlock = false;
    record.forEach([&](const Group& g) {
        if (g.code == 102)
            inBlock = !g.value.empty() && g.value.front() == '{';
        else if ((g.code == 5 || g.code == 105) && basics.handle == 0)
            basics.handle = toHandle(g);
        else if (g.code == 330 && !inBlock && basics.owner == 0)
            basics.owner = toHandle(g);
        else if (g.code == 100)
            return false;
        return true;
    });
    return basics;
}

void writeUnmodelledRecord(GroupWriter& w, std::string_view kind, KxDbPackedGroupsView groups,
                           std::uint64_t handle, std::uint64_t owner)
{
    bool hasHandle = false;
    bool hasOwner = false;
    groups.forEach([&](int code, std::uint8_t, std::string_view) {
        hasHandle = hasHandle || code == 5 || code == 105;
        hasOwner = hasOwner || code == 330;
    });
    const bool addOwner = owner != 0 && !hasOwner;
    w.text(0, kind);
    if (!hasHandle) {
        w.handle(5, handle);
        if (addOwner)
            w.handle(330, owner);
    }
    bool handleWritten = false;
    // The record's bytes checked at once: when its codes and lengths, too,
    // need no encoding, the values need none.
    const bool plain = !w.needsEncoding(groups.bytes());
    groups.forEach([&](int code, std::uint8_t, std::string_view value) {
        if ((code == 5 || code == 105) && !handleWritten) {
            w.handle(code, handle);
            if (addOwner)
                w.handle(330, owner);
            handleWritten = true;
        } else if (plain) {
            w.plain(code, value);
        } else {
            w.text(code, value);
        }
    });
}

}  // namespace kaldo::dxf
