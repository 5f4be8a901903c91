#include "mlnfile/MlnBlockScanner.h"

#include <charconv>
#include <climits>
#include <cmath>
#include <cwctype>

namespace kdml {

namespace {

wchar_t asciiUpper(wchar_t c)
{
    return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
}

const wchar_t* skipBlanks(const wchar_t* text)
{
    while (*text && std::iswspace(static_cast<wint_t>(*text)))
        ++text;
    return text;
}

bool isNumberCharacter(wchar_t c)
{
    return (c >= L'0' && c <= L'9') || c == L'.' || c == L'e' || c == L'E' || c == L'+' || c == L'-';
}

}  // namespace

bool isMlnKey(const wchar_t* line, const wchar_t* key)
{
    for (; *line && *key; ++line, ++key) {
        if (asciiUpper(*line) != asciiUpper(*key))
            return false;
    }
    return !*line && !*key;
}

const wchar_t* mlnValueOf(const wchar_t* line)
{
    return *line ? line + 1 : line;
}

int mlnToInt(const wchar_t* text)
{
    const wchar_t* p = skipBlanks(text);
    const bool negative = *p == L'-';
    if (*p == L'-' || *p == L'+')
        ++p;
    long long value = 0;
    for (; *p >= L'0' && *p <= L'9'; ++p) {
        value = value * 10 + (*p - L'0');
        if (value > static_cast<long long>(INT_MAX) + 1)
            value = static_cast<long long>(INT_MAX) + 1;
    }
    value = negative ? -value : value;
    return value > INT_MAX ? INT_MAX : static_cast<int>(value);
}

double mlnToDouble(const wchar_t* text)
{
    const wchar_t* p = skipBlanks(text);
    if (*p == L'+')
        ++p;
    char digits[kMlnLineBufferSize];
    std::size_t length = 0;
    for (; isNumberCharacter(*p) && length < sizeof digits; ++p)
        digits[length++] = static_cast<char>(*p);
    double value = 0.0;
    const auto [end, error] = std::from_chars(digits, digits + length, value);
    return error == std::errc() && end != digits && std::isfinite(value) ? value : 0.0;
}

bool MlnBlockScanner::findBlock(const wchar_t* name)
{
    while (source_.next()) {
        if (!isMlnKey(source_.line(), L"MLSTYLE"))
            continue;
        if (!source_.next())
            return false;
        if (!isMlnKey(source_.line(), L"2"))
            continue;
        if (!source_.next())
            return false;
        if (::wcscasecmp(mlnValueOf(source_.line()), name) == 0)
            return true;
    }
    return false;
}

bool MlnBlockScanner::readValue(wchar_t* out)
{
    if (!source_.next())
        return false;
    std::wmemcpy(out, mlnValueOf(source_.line()), std::wcslen(mlnValueOf(source_.line())) + 1);
    return true;
}

bool MlnBlockScanner::readInteger(int& out)
{
    if (!source_.next())
        return false;
    out = mlnToInt(mlnValueOf(source_.line()));
    return true;
}

MlnScan MlnBlockScanner::readItem(MlnItem& item)
{
    using Kind = MlnItem::Kind;
    struct TextKey {
        const wchar_t* key;
        Kind kind;
    };
    static constexpr TextKey kTextKeys[] = {
        {L"3", Kind::description}, {L"430", Kind::fillColorBookKey}, {L"51", Kind::startAngle},
        {L"52", Kind::endAngle}};
    static constexpr TextKey kIntegerKeys[] = {
        {L"70", Kind::flags}, {L"62", Kind::fillColorIndex}, {L"420", Kind::fillTrueColor},
        {L"71", Kind::elementCount}};

    if (!source_.next())
        return MlnScan::failedRead;
    item.number = 0;
    item.text[0] = L'\0';
    for (const TextKey& k : kTextKeys) {
        if (isMlnKey(source_.line(), k.key)) {
            item.kind = k.kind;
            return readValue(item.text) ? MlnScan::read : MlnScan::failedRead;
        }
    }
    for (const TextKey& k : kIntegerKeys) {
        if (isMlnKey(source_.line(), k.key)) {
            item.kind = k.kind;
            return readInteger(item.number) ? MlnScan::read : MlnScan::failedRead;
        }
    }
    item.kind = isMlnKey(source_.line(), L"0") ? Kind::end : Kind::other;
    return MlnScan::read;
}

MlnScan MlnBlockScanner::readElementSlot(MlnElementSlot& slot)
{
    const bool strict = mode_ == MlnReadMode::strict;
    if (!source_.next())
        return MlnScan::failedRead;
    if (!isMlnKey(source_.line(), L"49")) {
        if (strict && !source_.next())
            return MlnScan::failedRead;
        return MlnScan::skipped;
    }
    if (!source_.next())
        return MlnScan::failedRead;
    slot.offset = mlnToDouble(mlnValueOf(source_.line()));

    if (!source_.next())
        return MlnScan::failedRead;
    if (strict && !isMlnKey(source_.line(), L"62"))
        return MlnScan::outOfForm;
    if (!readInteger(slot.colorIndex) || !source_.next())
        return MlnScan::failedRead;

    slot.trueColor = -1;
    if (isMlnKey(source_.line(), L"420")) {
        if (!readInteger(slot.trueColor) || !source_.next())
            return MlnScan::failedRead;
    }
    slot.colorBookKey[0] = L'\0';
    if (isMlnKey(source_.line(), L"430")) {
        if (!readValue(slot.colorBookKey) || !source_.next())
            return MlnScan::failedRead;
    }
    if (strict && !isMlnKey(source_.line(), L"6"))
        return MlnScan::outOfForm;
    return readValue(slot.linetypeName) ? MlnScan::read : MlnScan::failedRead;
}

}  // namespace kdml
