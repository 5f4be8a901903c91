#include "mlnfile/MlnFileMerge.h"

#include <array>
#include <cwchar>
#include <sstream>

#include "kxfile.h"
#include "kxstring.h"
#include "mlnfile/MlnBlockScanner.h"

namespace kdml {

namespace {

bool isKey(const std::string& line, const wchar_t* key)
{
    return isMlnKey(kxutFromMultiByte(line).c_str(), key);
}

}  // namespace

std::optional<std::vector<std::string>> readMlnFileLines(const wchar_t* path, std::wstring& problem)
{
    KxFileReader file(path);
    if (file.isMissing())
        return std::vector<std::string>{};
    std::string bytes;
    std::array<char, 64 * 1024> chunk{};
    for (long got = 1; got > 0;) {
        got = file.isOpen() ? file.read(chunk.data(), chunk.size()) : -1;
        if (got < 0) {
            problem = file.problem();
            return std::nullopt;
        }
        bytes.append(chunk.data(), static_cast<std::size_t>(got));
    }
    std::vector<std::string> lines;
    std::istringstream in(bytes);
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

bool writeMlnFileLines(const wchar_t* path, const std::vector<std::string>& lines, std::wstring& problem)
{
    std::string text;
    for (const std::string& line : lines)
        text.append(line).append("\r\n");
    return kxutWriteFileInPlace(path, text, problem);
}

}  // namespace kdml
