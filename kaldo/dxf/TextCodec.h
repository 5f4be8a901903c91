// The encoding of a drawing file's texts. Files of AC1021 and later hold
// UTF-8; older ones the code page their $DWGCODEPAGE names (ANSI_1252
// when it is missing or unknown here), with every character outside it
// written "\U+XXXX" (UTF-16 units in hexadecimal). Such escapes are read
// in files of every version, as other readers do. In memory, texts are
// UTF-8 (kaldo/util/Utf8.h): the reader decodes each value as it reads
// it, the writer encodes each one as it writes it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace kaldo::dxf {

inline constexpr std::string_view kUtf8Version = "AC1021";
inline constexpr std::string_view kDefaultCodePage = "ANSI_1252";

// Whether files of this version ($ACADVER) hold UTF-8.
bool holdsUtf8(std::string_view version);

class TextCodec {
public:
    // The encoding of files of this version: UTF-8, or the code page
    // codePage names (ANSI_1252 when it names none known here).
    TextCodec(std::string_view version, std::string_view codePage);
    ~TextCodec();
    TextCodec(const TextCodec&) = delete;
    TextCodec& operator=(const TextCodec&) = delete;

    // The code page's name as $DWGCODEPAGE gives it ("ANSI_1252"), also
    // for files that hold UTF-8.
    const std::string& codePage() const { return name_; }
    bool isUtf8() const { return !toUtf8_; }

    // Whether a value of the file may need decoding (a backslash, or in a
    // code page a byte above 127), and whether one in memory needs
    // encoding (in a code page, a byte above 127).
    bool needsDecoding(std::string_view text) const;
    bool needsEncoding(std::string_view utf8) const;

    // The file's text as UTF-8; a byte that starts no character of the
    // code page reads as the character of the same number.
    std::string decode(std::string_view text);
    // UTF-8 as the file's text; a character the code page lacks is written
    // as its escape, a byte that starts no UTF-8 character as '?'.
    std::string encode(std::string_view utf8);

private:
    struct Converter;
    std::string name_;
    std::unique_ptr<Converter> toUtf8_;  // none for UTF-8 files
    std::unique_ptr<Converter> fromUtf8_;
    // The code page's bytes for each character met, empty when it has none.
    std::unordered_map<char32_t, std::string> encoded_;
};

}  // namespace kaldo::dxf
