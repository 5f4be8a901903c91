#include "kaldo/dxf/UnmodelledRecords.h"

#include "kaldo/dxf/GroupWriter.h"

#include <algorithm>

namespace kaldo::dxf {

RecordBasics rawRecordBasics(const Record& record)
{
    RecordBasics basics;
    bool inBlock = false;
    for (std::size_t i = 0; i < record.size(); ++i) {
        const Group g = record.at(i);
        if (g.code == 102)
            inBlock = !g.value.empty() && g.value.front() == '{';
        else if ((g.code == 5 || g.code == 105) && basics.handle == 0)
            basics.handle = toHandle(g);
        else if (g.code == 330 && !inBlock && basics.owner == 0)
            basics.owner = toHandle(g);
        else if (g.code == 100)
            break;
    }
    return basics;
}

void writeUnmodelledRecord(GroupWriter& w, const std::string& kind, const std::vector<KxDbFileGroup>& groups,
                           std::uint64_t handle, std::uint64_t owner)
{
    const auto handleGroup = std::find_if(groups.begin(), groups.end(),
                                          [](const KxDbFileGroup& g) { return g.code == 5 || g.code == 105; });
    const bool addOwner =
        owner != 0 && std::none_of(groups.begin(), groups.end(), [](const KxDbFileGroup& g) { return g.code == 330; });
    w.text(0, kind);
    if (handleGroup == groups.end())
        w.handle(5, handle);
    if (addOwner && handleGroup == groups.end())
        w.handle(330, owner);
    for (auto it = groups.begin(); it != groups.end(); ++it) {
        if (it == handleGroup) {
            w.handle(it->code, handle);
            if (addOwner)
                w.handle(330, owner);
        } else {
            w.text(it->code, it->value);
        }
    }
}

}  // namespace kaldo::dxf
