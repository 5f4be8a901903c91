#include "kaldo/view/RecordShapes.h"

#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>
#include <vector>

#include "kaldo/db/EntityPlane.h"

namespace kaldo::view {

namespace {

std::optional<double> numberOf(const KxDbFileGroup& group)
{
    std::string_view text = group.value;
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

}  // namespace

// Boundary paths follow the path count (91): each starts with its flags
// (92, 2 for a polyline), then whether it has bulges (72), closed (73), the
// vertex count (93) and the vertices (10, 20, with 42 bulges), and ends with
// its source objects (97 and their handles).
bool drawHatchRecord(const std::vector<KxDbFileGroup>& groups, const DrawColor& color, Scene& scene)
{
    if (groupNumber(groups, 70, 0) != 1)
        return false;
    const EntityPlane plane({groupNumber(groups, 210, 0), groupNumber(groups, 220, 0), groupNumber(groups, 230, 1)});
    const double elevation = groupNumber(groups, 30, 0);
    std::size_t i = 0;
    while (i < groups.size() && groups[i].code != 91)
        ++i;
    if (i == groups.size())
        return false;
    const int paths = int(groupNumber(groups, 91, 0));
    std::vector<std::vector<Point2>> loops;
    for (int path = 0; path < paths; ++path) {
        while (++i < groups.size() && groups[i].code != 92) {
        }
        const std::optional<double> flags = i < groups.size() ? numberOf(groups[i]) : std::nullopt;
        if (!flags || !(int(*flags) & 2))
            return false;
        std::vector<Point2>& loop = loops.emplace_back();
        std::optional<double> x;
        while (++i < groups.size() && groups[i].code != 97) {
            const std::optional<double> value = numberOf(groups[i]);
            if (!value || (groups[i].code == 42 && *value != 0))
                return false;
            if (groups[i].code == 10) {
                x = value;
            } else if (groups[i].code == 20 && x) {
                const KxGePoint3d p = plane.toWorld(KxGePoint3d(*x, *value, elevation));
                loop.push_back({p.x, p.y});
            }
        }
    }
    for (const std::vector<Point2>& loop : loops) {
        scene.beginPolygon();
        for (const Point2& p : loop)
            scene.addPoint(p);
        scene.endPolygon(color);
    }
    return true;
}

}  // namespace kaldo::view
