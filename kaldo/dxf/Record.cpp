#include "kaldo/dxf/Record.h"

namespace kaldo::dxf {

void Record::read(GroupReader& reader, const Group& head)
{
    kind_.assign(trimmed(head.value));
    line_ = head.line;
    size_ = 0;
    Group g;
    while (reader.next(g)) {
        if (g.code == 0) {
            reader.pushBack();
            return;
        }
        if (size_ == fields_.size())
            fields_.emplace_back();
        Field& f = fields_[size_++];
        f.code = g.code;
        f.value.assign(g.value);
        f.line = g.line;
    }
}

std::vector<KxDbFileGroup> Record::allGroups() const
{
    std::vector<KxDbFileGroup> groups;
    groups.reserve(size_);
    for (std::size_t i = 0; i < size_; ++i)
        groups.push_back(
            KxDbFileGroup{std::int16_t(fields_[i].code), 0, fields_[i].value});
    return groups;
}

}  // namespace kaldo::dxf
