// Reads the groups of an ASCII drawing file one by one: a line with the
// group code, a line with the value. The file is read in blocks, never
// whole; a line longer than kMaxLineLength stops reading with a message,
// so that a huge line is never held in memory. Values are given as UTF-8:
// until decodeAs says otherwise, the file is taken to be in ANSI_1252.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kaldo/dxf/GroupLines.h"
#include "kaldo/dxf/TextCodec.h"
#include "kxdbdatabase.h"

namespace kaldo::dxf {

struct Group {
    int code = 0;
    std::string_view value;
    long line = 0;  // the line of the code
    // The value as a real, when it was read as one beforehand (readQuickReal);
    // not a number otherwise.
    double real = std::numeric_limits<double>::quiet_NaN();
    // The value as a handle, when it was read as one beforehand (tryHandle,
    // up to a handle seed's limit); kNoHandle otherwise.
    static constexpr std::uint64_t kNoHandle = ~std::uint64_t(0);
    std::uint64_t handle = kNoHandle;
};

class GroupReader {
public:
    static constexpr std::size_t kMaxLineLength = kLongestLine;
    // Sections of records are read ahead on a second thread only with this
    // much of the input left (SectionRecords.h): below, starting a thread
    // costs more than it saves.
    static constexpr std::uint64_t kReadAheadFrom = 4 << 20;

    // Reads from an open file (not owned).
    explicit GroupReader(std::FILE* file);
    // Reads from text in memory (kept by the caller while reading).
    explicit GroupReader(std::string_view text);

    // The next group; false at a clean end of the input. Throws DxfError
    // for a code line that is not a number, a value line that is missing,
    // or a line that is too long. The value points into the reader's buffer
    // and stays valid until the next call.
    bool next(Group& group)
    {
        if (pushedBack_) {
            // Field by field, as they were stored (readPlain pushes back the
            // record's next head just before): a copy of wider words would
            // wait for those stores to reach the cache.
            pushedBack_ = false;
            group.code = current_.code;
            group.value = current_.value;
            group.line = current_.line;
            group.real = current_.real;
            group.handle = current_.handle;
            return true;
        }
        if (lineNumber_ > 0 && nextPlain(group))
            return true;
        return nextGeneral(group);
    }
    // Reads the usual groups that follow (as next() reads them straight
    // from the buffer), calling take(code, value, readable, short) for
    // each, up to a group of code 0 or any other: that group is what next()
    // gives next (a usual group of code 0 read once here, as if pushed
    // back). Adds the groups given to count. True when it stopped at a
    // usual group of code 0. The values stay valid until the next call;
    // the bytes from a value's start up to readable may be read (they lie
    // in the reader's buffer), so that a value can be copied by words of a
    // fixed size; for a short group (readShortGroup), so may the
    // kShortGroupBytes from its code line's. One loop, keeping the reader's
    // place in locals: most groups of a file are read here. Its usual way,
    // short groups, calls nothing, so that its few locals stay in
    // registers.
    template <class Take>
    bool readPlain(Take&& take, std::size_t& count)
    {
        if (pushedBack_ || lineNumber_ == 0)
            return false;
        const char* p = begin_;
        const char* const end = end_;
        const char* const readable = readable_;
        std::size_t groups = 0;
        // The place is kept however the loop ends, take throwing too.
        struct Kept {
            GroupReader& reader;
            const char*& p;
            std::size_t& groups;
            std::size_t& count;
            ~Kept()
            {
                reader.begin_ = p;
                reader.lineNumber_ += 2 * long(groups);
                count += groups;
            }
        } kept{*this, p, groups, count};
        for (;;) {
            const char* at = p;
            int code = 0;
            std::string_view value;
            const bool isShort = end - p >= kShortGroupBytes && readShortGroup(at, code, value);
            if (!isShort) {
                const PlainGroup other = plainGroupAt(p, end);
                if (!other.next)
                    return false;
                at = other.next;
                code = other.code;
                value = other.value;
            }
            p = at;
            if (code == 0) {
                // The record's next head, which next() gives as read.
                current_ = Group{0, value, lineNumber_ + 2 * long(groups) + 1};
                pushedBack_ = true;
                lineNumber_ += 2;
                return true;
            }
            ++groups;
            take(code, value, readable, isShort);
        }
    }
    // Where the memory that a value given lies in ends, so that the value
    // can be copied by words of a fixed size: the reader's buffer or text,
    // or for a value that lies elsewhere (decoded), its own end.
    const char* readableAfter(std::string_view value) const
    {
        const auto at = reinterpret_cast<std::uintptr_t>(value.data());
        const auto start = reinterpret_cast<std::uintptr_t>(file_ ? buffer_.data() : memory_.data());
        const auto readable = reinterpret_cast<std::uintptr_t>(readable_);
        return at >= start && at + value.size() <= readable ? readable_ : value.data() + value.size();
    }
    // Makes the next call give group, the one just read, again.
    void pushBack(const Group& group)
    {
        current_ = group;
        pushedBack_ = true;
    }
    // The file's version and code page, as its header gives them: values
    // read from now on are decoded accordingly (TextCodec.h).
    void decodeAs(std::string_view version, std::string_view codePage);
    // The bytes of the file read so far.
    std::uint64_t bytesRead() const { return bytesRead_; }
    // The same as progress to show: while a section is read ahead on
    // another thread (SectionRecords.h), the bytes read when the record in
    // use was read, as shown points to.
    std::uint64_t position() const { return shownPosition_ ? *shownPosition_ : bytesRead_; }
    void showPosition(const std::uint64_t* shown) { shownPosition_ = shown; }
    std::uint64_t readAheadFrom() const { return readAheadFrom_; }
    void setReadAheadFrom(std::uint64_t bytes) { readAheadFrom_ = bytes; }
    // When the reading thread also does some of the caller's work (packs
    // records, takes entities apart): while the caller has records waiting,
    // so that the two threads balance, or always (the outcome is the same;
    // tests take that path on purpose).
    enum class WorkAhead { WhileCallerBehind, Always };
    WorkAhead workAhead() const { return workAhead_; }
    void setWorkAhead(WorkAhead when) { workAhead_ = when; }
    // The bytes of the input not yet given as groups, about.
    std::uint64_t bytesLeft() const
    {
        return std::uint64_t(end_ - begin_) + (file_ ? fileSize_ - std::min(fileSize_, bytesRead_) : 0);
    }

private:
    // A group readPlainGroup reads from p, and the place after it; no
    // place for any other group. Out of line, as readPlain's other way.
    struct PlainGroup {
        const char* next = nullptr;
        int code = 0;
        std::string_view value;
    };
    static PlainGroup plainGroupAt(const char* p, const char* end);
    // The usual group, read straight from the buffer (readPlainGroup).
    // False, with nothing consumed, for anything else.
    bool nextPlain(Group& group);
    // Every other case but a group pushed back: the first line, other lines.
    bool nextGeneral(Group& group);
    bool readLine(std::string_view& line);
    bool refill();
    // The value as UTF-8, kept in decoded_ when it had to change.
    std::string_view decoded(std::string_view value)
    {
        if (!codec_->needsDecoding(value))
            return value;
        decoded_ = codec_->decode(value);
        return decoded_;
    }

    std::FILE* file_ = nullptr;
    std::vector<char> buffer_;
    std::string_view memory_;
    const char* begin_ = nullptr;
    const char* end_ = nullptr;
    // The end of the memory that holds the input read: the buffer's, or
    // the text's.
    const char* readable_ = nullptr;
    bool eof_ = false;
    long lineNumber_ = 0;
    Group current_;
    bool pushedBack_ = false;
    std::unique_ptr<TextCodec> codec_;
    std::string decoded_;
    std::uint64_t fileSize_ = 0;
    std::uint64_t bytesRead_ = 0;
    const std::uint64_t* shownPosition_ = nullptr;
    std::uint64_t readAheadFrom_ = kReadAheadFrom;
    WorkAhead workAhead_ = WorkAhead::WhileCallerBehind;
};

// Value conversions that name the group's line when the text is no number.
// toRealText reads the text even when the group comes with its real read
// beforehand.
double toRealText(const Group& group);
inline double toReal(const Group& group)
{
    if (!std::isnan(group.real))
        return group.real;
    return toRealText(group);
}
// Whether the group code is one of reals (coordinates, distances, angles).
constexpr bool isRealCode(int code)
{
    return (code >= 10 && code <= 59) || (code >= 110 && code <= 149) || (code >= 210 && code <= 239)
           || (code >= 460 && code <= 469) || (code >= 1010 && code <= 1059);
}
// Whether the group code is one of handles (the record's own, owners,
// references).
constexpr bool isHandleCode(int code)
{
    return code == 5 || code == 105 || (code >= 320 && code <= 369) || (code >= 390 && code <= 399)
           || code == 480 || code == 481 || code == 1005;
}
std::int64_t toInteger(const Group& group);
// A handle: hexadecimal digits, at most kxdbHighestHandle (a handle seed
// may be one above); toHandleText reads the text even when the group comes
// with its handle read beforehand.
std::uint64_t toHandleText(const Group& group, std::uint64_t highest);
inline std::uint64_t toHandle(const Group& group, std::uint64_t highest = kxdbHighestHandle)
{
    if (group.handle <= highest)
        return group.handle;
    return toHandleText(group, highest);
}
// The value of each byte as a hexadecimal digit of either case, 16 for a
// byte that is none.
inline constexpr std::array<std::uint8_t, 256> kHexDigitValues = [] {
    std::array<std::uint8_t, 256> digits{};
    digits.fill(16);
    for (int i = 0; i < 10; ++i)
        digits['0' + i] = std::uint8_t(i);
    for (int i = 0; i < 6; ++i)
        digits['a' + i] = digits['A' + i] = std::uint8_t(10 + i);
    return digits;
}();
// tryHandle for any text: blanks around the digits, more digits than 64
// bits hold when the first are zeros.
bool tryAnyHandle(std::string_view text, std::uint64_t& handle, std::uint64_t highest);
// The same as toHandle without complaint: false for text that is no such
// handle. Hexadecimal digits as from_chars reads them; the usual handle,
// up to fifteen digits and nothing else, is read inline, a step a digit
// (every record has a handle or two), any other text by tryAnyHandle.
inline bool tryHandle(std::string_view text, std::uint64_t& handle, std::uint64_t highest = kxdbHighestHandle)
{
    // Fifteen digits cannot carry out of 64 bits.
    if (text.empty() || text.size() > 15)
        return tryAnyHandle(text, handle, highest);
    std::uint64_t value = 0;
    for (const char c : text) {
        const unsigned digit = kHexDigitValues[static_cast<unsigned char>(c)];
        if (digit == 16)
            return tryAnyHandle(text, handle, highest);
        value = value << 4 | digit;
    }
    handle = value;
    return value <= highest;
}
inline std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
        text.remove_suffix(1);
    return text;
}

}  // namespace kaldo::dxf
