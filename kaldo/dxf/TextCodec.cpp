#include "kaldo/dxf/TextCodec.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstring>

#include <iconv.h>

namespace kaldo::dxf {

namespace {

// The name the C library's converter knows a code page by, empty for
// names it is not given here.
std::string converterName(std::string_view name)
{
    std::string upper(name);
    std::transform(upper.begin(), upper.end(), upper.begin(), [](unsigned char c) { return char(std::toupper(c)); });
    const auto digitsAfter = [&](std::string_view prefix) {
        return upper.size() > prefix.size() && upper.starts_with(prefix) &&
               std::all_of(upper.begin() + std::ptrdiff_t(prefix.size()), upper.end(),
                           [](char c) { return c >= '0' && c <= '9'; });
    };
    if (digitsAfter("ANSI_"))
        return "CP" + upper.substr(5);
    if (digitsAfter("DOS"))
        return "CP" + upper.substr(3);
    if (digitsAfter("ISO8859-"))
        return "ISO-8859-" + upper.substr(8);
    if (upper == "MACINTOSH")
        return upper;
    return {};
}

void appendUtf8(std::string& out, char32_t c)
{
    if (c < 0x80) {
        out += char(c);
    } else if (c < 0x800) {
        out += char(0xC0 | (c >> 6));
        out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += char(0xE0 | (c >> 12));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    } else {
        out += char(0xF0 | (c >> 18));
        out += char(0x80 | ((c >> 12) & 0x3F));
        out += char(0x80 | ((c >> 6) & 0x3F));
        out += char(0x80 | (c & 0x3F));
    }
}

// The character UTF-8 text starts at at, and its length; a byte that
// starts none gives 0 and the length 1.
char32_t nextUtf8(std::string_view text, std::size_t at, std::size_t& length)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(at);
    length = 1;
    if (first < 0x80)
        return first;
    const std::size_t count = first >= 0xF0 && first < 0xF5 ? 4 : first >= 0xE0 ? 3 : first >= 0xC2 && first < 0xE0 ? 2 : 0;
    if (count == 0 || at + count > text.size())
        return 0;
    char32_t c = first & (0x7F >> count);
    for (std::size_t i = 1; i < count; ++i) {
        if ((byte(at + i) & 0xC0) != 0x80)
            return 0;
        c = (c << 6) | (byte(at + i) & 0x3F);
    }
    const char32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    if (c < least[count] || c > 0x10FFFF || (c >= 0xD800 && c < 0xE000))
        return 0;
    length = count;
    return c;
}

// A "\U+XXXX" escape at at (either case of U and of the digits): its
// UTF-16 unit, or -1.
long escapeAt(std::string_view text, std::size_t at)
{
    if (at + 7 > text.size() || text[at] != '\\' || (text[at + 1] != 'U' && text[at + 1] != 'u') || text[at + 2] != '+')
        return -1;
    unsigned unit = 0;
    const char* digits = text.data() + at + 3;
    const auto [end, ec] = std::from_chars(digits, digits + 4, unit, 16);
    return ec == std::errc() && end == digits + 4 ? long(unit) : -1;
}

void appendEscape(std::string& out, unsigned unit)
{
    char text[8];
    const char* end = std::to_chars(text, text + sizeof text, unit, 16).ptr;
    out += "\\U+";
    out.append(std::size_t(4 - (end - text)), '0');
    for (const char* c = text; c < end; ++c)
        out += char(std::toupper(static_cast<unsigned char>(*c)));
}

}  // namespace

struct TextCodec::Converter {
    Converter(const char* to, const char* from) : handle(iconv_open(to, from)) {}
    ~Converter()
    {
        if (handle != reinterpret_cast<iconv_t>(-1))
            iconv_close(handle);
    }
    bool usable() const { return handle != reinterpret_cast<iconv_t>(-1); }
    iconv_t handle;
};

bool holdsUtf8(std::string_view version)
{
    return version >= kUtf8Version;
}

TextCodec::TextCodec(std::string_view version, std::string_view codePage)
{
    for (const std::string_view name : {codePage, kDefaultCodePage}) {
        const std::string converter = converterName(name);
        if (converter.empty())
            continue;
        auto toUtf8 = std::make_unique<Converter>("UTF-8", converter.c_str());
        auto fromUtf8 = std::make_unique<Converter>(converter.c_str(), "UTF-8");
        if (!toUtf8->usable() || !fromUtf8->usable())
            continue;
        name_ = std::string(name);
        std::transform(name_.begin(), name_.end(), name_.begin(),
                       [](unsigned char c) { return char(std::toupper(c)); });
        if (!holdsUtf8(version)) {
            toUtf8_ = std::move(toUtf8);
            fromUtf8_ = std::move(fromUtf8);
        }
        return;
    }
    name_ = std::string(kDefaultCodePage);
}

TextCodec::~TextCodec() = default;

bool TextCodec::needsDecoding(std::string_view text) const
{
    if (!toUtf8_)
        return text.find('\\') != std::string_view::npos;
    // Eight bytes at a time: every value of a file passes here.
    constexpr std::uint64_t kOnes = 0x0101010101010101u;
    constexpr std::uint64_t kHighs = 0x8080808080808080u;
    const char* p = text.data();
    const char* const end = p + text.size();
    for (; end - p >= 8; p += 8) {
        std::uint64_t word;
        std::memcpy(&word, p, 8);
        const std::uint64_t backslashes = word ^ (kOnes * '\\');
        // A high bit of word, or of a byte that was a backslash.
        if ((word | ((backslashes - kOnes) & ~backslashes)) & kHighs)
            return true;
    }
    return std::any_of(p, end, [](char c) { return (c & 0x80) != 0 || c == '\\'; });
}

bool TextCodec::needsEncoding(std::string_view utf8) const
{
    if (!toUtf8_)
        return false;
    // Eight bytes at a time: every text the writer writes passes here.
    const char* p = utf8.data();
    const char* const end = p + utf8.size();
    for (; end - p >= 8; p += 8) {
        std::uint64_t word;
        std::memcpy(&word, p, 8);
        if (word & 0x8080808080808080u)
            return true;
    }
    return std::any_of(p, end, [](char c) { return (c & 0x80) != 0; });
}

std::string TextCodec::decode(std::string_view text)
{
    std::string utf8;
    utf8.reserve(text.size() * 2);
    if (!toUtf8_) {
        utf8 = text;
    } else {
        iconv(toUtf8_->handle, nullptr, nullptr, nullptr, nullptr);
        char* in = const_cast<char*>(text.data());
        std::size_t inLeft = text.size();
        while (inLeft > 0) {
            char buffer[256];
            char* out = buffer;
            std::size_t outLeft = sizeof buffer;
            const std::size_t done = iconv(toUtf8_->handle, &in, &inLeft, &out, &outLeft);
            utf8.append(buffer, std::size_t(out - buffer));
            if (done == static_cast<std::size_t>(-1) && errno != E2BIG) {
                // A byte the code page does not know: the character of its number.
                appendUtf8(utf8, static_cast<unsigned char>(*in));
                ++in;
                --inLeft;
                iconv(toUtf8_->handle, nullptr, nullptr, nullptr, nullptr);
            }
        }
    }
    if (utf8.find('\\') == std::string::npos)
        return utf8;
    std::string unescaped;
    unescaped.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        const long unit = escapeAt(utf8, i);
        if (unit < 0) {
            unescaped += utf8[i++];
            continue;
        }
        const bool high = unit >= 0xD800 && unit < 0xDC00;
        const long low = high ? escapeAt(utf8, i + 7) : -1;
        if (high && low >= 0xDC00 && low < 0xE000) {
            appendUtf8(unescaped, 0x10000 + ((char32_t(unit) - 0xD800) << 10) + (char32_t(low) - 0xDC00));
            i += 14;
        } else if (unit >= 0xD800 && unit < 0xE000) {
            unescaped += utf8[i++];  // a lone half of a pair stays as written
        } else {
            appendUtf8(unescaped, char32_t(unit));
            i += 7;
        }
    }
    return unescaped;
}

std::string TextCodec::encode(std::string_view utf8)
{
    if (!fromUtf8_)
        return std::string(utf8);
    std::string text;
    text.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        std::size_t length = 1;
        const char32_t c = nextUtf8(utf8, i, length);
        if (c == 0 && utf8[i] != '\0') {
            text += '?';
            ++i;
            continue;
        }
        if (c < 0x80) {
            text += char(c);
            i += length;
            continue;
        }
        auto found = encoded_.find(c);
        if (found == encoded_.end()) {
            std::string bytes;
            {
                iconv(fromUtf8_->handle, nullptr, nullptr, nullptr, nullptr);
                char* in = const_cast<char*>(utf8.data() + i);
                std::size_t inLeft = length;
                char buffer[16];
                char* out = buffer;
                std::size_t outLeft = sizeof buffer;
                if (iconv(fromUtf8_->handle, &in, &inLeft, &out, &outLeft) != static_cast<std::size_t>(-1) &&
                    iconv(fromUtf8_->handle, nullptr, nullptr, &out, &outLeft) != static_cast<std::size_t>(-1))
                    bytes.assign(buffer, std::size_t(out - buffer));
            }
            found = encoded_.emplace(c, std::move(bytes)).first;
        }
        if (!found->second.empty()) {
            text += found->second;
        } else if (c < 0x10000) {
            appendEscape(text, unsigned(c));
        } else {
            appendEscape(text, unsigned(0xD800 + ((c - 0x10000) >> 10)));
            appendEscape(text, unsigned(0xDC00 + ((c - 0x10000) & 0x3FF)));
        }
        i += length;
    }
    return text;
}

}  // namespace kaldo::dxf
