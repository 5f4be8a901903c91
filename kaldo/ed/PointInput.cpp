#include "kaldo/ed/PointInput.h"

#include "kaldo/ed/Text.h"
#include "kaldo/ed/Units.h"

#include <cmath>
#include <vector>

namespace kaldo {

namespace {

std::optional<KxGePoint3d> parseCoordinates(std::wstring_view text)
{
    std::vector<double> values;
    while (true) {
        const std::size_t comma = text.find(L',');
        const auto value = parseReal(text.substr(0, comma));
        if (!value)
            return std::nullopt;
        values.push_back(*value);
        if (comma == std::wstring_view::npos)
            break;
        text.remove_prefix(comma + 1);
    }
    if (values.size() < 2 || values.size() > 3)
        return std::nullopt;
    return KxGePoint3d(values[0], values[1], values.size() == 3 ? values[2] : 0.0);
}

std::optional<KxGeVector3d> parsePolar(std::wstring_view text, const AngleConvention& angles)
{
    const std::size_t less = text.find(L'<');
    const auto distance = parseReal(text.substr(0, less));
    const auto angle = parseAngle(text.substr(less + 1), angles.unit);
    if (!distance || !angle)
        return std::nullopt;
    const double direction = angles.base + (angles.clockwise ? -*angle : *angle);
    return KxGeVector3d(*distance * std::cos(direction), *distance * std::sin(direction), 0.0);
}

// A point whose coordinates overflowed is no point.
std::optional<KxGePoint3d> finite(const KxGePoint3d& p)
{
    if (std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z))
        return p;
    return std::nullopt;
}

}  // namespace

std::optional<KxGePoint3d> parsePointInput(std::wstring_view text, const KxGePoint3d& reference,
                                           const AngleConvention& angles)
{
    text = trimmed(text);
    const bool relative = !text.empty() && text.front() == L'@';
    if (relative)
        text = trimmed(text.substr(1));
    const KxGePoint3d origin = relative ? reference : KxGePoint3d();
    if (text.empty())
        return relative ? std::optional(reference) : std::nullopt;
    if (text.find(L'<') != std::wstring_view::npos) {
        const auto offset = parsePolar(text, angles);
        return offset ? finite(origin + *offset) : std::nullopt;
    }
    const auto coordinates = parseCoordinates(text);
    if (!coordinates)
        return std::nullopt;
    return finite(origin + (*coordinates - KxGePoint3d()));
}

}  // namespace kaldo
