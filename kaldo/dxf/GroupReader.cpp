#include "kaldo/dxf/GroupReader.h"

#include "kaldo/dxf/DxfError.h"
#include "kaldo/dxf/RecordWriting.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cerrno>
#include <cstring>
#include <limits>

namespace kaldo::dxf {

namespace {
constexpr std::size_t kBlockSize = 1 << 20;

// The first line feed or carriage return from p on, or end: eight bytes
// at a time, as most values are longer than a few characters. On the way,
// marked tells whether a byte before it has its high bit set or is a
// backslash: only a value with such a byte may need decoding.
const char* lineEnd(const char* p, const char* const end, bool& marked)
{
    constexpr std::uint64_t kOnes = 0x0101010101010101u;
    constexpr std::uint64_t kHighs = 0x8080808080808080u;
    // The high bit of each byte of word that is zero, and perhaps of bytes
    // after one that is: the lowest bit set is always exact.
    const auto zeroBytes = [](std::uint64_t word) { return (word - kOnes) & ~word & kHighs; };
    std::uint64_t marks = 0;
    while (end - p >= 8) {
        std::uint64_t word;
        std::memcpy(&word, p, 8);
        const std::uint64_t found = zeroBytes(word ^ (kOnes * '\n')) | zeroBytes(word ^ (kOnes * '\r'));
        const std::uint64_t wordMarks = (word & kHighs) | zeroBytes(word ^ (kOnes * '\\'));
        if (found) {
            // Bytes after the line's end do not count (little-endian: the
            // first byte is the lowest).
            static_assert(std::endian::native == std::endian::little);
            marks |= wordMarks & ((found & -found) - 1);
            marked = marks != 0;
            return p + std::countr_zero(found) / 8;
        }
        marks |= wordMarks;
        p += 8;
    }
    for (; p < end && *p != '\n' && *p != '\r'; ++p)
        marks |= (*p & 0x80) != 0 || *p == '\\';
    marked = marks != 0;
    return p;
}
}  // namespace

GroupReader::GroupReader(std::FILE* file)
    : file_(file), buffer_(kBlockSize + kMaxLineLength),
      codec_(std::make_unique<TextCodec>("", kDefaultCodePage))
{
    begin_ = end_ = buffer_.data();
}

GroupReader::GroupReader(std::string_view text)
    : memory_(text), begin_(text.data()), end_(text.data() + text.size()), eof_(true),
      codec_(std::make_unique<TextCodec>("", kDefaultCodePage))
{
}

void GroupReader::decodeAs(std::string_view version, std::string_view codePage)
{
    codec_ = std::make_unique<TextCodec>(version, codePage);
}

bool GroupReader::refill()
{
    if (eof_ || !file_)
        return false;
    const std::size_t kept = std::size_t(end_ - begin_);
    std::memmove(buffer_.data(), begin_, kept);
    begin_ = buffer_.data();
    end_ = begin_ + kept;
    const std::size_t room = buffer_.size() - kept;
    const std::size_t got = std::fread(buffer_.data() + kept, 1, room, file_);
    end_ += got;
    if (got == 0 && std::ferror(file_))
        throw DxfError(lineNumber_ + 1, std::string("the file cannot be read: ") + std::strerror(errno) + ".");
    if (got == 0)
        eof_ = true;
    return got > 0;
}

bool GroupReader::readLine(std::string_view& line)
{
    for (;;) {
        // One pass to the first line feed or carriage return: lines are short.
        bool marked = false;
        const char* const stop = lineEnd(begin_, end_, marked);
        const bool more = file_ && !eof_;
        // A carriage return ends a line, alone or with the line feed after
        // it; one at the end of what is read so far waits for the next byte.
        const bool ends = stop < end_ ? *stop == '\n' || stop + 1 < end_ || !more : !more && begin_ < end_;
        if (ends) {
            if (std::size_t(stop - begin_) > kMaxLineLength)
                throw DxfError(lineNumber_ + 1, "the line is longer than " + std::to_string(kMaxLineLength)
                                                    + " characters.");
            line = std::string_view(begin_, std::size_t(stop - begin_));
            if (stop == end_)
                begin_ = end_;
            else if (*stop == '\r' && stop + 1 < end_ && stop[1] == '\n')
                begin_ = stop + 2;
            else
                begin_ = stop + 1;
            // A UTF-8 byte order mark before the first line is no text.
            if (lineNumber_ == 0 && line.starts_with("\xEF\xBB\xBF"))
                line.remove_prefix(3);
            ++lineNumber_;
            return true;
        }
        if (std::size_t(end_ - begin_) > kMaxLineLength)
            throw DxfError(lineNumber_ + 1, "the line is longer than " + std::to_string(kMaxLineLength)
                                                + " characters.");
        if (!refill() && begin_ == end_)
            return false;
    }
}

namespace {

// The group code of a line: digits with blanks around and an optional sign.
bool parseCode(std::string_view text, int& code)
{
    text = trimmed(text);
    bool negative = false;
    if (!text.empty() && text.front() == '-') {
        negative = true;
        text.remove_prefix(1);
    }
    if (text.empty() || text.size() > 5)
        return false;
    int value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9')
            return false;
        value = value * 10 + (c - '0');
    }
    code = negative ? -value : value;
    // Group codes are 16-bit numbers.
    return code >= -32768 && code <= 32767;
}

// The code line as this and most writers write it: three places, right-
// aligned with blanks ("  5", " 40", "105"), and its line feed. p is left
// on the line feed. False, with nothing changed, for any other line.
bool readAlignedCode(const char*& p, const char* const end, int& code)
{
    if (end - p < 4 || p[3] != '\n')
        return false;
    const auto digit = [](char c) { return c >= '0' && c <= '9'; };
    const char a = p[0], b = p[1], c = p[2];
    if (!digit(c))
        return false;
    if (a == ' ' && b == ' ')
        code = c - '0';
    else if (a == ' ' && digit(b))
        code = (b - '0') * 10 + (c - '0');
    else if (digit(a) && digit(b))
        code = (a - '0') * 100 + (b - '0') * 10 + (c - '0');
    else
        return false;
    p += 3;
    return true;
}

}  // namespace

bool GroupReader::nextPlain(Group& group)
{
    const char* p = begin_;
    int code = 0;
    if (!readAlignedCode(p, end_, code)) {
        while (p < end_ && *p == ' ')
            ++p;
        const char* const digits = p;
        while (p < end_ && p - digits < 5 && *p >= '0' && *p <= '9')
            code = code * 10 + (*p++ - '0');
        if (p == digits || p == end_ || *p != '\n' || code > 32767 || std::size_t(p - begin_) > kMaxLineLength)
            return false;
    }
    const char* const value = p + 1;
    // Most values are one character ("0", "8"): no need to search for their end.
    bool marked = false;
    const char* stop = nullptr;
    if (end_ - value >= 2 && value[1] == '\n' && value[0] != '\n' && value[0] != '\r') {
        stop = value + 1;
        marked = (value[0] & 0x80) != 0 || value[0] == '\\';
    } else {
        stop = lineEnd(value, end_, marked);
    }
    if (stop == end_ || *stop != '\n' || std::size_t(stop - value) > kMaxLineLength)
        return false;
    const std::string_view text(value, std::size_t(stop - value));
    const Group read{code, marked ? decoded(text) : text, lineNumber_ + 1};
    begin_ = stop + 1;
    lineNumber_ += 2;
    current_ = read;
    group = read;
    return true;
}

bool GroupReader::nextGeneral(Group& group)
{
    if (pushedBack_) {
        pushedBack_ = false;
        group = current_;
        return true;
    }
    std::string_view codeLine;
    if (!readLine(codeLine))
        return false;
    const long codeLineNumber = lineNumber_;
    int code = 0;
    if (!parseCode(codeLine, code))
        throw DxfError(codeLineNumber, "a group code was expected, not \""
                                           + std::string(trimmed(codeLine).substr(0, 40)) + "\".");
    std::string_view valueLine;
    if (!readLine(valueLine))
        throw DxfError(codeLineNumber, "the file ends after group code " + std::to_string(code)
                                           + " without its value.");
    // Both copies are made from the values in hand: reading current_ back
    // right after storing it would stall on the fresh stores.
    const Group read{code, decoded(valueLine), codeLineNumber};
    current_ = read;
    group = read;
    return true;
}

namespace {

[[noreturn]] void notANumber(const Group& group, const char* kind)
{
    throw DxfError(group.line + 1, std::string("group ") + std::to_string(group.code) + " needs " + kind + ", not \""
                                       + std::string(group.value.substr(0, 40)) + "\".");
}

// The bytes from p on, at most eight and none from end on, the first the
// lowest (little-endian) and zeros above: two overlapping loads, or three
// single bytes, where fewer than eight are left.
std::uint64_t bytesAt(const char* p, const char* const end)
{
    static_assert(std::endian::native == std::endian::little);
    const std::size_t left = std::size_t(end - p);
    std::uint64_t word = 0;
    if (left >= 8) {
        std::memcpy(&word, p, 8);
    } else if (left >= 4) {
        std::uint32_t low, high;
        std::memcpy(&low, p, 4);
        std::memcpy(&high, end - 4, 4);
        word = low | std::uint64_t(high) << (8 * (left - 4));
    } else if (left > 0) {
        word = std::uint8_t(p[0]) | std::uint64_t(std::uint8_t(p[left / 2])) << (8 * (left / 2))
               | std::uint64_t(std::uint8_t(p[left - 1])) << (8 * (left - 1));
    }
    return word;
}

// The decimal digits that word's bytes start with (the first byte the
// lowest): how many (up to eight), and in value the number they spell,
// without a step per digit.
int readDigitRun(std::uint64_t word, std::uint64_t& value)
{
    constexpr std::uint64_t kHighHalves = 0xF0F0F0F0F0F0F0F0u;
    constexpr std::uint64_t kThrees = 0x3030303030303030u;
    constexpr std::uint64_t kLows = 0x7F7F7F7F7F7F7F7Fu;
    // A byte is a digit (0x30 to 0x39) when its high half is 3 and stays 3
    // when 6 is added; then its byte of other is zero. A carry out of a byte
    // that is no digit only changes bytes after it.
    const std::uint64_t other = ((word & kHighHalves) ^ kThrees)
                                | (((word + 0x0606060606060606u) & kHighHalves) ^ kThrees);
    const std::uint64_t others = (other | ((other & kLows) + kLows)) & ~kLows;
    const int count = others ? std::countr_zero(others) / 8 : 8;
    if (count == 0)
        return 0;
    // The digits' values moved up to the highest bytes: the zero bytes below
    // are leading zeros. A borrow out of a byte that is no digit only
    // changes bytes after it, which the shift drops.
    word = (word - kThrees) << (8 * (8 - count));
    // Three multiplications join them pairwise (1-2-4-8 digits).
    word = (word & 0x0F0F0F0F0F0F0F0Fu) * (10 * 256 + 1) >> 8;
    word = (word & 0x00FF00FF00FF00FFu) * (100 * 65536 + 1) >> 16;
    value = (word & 0x0000FFFF0000FFFFu) * (10000 * (std::uint64_t(1) << 32) + 1) >> 32;
    return count;
}

// Adds the digits from p on to digits, up to eight at a time; false when
// count would pass most. Moves p to where the digits end.
[[gnu::always_inline]] inline bool readDigits(const char*& p, const char* const end, std::uint64_t& digits, int& count,
                                              const int most)
{
    static constexpr std::uint64_t kScales[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};
    for (;;) {
        std::uint64_t run = 0;
        const int runLength = readDigitRun(bytesAt(p, end), run);
        if (count + runLength > most)
            return false;
        digits = digits * kScales[runLength] + run;
        count += runLength;
        p += runLength;
        if (runLength < 8)
            return true;
    }
}

// digits / 10^power rounded correctly to a double, for digits above 2^53
// ("-1.3333333333333335" has 17): both are exact in the 64-bit significand
// of long double, so the quotient is rounded once to 64 bits, then to 53.
// That second rounding differs from rounding once only when the first
// lands on the midpoint between two doubles: false then, for from_chars.
bool divideRounded(std::uint64_t digits, int power, double& value)
{
    static_assert(std::numeric_limits<long double>::digits == 64);
    static constexpr long double kPowersOfTen[] = {1e0L, 1e1L,  1e2L,  1e3L,  1e4L,  1e5L,  1e6L,  1e7L,  1e8L,
                                                   1e9L, 1e10L, 1e11L, 1e12L, 1e13L, 1e14L, 1e15L, 1e16L, 1e17L};
    const long double quotient = static_cast<long double>(digits) / kPowersOfTen[power];
    // The significand is the first eight bytes of an x87 long double; its
    // lowest 11 bits are those the second rounding drops.
    std::uint64_t significand;
    std::memcpy(&significand, &quotient, sizeof significand);
    if ((significand & 0x7FF) == 0x400)
        return false;
    value = static_cast<double>(quotient);
    return true;
}

// A plain decimal ("-12.375", "0.5999999999999998": no exponent) of at
// most 17 digits. When its digits, taken as a whole number, are at most
// 2^53, that number and the power of ten are exact, so one division gives
// the correctly rounded value, the same one from_chars gives, in a fraction
// of its time; above, divideRounded. False, with value untouched, for any
// other text.
bool readPlainDecimal(std::string_view text, double& value)
{
    static constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7, 1e8,
                                              1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17};
    constexpr int kMostDigits = 17;
    const char* p = text.data();
    const char* const end = p + text.size();
    const bool negative = p < end && *p == '-';
    if (negative)
        ++p;
    std::uint64_t digits = 0;
    int count = 0;
    if (!readDigits(p, end, digits, count, kMostDigits) || count == 0)
        return false;
    const int whole = count;
    if (p < end && *p == '.') {
        ++p;
        if (!readDigits(p, end, digits, count, kMostDigits) || count == whole)
            return false;
    }
    if (p != end)
        return false;
    double magnitude = 0;
    if (digits <= (std::uint64_t(1) << 53))
        magnitude = double(digits) / kPowersOfTen[count - whole];
    else if (!divideRounded(digits, count - whole, magnitude))
        return false;
    value = negative ? -magnitude : magnitude;
    return true;
}

}  // namespace

namespace {
// One digit, the most usual value of all ("0", "1", "8").
bool isOneDigit(std::string_view text)
{
    return text.size() == 1 && text[0] >= '0' && text[0] <= '9';
}
}  // namespace

double toReal(const Group& group)
{
    if (isOneDigit(group.value))
        return group.value[0] - '0';
    std::string_view text = trimmed(group.value);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    double value = 0;
    if (readPlainDecimal(text, value))
        return value;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || ec != std::errc() || end != text.data() + text.size() || !std::isfinite(value))
        notANumber(group, "a number");
    return value;
}

std::int64_t toInteger(const Group& group)
{
    if (isOneDigit(group.value))
        return group.value[0] - '0';
    std::string_view text = trimmed(group.value);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    std::int64_t value = 0;
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || ec != std::errc() || end != text.data() + text.size())
        notANumber(group, "a whole number");
    return value;
}

bool tryHandle(std::string_view text, std::uint64_t& handle, std::uint64_t highest)
{
    text = trimmed(text);
    const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), handle, 16);
    return !text.empty() && ec == std::errc() && end == text.data() + text.size() && handle <= highest;
}

std::uint64_t toHandle(const Group& group, std::uint64_t highest)
{
    std::uint64_t value = 0;
    if (!tryHandle(group.value, value, highest))
        notANumber(group, ("a handle up to " + handleText(highest)).c_str());
    return value;
}

}  // namespace kaldo::dxf
