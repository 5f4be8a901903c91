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
// The same for records of kinds not modelled, whose reals are kept as text.
constexpr std::array<CodeHolds, kCodesClassed> kCodeHoldsUnmodelled = [] {
    std::array<CodeHolds, kCodesClassed> holds = kCodeHolds;
    for (CodeHolds& h : holds)
        if (h == CodeHolds::Real)
            h = CodeHolds::Text;
    return holds;
}();
// Codes beyond the table (and negative ones) hold text only.
static_assert([] {
    for (int code = kCodesClassed; code <= 32767; ++code)
        if (isRealCode(code) || isHandleCode(code))
            return false;
    return true;
}());
// Notes the numbers of a group of code, which holdsOf (the table of the
// record's kind) classes: read into their place, as readQuickReal leaves
// the real untouched when it refuses the text.
[[gnu::always_inline]] inline void noteNumber(const std::array<CodeHolds, kCodesClassed>& holdsOf, int code,
                                              std::string_view value, double& real, std::uint64_t& handle)
{
    const CodeHolds holds = unsigned(code) < unsigned(kCodesClassed) ? holdsOf[std::size_t(code)] : CodeHolds::Text;
    real = std::numeric_limits<double>::quiet_NaN();
    handle = Group::kNoHandle;
    if (holds == CodeHolds::Real)
        readQuickReal(value, real);
    else if (holds == CodeHolds::Handle && !tryHandle(value, handle, kxdbHighestHandle + 1))
        handle = Group::kNoHandle;
}
// The modelled kinds, told without a branch: in a drawing of mixed kinds a
// branch on the kind's length or bytes is mispredicted at every record.
// Each lies at the place its first byte and length give in a table of
// sixteen, where one comparison of sixteen bytes tells whether a text is
// that kind.
struct KnownKind {
    std::array<char, 16> text{};
    std::size_t size = 0;
    RecordKind kind = RecordKind::Other;
};
constexpr std::size_t kindPlace(char first, std::size_t size)
{
    return (std::size_t(static_cast<unsigned char>(first)) * 7 + size) % 16;
}
constexpr std::array<std::pair<std::string_view, RecordKind>, 7> kModelledKinds = {{
    {"LINE", RecordKind::Line},
    {"ARC", RecordKind::Arc},
    {"CIRCLE", RecordKind::Circle},
    {"LWPOLYLINE", RecordKind::LwPolyline},
    {"MLINE", RecordKind::Mline},
    {"DICTIONARY", RecordKind::Dictionary},
    {"MLINESTYLE", RecordKind::MlineStyle},
}};
// Every modelled kind has a place of its own.
static_assert([] {
    std::array<bool, 16> taken{};
    for (const auto& [name, kind] : kModelledKinds) {
        const std::size_t place = kindPlace(name.front(), name.size());
        if (taken[place])
            return false;
        taken[place] = true;
    }
    return true;
}());
constexpr std::array<KnownKind, 16> kKnownKinds = [] {
    std::array<KnownKind, 16> known{};
    for (const auto& [name, kind] : kModelledKinds) {
        KnownKind& at = known[kindPlace(name.front(), name.size())];
        std::copy(name.begin(), name.end(), at.text.begin());
        at.size = name.size();
        at.kind = kind;
    }
    return known;
}();

// The kind of a text of up to kKindBytes bytes, of which text holds sixteen
// or more (those past size are not looked at).
RecordKind recordKindOf(const char* text, std::size_t size)
{
    const KnownKind& known = kKnownKinds[kindPlace(text[0], size)];
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
    const __m128i knownBytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(known.text.data()));
    const auto equal = std::uint64_t(unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, knownBytes))));
    // The bytes of the text, up to 32 of them.
    const std::uint64_t inText = (std::uint64_t(1) << size) - 1;
    const bool same = ((equal & inText) == inText) & (known.size == size);
    return RecordKind(std::uint8_t(known.kind) & -std::uint8_t(same));
}
}  // namespace

void Record::read(GroupReader& reader, const Group& head)
{
    const std::string_view kind = trimmed(head.value);
    setKind(kind, reader.readableAfter(kind));
    line_ = head.line;
    // The store's place and end in locals while the groups are read: the
    // members would be stored and loaded again around every call of the
    // reader. So are the numbers' place and end: each group's numbers are
    // read as it is kept, from the reader's buffer, where a second walk
    // over the kept groups cost more (decoding each group's code and
    // length again, and a branch on what it holds apart from the one that
    // reads it).
    std::size_t size = 0;
    char* at = groups_.data();
    char* storeEnd = at + groups_.size();
    if (numbers_.size() < kFirstGroups)
        numbers_.resize(kFirstGroups);
    GroupNumbers* number = numbers_.data();
    GroupNumbers* numbersEnd = number + numbers_.size();
    const auto& holdsOf = modelled_ ? kCodeHolds : kCodeHoldsUnmodelled;
    // Keeps a group and notes its numbers (those of the first kReadNumbers
    // groups, in room doubled as needed). A short group (readShortGroup), the
    // usual one, is copied with its code line, whose four bytes the code,
    // part and length then take, inline; any other by keepOther.
    const auto keep = [&](int code, std::string_view value, const char* readable, bool isShort)
                          __attribute__((always_inline)) {
        if (number == numbersEnd) [[unlikely]] {
            const std::size_t noted = std::size_t(number - numbers_.data());
            if (noted < kReadNumbers)
                numbers_.resize(std::min(2 * noted, kReadNumbers));
            number = numbers_.data() + noted;
            numbersEnd = numbers_.data() + numbers_.size();
        }
        if (number != numbersEnd) {
            noteNumber(holdsOf, code, value, number->real, number->handle);
            ++number;
        }
        if (!isShort || storeEnd - at < kShortGroupBytes) [[unlikely]] {
            at = keepOther(at, code, value, readable);
            storeEnd = groups_.data() + groups_.size();
            return;
        }
        static_assert(std::endian::native == std::endian::little);
        const char* const from = value.data() - 4;
        const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
        const __m128i second = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + 16));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(at), first);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(at + 16), second);
        // The code's two bytes, part 0 and the length's one byte.
        const std::uint32_t head = std::uint32_t(std::uint16_t(code)) | std::uint32_t(value.size()) << 24;
        std::memcpy(at, &head, sizeof head);
        at += sizeof head + value.size();
    };
    Group g;
    try {
        // The usual groups in one loop, any other one by one; the group of
        // code 0 that ends them is left to the reader's next() as pushed
        // back (readPlain reads a usual one so).
        while (!reader.readPlain(keep, size) && reader.next(g)) {
            if (g.code == 0) {
                reader.pushBack(g);
                break;
            }
            keep(g.code, g.value, g.value.data() + g.value.size(), false);
            ++size;
        }
    } catch (...) {
        size_ = size;
        used_ = std::size_t(at - groups_.data());
        numbered_ = std::size_t(number - numbers_.data());
        throw;
    }
    size_ = size;
    used_ = std::size_t(at - groups_.data());
    numbered_ = std::size_t(number - numbers_.data());
}

char* Record::keepOther(char* at, int code, std::string_view value, const char* readable)
{
    // Room for the code, the part, the value's length (five bytes hold any
    // value's) and the value, or kCopiedAtOnce bytes when more (copyValue).
    // The store only grows, doubling, so that a record of the usual size
    // needs no allocation.
    const std::size_t length = value.size();
    const std::size_t used = std::size_t(at - groups_.data());
    if (const std::size_t most = used + 8 + std::max(length, kCopiedAtOnce); most > groups_.size())
        groups_.resize(std::max(2 * groups_.size(), most));
    auto* to = reinterpret_cast<unsigned char*>(groups_.data() + used);
    to[0] = static_cast<unsigned char>(std::uint16_t(code) & 0xFF);
    to[1] = static_cast<unsigned char>(std::uint16_t(code) >> 8);
    to[2] = 0;
    to += 3;
    std::size_t rest = length;
    for (; rest >= 0x80; rest >>= 7)
        *to++ = static_cast<unsigned char>((rest & 0x7F) | 0x80);
    *to++ = static_cast<unsigned char>(rest);
    copyValue(to, value, readable);
    return reinterpret_cast<char*>(to) + length;
}

void Record::assign(std::string_view kind, KxDbPackedGroupsView groups)
{
    setKind(kind, kind.data() + kind.size());
    line_ = 0;
    used_ = groups.bytes().size();
    groups_.assign(groups.bytes());
    size_ = 0;
    groups.forEach([&](std::int16_t, std::uint8_t, std::string_view) { ++size_; });
    noteNumbers();
}

void Record::noteNumbers()
{
    numbered_ = std::min(size_, kReadNumbers);
    if (numbers_.size() < numbered_)
        numbers_.resize(std::max(numbered_, kFirstGroups));
    // Reals are read in records of modelled kinds only: the others are
    // kept as text.
    const std::array<CodeHolds, kCodesClassed>& holdsOf = modelled_ ? kCodeHolds : kCodeHoldsUnmodelled;
    GroupNumbers* numbers = numbers_.data();
    GroupNumbers* const end = numbers + numbered_;
    packedGroups().forEach([&](std::int16_t code, std::uint8_t, std::string_view value) {
        if (numbers == end)
            return false;
        GroupNumbers& read = *numbers++;
        noteNumber(holdsOf, code, value, read.real, read.handle);
        return true;
    });
}

void Record::setKind(std::string_view kind, const char* readable)
{
    kindSize_ = kind.size();
    if (kind.size() > kKindBytes) {
        longKind_.assign(kind);
        kindCode_ = RecordKind::Other;
    } else {
        copyValue(reinterpret_cast<unsigned char*>(kindBytes_.data()), kind, readable);
        kindCode_ = recordKindOf(kindBytes_.data(), kind.size());
    }
    modelled_ = kindCode_ != RecordKind::Other;
}

}  // namespace kaldo::dxf
