// Writes groups of an ASCII drawing file into a buffer that goes to the
// file descriptor in large blocks. Numbers are written in their shortest
// form that reads back to the same value; texts, UTF-8 in memory, in the
// file's encoding (TextCodec.h), ANSI_1252 until encodeAs says otherwise.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kaldo/dxf/TextCodec.h"
#include "kxtypes.h"

namespace kaldo::dxf {

class GroupWriter {
public:
    // Writes to fd (not owned), a file written from its start to its end
    // and synced once whole (kaldo::writeAllStreamed); flush() or the
    // destructor's caller must flush. Errors are thrown as DxfError with
    // the system's reason.
    explicit GroupWriter(int fd);
    // Writes into memory only, for a part of a file made apart: the text
    // is held until writeTo().
    GroupWriter();
    GroupWriter(const GroupWriter&) = delete;
    GroupWriter& operator=(const GroupWriter&) = delete;

    // Texts written from now on are encoded for a file of this version
    // and code page (the code page kept for $DWGCODEPAGE even where the
    // version holds UTF-8).
    void encodeAs(std::string_view version, std::string_view codePage);
    // The code page's name for $DWGCODEPAGE ("ANSI_1252").
    const std::string& codePage() const { return codec_->codePage(); }

    void text(int code, std::string_view value);
    // A text that needs no encoding (the writer's own ASCII texts, a
    // record's kind or a class name, or texts found so at once by
    // needsEncoding): written as it stands.
    void plain(int code, std::string_view value) { line(code, value); }
    // Whether some of the bytes, texts to be written, need encoding; when
    // they need none, none of those texts does.
    bool needsEncoding(std::string_view bytes) const { return codec_->needsEncoding(bytes); }
    void wide(int code, const std::wstring& value);
    void real(int code, double value);
    void integer(int code, std::int64_t value);
    void handle(int code, std::uint64_t value);
    // An angle given in radians, written in degrees to 15 significant
    // digits, so that whole degrees read back whole.
    void degrees(int code, double radians);
    // A point or vector as three groups: code, code + 10, code + 20.
    void point(int code, double x, double y, double z);
    void point(int code, const KxGePoint3d& p) { point(code, p.x, p.y, p.z); }
    void vector(int code, const KxGeVector3d& v) { point(code, v.x, v.y, v.z); }

    // For a caller that writes many lines at once (GroupLineText.h): the
    // place where room for bytes more begins, written text being kept only
    // once wrote() gives its end.
    char* room(std::size_t bytes)
    {
        ensure(bytes);
        return buffer_.data() + used_;
    }
    void wrote(const char* end) { used_ = std::size_t(end - buffer_.data()); }

    void flush();
    // Writes the text held to fd (a writer of memory only, whose text goes
    // to a file in its turn) and drops it. Errors as flush().
    void writeTo(int fd);

private:
    std::string_view written() const { return std::string_view(buffer_.data(), used_); }
    void code(int code);
    // The place after the code's line, written from the table, for a code
    // from 0 to 999 when the buffer has room for bytes more (the code's
    // line and its value); nullptr, with nothing written, otherwise.
    char* quickCode(int code, std::size_t bytes);
    // Ends the line of a value written up to end.
    void endLine(char* end);
    // The code and the value as they stand.
    void line(int code, std::string_view value);
    // line() for a value of more than 16 bytes, a code not below 1000 or
    // below 0, or a buffer without room for them.
    [[gnu::noinline]] void lineOtherwise(int code, std::string_view value);
    // Room for bytes more in the buffer, flushing it when full.
    void ensure(std::size_t bytes)
    {
        if (used_ + bytes > buffer_.size())
            makeRoom(bytes);
    }
    void makeRoom(std::size_t bytes);
    // real() for a code not below 1000 or below 0, or a buffer without
    // room for them.
    [[gnu::noinline]] void realOtherwise(int code, double value);
    // The rest of real()'s line for a value that is no whole number of
    // thousandths below 10^5, at out, in room the buffer has.
    [[gnu::noinline]] void otherRealLine(int code, double value, char* out);
    // handle() for a code not below 1000 or below 0, or a buffer without
    // room for them.
    [[gnu::noinline]] void handleOtherwise(int code, std::uint64_t value);
    // The text of a finite real that is no whole number of thousandths
    // below 10^5, written at out; returns its end.
    char* writeOtherReal(double value, char* out);

    int fd_;  // -1 for memory only
    std::string buffer_;
    std::size_t used_ = 0;
    // Reals written in their shortest form, by their bits, and their text:
    // offsets, miters and directions repeat from vertex to vertex and from
    // entity to entity, and copying their text is far quicker than making
    // it again. A slot holds the last real whose bits fall on it; bits 0
    // (the real 0, written as a whole number) mark an empty slot.
    struct RealText {
        std::uint64_t bits = 0;
        std::uint8_t length = 0;
        std::array<char, 27> text{};
    };
    static constexpr std::size_t kRealSlots = 4096;
    std::vector<RealText> realTexts_;
    std::unique_ptr<TextCodec> codec_;
};

}  // namespace kaldo::dxf
