// Texts of drawing files are held in memory as UTF-8, whatever the file's
// own encoding and the process's locale; names are wide strings. Bytes
// that start no character read as U+FFFD.
#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace kaldo {

inline std::string utf8FromWide(const std::wstring& text)
{
    return QString::fromStdWString(text).toStdString();
}

inline std::wstring wideFromUtf8(std::string_view text)
{
    return QString::fromUtf8(text.data(), qsizetype(text.size())).toStdWString();
}

}  // namespace kaldo
