#include "kaldo/dxf/Record.h"

#include <algorithm>
#include <cstring>

namespace kaldo::dxf {

void Record::read(GroupReader& reader, const Group& head)
{
    kind_.assign(trimmed(head.value));
    line_ = head.line;
    size_ = 0;
    used_ = 0;
    Group g;
    while (reader.next(g)) {
        if (g.code == 0) {
            reader.pushBack();
            return;
        }
        // Both stores only grow, doubling, so that a record of the usual
        // size needs no allocation and no checks beyond these two.
        if (size_ == fields_.size())
            fields_.resize(std::max<std::size_t>(kFirstFields, 2 * size_));
        if (used_ + g.value.size() > text_.size())
            text_.resize(std::max(2 * text_.size(), used_ + g.value.size()));
        std::memcpy(text_.data() + used_, g.value.data(), g.value.size());
        fields_[size_++] = Field{g.code, std::uint32_t(used_), std::uint32_t(g.line - line_)};
        used_ += g.value.size();
    }
}

KxDbPackedGroupsView Record::packedGroups() const
{
    packed_.clear();
    for (std::size_t i = 0; i < size_; ++i) {
        const Group g = at(i);
        packed_.append(g.code, 0, g.value);
    }
    return packed_.view();
}

}  // namespace kaldo::dxf
