#include "kaldo/db/LinetypeFile.h"

#include <optional>
#include <sstream>

#include "kaldo/util/Numbers.h"
#include "kxstring.h"

namespace kaldo {
namespace {

std::string_view trim(std::string_view s)
{
    const auto first = s.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos)
        return {};
    const auto last = s.find_last_not_of(" \t\r\n");
    return s.substr(first, last - first + 1);
}

// The dashes of an "A,..." line, or nothing when the line is not one.
std::optional<std::vector<double>> parsePattern(std::string_view line)
{
    if (line.size() < 2 || (line[0] != 'A' && line[0] != 'a') || line[1] != ',')
        return std::nullopt;
    std::vector<double> dashes;
    std::string_view rest = line.substr(2);
    int depth = 0;
    std::size_t start = 0;
    for (std::size_t i = 0; i <= rest.size(); ++i) {
        const char c = i < rest.size() ? rest[i] : ',';
        if (c == '[')
            ++depth;
        else if (c == ']')
            --depth;
        else if (c == ',' && depth == 0) {
            const std::string_view item = trim(rest.substr(start, i - start));
            start = i + 1;
            if (item.empty() || item.front() == '[')
                continue;
            const auto value = parseNumber(item);
            if (!value)
                return std::nullopt;
            dashes.push_back(*value);
        }
    }
    return dashes;
}

}  // namespace

std::vector<LinetypeDefinition> parseLinetypeFile(std::string_view text)
{
    std::vector<LinetypeDefinition> out;
    std::optional<LinetypeDefinition> pending;
    std::istringstream in{std::string(text)};
    std::string raw;
    while (std::getline(in, raw)) {
        const std::string_view line = trim(raw);
        if (line.empty() || line.front() == ';')
            continue;
        if (line.front() == '*') {
            const std::string_view head = line.substr(1);
            const auto comma = head.find(',');
            LinetypeDefinition def;
            def.name = kxutFromMultiByte(std::string(trim(head.substr(0, comma))));
            if (comma != std::string_view::npos)
                def.description = kxutFromMultiByte(std::string(trim(head.substr(comma + 1))));
            pending = def.name.empty() ? std::nullopt : std::optional(std::move(def));
            continue;
        }
        if (pending) {
            if (auto dashes = parsePattern(line)) {
                pending->dashes = std::move(*dashes);
                out.push_back(std::move(*pending));
            }
            pending.reset();
        }
    }
    return out;
}

}  // namespace kaldo
