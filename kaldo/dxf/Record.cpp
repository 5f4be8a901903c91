#include "kaldo/dxf/Record.h"

#include "kaldo/dxf/QuickReal.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <emmintrin.h>
#include <limits>
#include <string_view>

namespace kaldo::dxf {

namespace {
// The bytes copyValue copies at once from a value that has them readable.
constexpr std::size_t kCopiedAtOnce = 32;

// Copies a value into the record's store, which has room for
// kCopiedAtOnce bytes from to, without a call for the usual short one.
// A value of up to kCopiedAtOnce bytes with as many readable from its
// start (readable is where they end) is copied by two copies of sixteen
// bytes, whatever its length: the bytes past it are written over by what
// follows in the store or lie beyond its end. Else two copies of a fixed
// size that overlap in the middle cover every length between them,
// reading and writing only the value's bytes.
[[gnu::always_inline]] inline void copyValue(unsigned char* to, std::string_view value, const char* readable)
{
    const char* const from = value.data();
    const std::size_t n = value.size();
    if (n <= kCopiedAtOnce && std::size_t(readable - from) >= kCopiedAtOnce) {
        const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        const __m128i second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 16));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), first);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 16), second);
        return;
    }
    const auto copyEnds = [&](auto word) {
        std::memcpy(&word, from, sizeof word);
        std::memcpy(to, &word, sizeof word);
        std::memcpy(&word, from + n - sizeof word, sizeof word);
        std::memcpy(to + n - sizeof word, &word, sizeof word);
    };
    if (n >= 16 && n <= 32) {
        const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        const __m128i last = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + n - 16));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), first);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + n - 16), last);
    } else if (n >= 8 && n < 16) {
        copyEnds(std::uint64_t());
    } else if (n >= 4 && n < 8) {
        copyEnds(std::uint32_t());
    } else if (n > 0 && n < 4) {
        to[0] = static_cast<unsigned char>(from[0]);
        to[n / 2] = static_cast<unsigned char>(from[n / 2]);
        to[n - 1] = static_cast<unsigned char>(from[n - 1]);
    } else if (n > 32) {
        std::memcpy(to, from, n);
    }
}
}  // namespace

namespace {
// Which numbers the groups of each code hold, looked up once a group
// instead of testing the code against every range of reals and handles.
enum class CodeHolds : std::uint8_t { Text, Real, Handle };
constexpr int kCodesClassed = 1060;
constexpr std::array<CodeHolds, kCodesClassed> kCodeHolds = [] {
    std::array<CodeHolds, kCodesClassed> holds{};
    for (int code = 0; code < kCodesClassed; ++code)
        holds[std::size_t(code)] = isRealCode(code)     ? CodeHolds::Real
                                   : isHandleCode(code) ? CodeHolds::Handle
                                                        : CodeHolds::Text;
    return holds;
}();
// Codes beyond the table (and negative ones) hold text only.
static_assert([] {
    for (int code = kCodesClassed; code <= 32767; ++code)
        if (isRealCode(code) || isHandleCode(code))
            return false;
    return true;
}());
}  // namespace

[[gnu::always_inline]] inline Record::Number Record::numberOf(bool modelled, int code, std::string_view value,
                                                              std::uint64_t& number)
{
    const CodeHolds holds = unsigned(code) < unsigned(kCodesClassed) ? kCodeHolds[std::size_t(code)] : CodeHolds::Text;
    if (double real = 0; holds == CodeHolds::Real && modelled && readQuickReal(value, real)) {
        number = std::bit_cast<std::uint64_t>(real);
        return Number::Real;
    }
    if (std::uint64_t handle = 0; holds == CodeHolds::Handle && tryHandle(value, handle, kxdbHighestHandle + 1)) {
        number = handle;
        return Number::Handle;
    }
    return Number::None;
}

void Record::read(GroupReader& reader, const Group& head)
{
    kind_.assign(trimmed(head.value));
    kindCode_ = recordKindOf(kind_);
    modelled_ = kindCode_ != RecordKind::Other;
    line_ = head.line;
    // Kept in locals while the groups are read: the members would be
    // stored and loaded again around every call of the reader.
    const bool modelled = modelled_;
    std::size_t size = 0;
    std::size_t used = 0;
    char* store = groups_.data();
    std::size_t room = groups_.size();
    std::uint64_t* numbers = numbers_.data();
    Number* kinds = numberKinds_.data();
    std::size_t numbered = numbers_.size();
    // Keeps a group: the store only grows, doubling, so that a record of
    // the usual size needs no allocation and no check beyond this one: room
    // for the code, the part, the value's length (five bytes hold any
    // value's) and the value, or kCopiedAtOnce bytes when more (copyValue).
    // A short group (readShortGroup) is copied with its code line, whose
    // four bytes the code, part and length then take.
    // Inlined into both loops: it is called for every group.
    const auto keep = [&](int code, std::string_view value, const char* readable, bool isShort)
                          __attribute__((always_inline)) {
        const std::size_t length = value.size();
        static_assert(std::endian::native == std::endian::little);
        if (isShort) {
            if (used + std::size_t(kShortGroupBytes) > room) {
                groups_.resize(std::max(2 * room, used + std::size_t(kShortGroupBytes)));
                store = groups_.data();
                room = groups_.size();
            }
            char* const at = store + used;
            const char* const from = value.data() - 4;
            const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
            const __m128i second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 16));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(at), first);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(at + 16), second);
            // The code's two bytes, part 0 and the length's one byte.
            const std::uint32_t head = std::uint32_t(std::uint16_t(code)) | std::uint32_t(length) << 24;
            std::memcpy(at, &head, sizeof head);
            used += sizeof head + length;
        } else {
            if (const std::size_t most = used + 8 + std::max(length, kCopiedAtOnce); most > room) {
                groups_.resize(std::max(2 * room, most));
                store = groups_.data();
                room = groups_.size();
            }
            auto* at = reinterpret_cast<unsigned char*>(store + used);
            at[0] = static_cast<unsigned char>(std::uint16_t(code) & 0xFF);
            at[1] = static_cast<unsigned char>(std::uint16_t(code) >> 8);
            at[2] = 0;
            at += 3;
            std::size_t rest = length;
            for (; rest >= 0x80; rest >>= 7)
                *at++ = static_cast<unsigned char>((rest & 0x7F) | 0x80);
            *at++ = static_cast<unsigned char>(rest);
            copyValue(at, value, readable);
            used = std::size_t(reinterpret_cast<char*>(at) - store) + length;
        }
        if (size >= numbered && size < kReadNumbers) {
            numbers_.resize(std::min(kReadNumbers, std::max(kFirstGroups, 2 * size)));
            numberKinds_.resize(numbers_.size());
            numbers = numbers_.data();
            kinds = numberKinds_.data();
            numbered = numbers_.size();
        }
        if (size < numbered)
            kinds[size] = numberOf(modelled, code, value, numbers[size]);
        ++size;
    };
    Group g;
    try {
        // The usual groups in one loop, any other one by one; a usual group
        // of code 0 is left unread, any other pushed back.
        while (!reader.readPlain(keep) && reader.next(g)) {
            if (g.code == 0) {
                reader.pushBack(g);
                break;
            }
            keep(g.code, g.value, g.value.data() + g.value.size(), false);
        }
    } catch (...) {
        size_ = size;
        used_ = used;
        throw;
    }
    size_ = size;
    used_ = used;
}

void Record::assign(std::string_view kind, KxDbPackedGroupsView groups)
{
    kind_.assign(kind);
    kindCode_ = recordKindOf(kind_);
    modelled_ = kindCode_ != RecordKind::Other;
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
        numberKinds_[size_] = numberOf(modelled_, code, value, numbers_[size_]);
    }
    ++size_;
}

RecordKind recordKindOf(std::string_view kind)
{
    // Told apart by length first: one comparison of text at most.
    switch (kind.size()) {
    case 3:
        return kind == "ARC" ? RecordKind::Arc : RecordKind::Other;
    case 4:
        return kind == "LINE" ? RecordKind::Line : RecordKind::Other;
    case 5:
        return kind == "MLINE" ? RecordKind::Mline : RecordKind::Other;
    case 6:
        return kind == "CIRCLE" ? RecordKind::Circle : RecordKind::Other;
    case 10:
        return kind == "LWPOLYLINE" ? RecordKind::LwPolyline
               : kind == "DICTIONARY" ? RecordKind::Dictionary
               : kind == "MLINESTYLE" ? RecordKind::MlineStyle
                                      : RecordKind::Other;
    default:
        return RecordKind::Other;
    }
}

}  // namespace kaldo::dxf
