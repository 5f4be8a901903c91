#include "kaldo/dxf/Record.h"

namespace kaldo::dxf {

void Record::read(GroupReader& reader, const Group& head)
{
    kind_.assign(trimmed(head.value));
    line_ = head.line;
    size_ = 0;
    text_.clear();
    Group g;
    while (reader.next(g)) {
        if (g.code == 0) {
            reader.pushBack();
            return;
        }
        if (size_ == fields_.size())
            fields_.emplace_back();
        fields_[size_++] = Field{g.code, std::uint32_t(text_.size()), std::uint32_t(g.value.size()), g.line};
        text_.append(g.value);
    }
}

std::vector<KxDbFileGroup> Record::allGroups() const
{
    std::vector<KxDbFileGroup> groups;
    groups.reserve(size_);
    for (std::size_t i = 0; i < size_; ++i) {
        const Group g = at(i);
        groups.push_back(KxDbFileGroup{std::int16_t(g.code), 0, std::string(g.value)});
    }
    return groups;
}

}  // namespace kaldo::dxf
