#include "kaldo/dxf/GroupReader.h"

#include "kaldo/dxf/DxfError.h"
#include "kaldo/dxf/QuickReal.h"
#include "kaldo/dxf/RecordWriting.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cerrno>
#include <cstring>
#include <limits>

#include <sys/stat.h>

namespace kaldo::dxf {

namespace {
constexpr std::size_t kBlockSize = 1 << 20;
}  // namespace

GroupReader::GroupReader(std::FILE* file)
    : file_(file), buffer_(kBlockSize + kMaxLineLength),
      codec_(std::make_unique<TextCodec>("", kDefaultCodePage))
{
    begin_ = end_ = buffer_.data();
    readable_ = buffer_.data() + buffer_.size();
    if (struct stat info {}; ::fstat(fileno(file), &info) == 0)
        fileSize_ = std::uint64_t(info.st_size);
}

GroupReader::GroupReader(std::string_view text)
    : memory_(text), begin_(text.data()), end_(text.data() + text.size()), readable_(end_), eof_(true),
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
    bytesRead_ += got;
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

}  // namespace

GroupReader::PlainGroup GroupReader::plainGroupAt(const char* p, const char* end)
{
    PlainGroup group;
    if (readPlainGroup(p, end, group.code, group.value))
        group.next = p;
    return group;
}

bool GroupReader::nextPlain(Group& group)
{
    const char* p = begin_;
    int code = 0;
    std::string_view value;
    const bool isShort = end_ - p >= kShortGroupBytes && readShortGroup(p, code, value);
    if (!isShort && !readPlainGroup(p, end_, code, value))
        return false;
    group = Group{code, value, lineNumber_ + 1};
    begin_ = p;
    lineNumber_ += 2;
    return true;
}

bool GroupReader::nextGeneral(Group& group)
{
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
    group = Group{code, decoded(valueLine), codeLineNumber};
    return true;
}

namespace {

[[noreturn]] void notANumber(const Group& group, const char* kind)
{
    throw DxfError(group.line + 1, std::string("group ") + std::to_string(group.code) + " needs " + kind + ", not \""
                                       + std::string(group.value.substr(0, 40)) + "\".");
}

}  // namespace

double toRealText(const Group& group)
{
    double value = 0;
    if (readQuickReal(group.value, value))
        return value;
    std::string_view text = trimmed(group.value);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
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

bool tryAnyHandle(std::string_view text, std::uint64_t& handle, std::uint64_t highest)
{
    if (hasBlankEnd(text))
        text = trimmed(text);
    std::uint64_t value = 0;
    for (const char c : text) {
        const unsigned digit = kHexDigitValues[static_cast<unsigned char>(c)];
        // A digit more would carry out of 64 bits.
        if (digit == 16 || value >> 60 != 0)
            return false;
        value = value << 4 | digit;
    }
    handle = value;
    return !text.empty() && value <= highest;
}

std::uint64_t toHandleText(const Group& group, std::uint64_t highest)
{
    std::uint64_t value = 0;
    if (!tryHandle(group.value, value, highest))
        notANumber(group, ("a handle up to " + handleText(highest)).c_str());
    return value;
}

}  // namespace kaldo::dxf
