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
    Group g;
    while (reader.next(g)) {
        if (g.code == 0) {
            reader.pushBack(g);
            return;
        }
        // The store only grows, doubling, so that a record of the usual
        // size needs no allocation and no check beyond this one: room for
        // the code, the part, the value's length (five bytes hold any
        // value's) and the value.
        if (const std::size_t most = used_ + 8 + g.value.size(); most > groups_.size())
            groups_.resize(std::max(2 * groups_.size(), most));
        auto* at = reinterpret_cast<unsigned char*>(groups_.data() + used_);
        const auto code = std::uint16_t(g.code);
        at[0] = static_cast<unsigned char>(code & 0xFF);
        at[1] = static_cast<unsigned char>(code >> 8);
        at[2] = 0;
        at += 3;
        std::size_t length = g.value.size();
        for (; length >= 0x80; length >>= 7)
            *at++ = static_cast<unsigned char>((length & 0x7F) | 0x80);
        *at++ = static_cast<unsigned char>(length);
        std::memcpy(at, g.value.data(), g.value.size());
        used_ = std::size_t(reinterpret_cast<char*>(at) - groups_.data()) + g.value.size();
        noteNumbers(g.code, g.value);
    }
}

void Record::assign(std::string_view kind, KxDbPackedGroupsView groups)
{
    kind_.assign(kind);
    modelled_ = isModelledKind(kind_);
    line_ = 0;
    size_ = 0;
    used_ = groups.bytes().size();
    groups_.assign(groups.bytes());
    groups.forEach([&](std::int16_t code, std::uint8_t, std::string_view value) { noteNumbers(code, value); });
}

void Record::noteNumbers(int code, std::string_view value)
{
    if (size_ < kReadNumbers) {
        if (size_ == numbers_.size()) {
            numbers_.resize(std::min(kReadNumbers, std::max(kFirstGroups, 2 * size_)));
            numberKinds_.resize(numbers_.size());
        }
        Number number = Number::None;
        if (double real = 0; modelled_ && isRealCode(code) && readQuickReal(value, real)) {
            numbers_[size_] = std::bit_cast<std::uint64_t>(real);
            number = Number::Real;
        } else if (std::uint64_t handle = 0; isHandleCode(code) && tryHandle(value, handle, kxdbHighestHandle + 1)) {
            numbers_[size_] = handle;
            number = Number::Handle;
        }
        numberKinds_[size_] = number;
    }
    ++size_;
}

bool isModelledKind(std::string_view kind)
{
    return kind == "LINE" || kind == "ARC" || kind == "CIRCLE" || kind == "LWPOLYLINE" || kind == "MLINE"
           || kind == "DICTIONARY" || kind == "MLINESTYLE";
}

}  // namespace kaldo::dxf
