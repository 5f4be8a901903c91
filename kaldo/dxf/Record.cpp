#include "kaldo/dxf/Record.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

namespace kaldo::dxf {

void Record::read(GroupReader& reader, const Group& head)
{
    kind_.assign(trimmed(head.value));
    modelled_ = isModelledKind(kind_);
    line_ = head.line;
    size_ = 0;
    used_ = 0;
    isPacked_ = false;
    Group g;
    while (reader.next(g)) {
        if (g.code == 0) {
            reader.pushBack(g);
            return;
        }
        // Both stores only grow, doubling, so that a record of the usual
        // size needs no allocation and no checks beyond these two.
        if (size_ == fields_.size())
            fields_.resize(std::max<std::size_t>(kFirstFields, 2 * size_));
        if (used_ + g.value.size() > text_.size())
            text_.resize(std::max(2 * text_.size(), used_ + g.value.size()));
        std::memcpy(text_.data() + used_, g.value.data(), g.value.size());
        Number number = Number::None;
        if (size_ < kReadNumbers) {
            if (size_ == numbers_.size())
                numbers_.resize(std::min(kReadNumbers, fields_.size()));
            if (double real = 0; modelled_ && isRealCode(g.code) && readQuickReal(g.value, real)) {
                numbers_[size_] = std::bit_cast<std::uint64_t>(real);
                number = Number::Real;
            } else if (std::uint64_t handle = 0;
                       isHandleCode(g.code) && tryHandle(g.value, handle, kxdbHighestHandle + 1)) {
                numbers_[size_] = handle;
                number = Number::Handle;
            }
        }
        fields_[size_++] = Field{std::int16_t(g.code), number, std::uint32_t(used_), std::uint32_t(g.line - line_)};
        used_ += g.value.size();
    }
}

KxDbPackedGroupsView Record::packedGroups() const
{
    if (!isPacked_) {
        packed_.clear();
        for (std::size_t i = 0; i < size_; ++i) {
            const Field& f = fields_[i];
            const std::size_t end = i + 1 < size_ ? fields_[i + 1].offset : used_;
            packed_.append(f.code, 0, std::string_view(text_).substr(f.offset, end - f.offset));
        }
        isPacked_ = true;
    }
    return packed_.view();
}

bool isModelledKind(std::string_view kind)
{
    return kind == "LINE" || kind == "ARC" || kind == "CIRCLE" || kind == "LWPOLYLINE" || kind == "MLINE"
           || kind == "DICTIONARY" || kind == "MLINESTYLE";
}

}  // namespace kaldo::dxf
