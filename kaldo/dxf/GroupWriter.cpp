#include "kaldo/dxf/GroupWriter.h"

#include "kaldo/dxf/DecimalText.h"
#include "kaldo/dxf/DxfError.h"
#include "kaldo/dxf/GroupLineText.h"
#include "kaldo/util/FileAccess.h"
#include "kaldo/util/Utf8.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <string>
#include <numbers>

namespace kaldo::dxf {

namespace {
constexpr std::size_t kBufferSize = 1 << 20;
constexpr std::size_t kNumberRoom = 64;

[[noreturn, gnu::cold]] void refuseNotFinite(int groupCode)
{
    throw DxfError(0, "the drawing holds a number that is not finite (group " + std::to_string(groupCode) + ").");
}

// No reader takes "inf" or "nan": a drawing holding such a number is not saved.
inline void requireFinite(int groupCode, double value)
{
    if (!std::isfinite(value)) [[unlikely]]
        refuseNotFinite(groupCode);
}
}  // namespace

GroupWriter::GroupWriter(int fd)
    : fd_(fd), buffer_(kBufferSize, '\0'), realTexts_(kRealSlots),
      codec_(std::make_unique<TextCodec>("", kDefaultCodePage))
{
}

GroupWriter::GroupWriter() : GroupWriter(-1) {}

void GroupWriter::encodeAs(std::string_view version, std::string_view codePage)
{
    codec_ = std::make_unique<TextCodec>(version, codePage);
}

void GroupWriter::makeRoom(std::size_t bytes)
{
    if (fd_ < 0) {
        buffer_.resize(std::max(2 * buffer_.size(), used_ + bytes));
        return;
    }
    flush();
    if (bytes > buffer_.size())
        buffer_.resize(bytes);
}

// Writes the code's line in room of kNumberRoom bytes or more, which each
// caller ensures at once for the code and its value.
inline void GroupWriter::code(int code)
{
    wrote(writeCodeLine(code, buffer_.data() + used_));
}

inline char* GroupWriter::quickCode(int groupCode, std::size_t bytes)
{
    if (groupCode < 0 || groupCode >= kShortCodes || used_ + bytes > buffer_.size())
        return nullptr;
    char* const out = buffer_.data() + used_;
    std::memcpy(out, kCodeLines.lines[groupCode].data(), 4);
    return out + 4;
}

inline void GroupWriter::endLine(char* end)
{
    *end = '\n';
    used_ = std::size_t(end + 1 - buffer_.data());
}

void GroupWriter::text(int groupCode, std::string_view value)
{
    if (codec_->needsEncoding(value))
        line(groupCode, codec_->encode(value));
    else
        line(groupCode, value);
}

void GroupWriter::line(int groupCode, std::string_view value)
{
    const std::size_t size = value.size();
    const char* const in = value.data();
    // Most groups have a code below 1000 and a value of up to 16 bytes,
    // and the buffer room for them: written without a call, the value
    // copied as two words, or three bytes, that may overlap. Other groups
    // are written by a call, so that these need no registers saved.
    if (size > 16 || groupCode < 0 || groupCode >= kShortCodes || used_ + kNumberRoom + size + 1 > buffer_.size())
        return lineOtherwise(groupCode, value);
    char* const out = buffer_.data() + used_;
    std::memcpy(out, kCodeLines.lines[groupCode].data(), 4);
    if (size >= 8) {
        std::memcpy(out + 4, in, 8);
        std::memcpy(out + 4 + size - 8, in + size - 8, 8);
    } else if (size >= 4) {
        std::memcpy(out + 4, in, 4);
        std::memcpy(out + 4 + size - 4, in + size - 4, 4);
    } else if (size > 0) {
        out[4] = in[0];
        out[4 + size / 2] = in[size / 2];
        out[3 + size] = in[size - 1];
    }
    out[4 + size] = '\n';
    used_ += 4 + size + 1;
}

void GroupWriter::lineOtherwise(int groupCode, std::string_view value)
{
    ensure(kNumberRoom + value.size() + 1);
    code(groupCode);
    std::memcpy(buffer_.data() + used_, value.data(), value.size());
    used_ += value.size();
    buffer_[used_++] = '\n';
}

void GroupWriter::wide(int groupCode, const std::wstring& value)
{
    // A value is one line of the file: a line end within a text of the
    // drawing (a style file may hold a lone carriage return) is written as
    // a blank, so that the file reads back in step.
    std::string line = utf8FromWide(value);
    std::replace_if(line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
    text(groupCode, line);
}

void GroupWriter::real(int groupCode, double value)
{
    // Most reals have a code below 1000, the buffer room for them, and few
    // decimals: written without a call, so that no registers are saved.
    // Others are written by a call that ends the line too.
    char* const out = quickCode(groupCode, 2 * kNumberRoom);
    if (!out)
        return realOtherwise(groupCode, value);
    char* const end = writeFewDecimals(value, out);
    if (!end)
        return otherRealLine(groupCode, value, out);
    endLine(end);
}

void GroupWriter::realOtherwise(int groupCode, double value)
{
    requireFinite(groupCode, value);
    ensure(2 * kNumberRoom);
    code(groupCode);
    char* const start = buffer_.data() + used_;
    char* const end = writeFewDecimals(value, start);
    endLine(end ? end : writeOtherReal(value, start));
}

void GroupWriter::otherRealLine(int groupCode, double value, char* out)
{
    requireFinite(groupCode, value);
    endLine(writeOtherReal(value, out));
}

char* GroupWriter::writeOtherReal(double value, char* out)
{
    if (char* const written = writeShortestDecimal(value, out))
        return written;
    const std::uint64_t bits = std::bit_cast<std::uint64_t>(value);
    // The high bits of a multiplicative hash: nearby values spread out.
    RealText& slot = realTexts_[(bits * 0x9E3779B97F4A7C15u) >> (64 - std::countr_zero(kRealSlots))];
    if (slot.bits != bits) {
        const char* const end = std::to_chars(slot.text.data(), slot.text.data() + slot.text.size(), value).ptr;
        slot.bits = bits;
        slot.length = std::uint8_t(end - slot.text.data());
    }
    std::memcpy(out, slot.text.data(), slot.length);
    return out + slot.length;
}

void GroupWriter::integer(int groupCode, std::int64_t value)
{
    ensure(2 * kNumberRoom);
    code(groupCode);
    char* const start = buffer_.data() + used_;
    char* out = std::to_chars(start, start + kNumberRoom, value).ptr;
    *out++ = '\n';
    used_ += std::size_t(out - start);
}

void GroupWriter::handle(int groupCode, std::uint64_t value)
{
    // As reals: without a call for a code below 1000 in room the buffer has.
    char* const out = quickCode(groupCode, 2 * kNumberRoom);
    if (!out)
        return handleOtherwise(groupCode, value);
    endLine(writeHandleDigits(value, out));
}

void GroupWriter::handleOtherwise(int groupCode, std::uint64_t value)
{
    ensure(2 * kNumberRoom);
    code(groupCode);
    endLine(writeHandleDigits(value, buffer_.data() + used_));
}

void GroupWriter::degrees(int groupCode, double radians)
{
    const double degrees = radians * (180.0 / std::numbers::pi);
    requireFinite(groupCode, degrees);
    ensure(2 * kNumberRoom);
    code(groupCode);
    char* const start = buffer_.data() + used_;
    char* out = writeFifteenDigits(degrees, start);
    if (!out)
        out = std::to_chars(start, start + kNumberRoom, degrees, std::chars_format::general, 15).ptr;
    *out++ = '\n';
    used_ += std::size_t(out - start);
}

void GroupWriter::point(int groupCode, double x, double y, double z)
{
    real(groupCode, x);
    real(groupCode + 10, y);
    real(groupCode + 20, z);
}

void GroupWriter::flush()
{
    if (fd_ >= 0)
        writeTo(fd_);
}

void GroupWriter::writeTo(int fd)
{
    try {
        writeAllStreamed(fd, written());
    } catch (const FileError& e) {
        throw DxfError(0, e.what());
    }
    used_ = 0;
}

}  // namespace kaldo::dxf
