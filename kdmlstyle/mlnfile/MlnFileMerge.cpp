#include "mlnfile/MlnFileMerge.h"

#include <QSaveFile>
#include <QString>

#include <cwchar>
#include <filesystem>
#include <fstream>

#include "kxstring.h"
#include "mlnfile/MlnBlockScanner.h"

namespace kdml {

namespace {

bool isKey(const std::string& line, const wchar_t* key)
{
    return isMlnKey(kxutFromMultiByte(line).c_str(), key);
}

}  // namespace

std::optional<std::vector<std::string>> readMlnFileLines(const wchar_t* path)
{
    std::ifstream in(std::filesystem::path(path), std::ios::binary);
    if (!in)
        return std::nullopt;
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        lines.push_back(std::move(line));
    }
    return lines;
}

std::vector<std::string> mergeMlnStyleBlock(std::vector<std::string> lines, const std::vector<std::string>& block,
                                            const wchar_t* name)
{
    const std::wstring nameLine = L" " + std::wstring(name);
    std::size_t i = 0;
    while (i + 2 < lines.size()) {
        if (!isKey(lines[i], L"MLSTYLE")) {
            ++i;
            continue;
        }
        if (!isKey(lines[i + 1], L"2")) {
            i += 2;
            continue;
        }
        if (::wcscasecmp(kxutFromMultiByte(lines[i + 2]).c_str(), nameLine.c_str()) != 0) {
            i += 3;
            continue;
        }
        std::size_t end = i + 3;
        while (end < lines.size() && !isKey(lines[end], L"0"))
            ++end;
        const auto first = lines.begin() + static_cast<std::ptrdiff_t>(i);
        const auto last = end < lines.size() ? lines.begin() + static_cast<std::ptrdiff_t>(end) + 1 : lines.end();
        lines.insert(lines.erase(first, last), block.begin(), block.end());
        return lines;
    }
    lines.insert(lines.end(), block.begin(), block.end());
    return lines;
}

bool writeMlnFileLines(const wchar_t* path, const std::vector<std::string>& lines)
{
    QSaveFile file(QString::fromWCharArray(path));
    if (!file.open(QIODevice::WriteOnly))
        return false;
    for (const std::string& line : lines) {
        file.write(line.data(), static_cast<qint64>(line.size()));
        file.write("\r\n", 2);
    }
    return file.commit();
}

}  // namespace kdml
