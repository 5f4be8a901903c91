#include "styledlg/StylePreviewGeometry.h"

#include <cmath>
#include <cstddef>
#include <numbers>

namespace kdml {

namespace {

constexpr std::uint32_t kJoints = 0x2;
constexpr std::uint32_t kStartLine = 0x10;
constexpr std::uint32_t kStartInnerArcs = 0x20;
constexpr std::uint32_t kStartOuterArc = 0x40;
constexpr std::uint32_t kEndLine = 0x100;
constexpr std::uint32_t kEndInnerArcs = 0x200;
constexpr std::uint32_t kEndOuterArc = 0x400;

KxGePoint3d midpoint(const KxGePoint3d& a, const KxGePoint3d& b)
{
    return {(a.x + b.x) / 2, (a.y + b.y) / 2, 0.0};
}

double planeDistance(const KxGePoint3d& a, const KxGePoint3d& b)
{
    return std::hypot(b.x - a.x, b.y - a.y);
}

// How far an end moves along the element for a cap at angle theta, depth a
// measured from the side the cap leans away from. A cap at right angles
// (or one so flat that the shift is no number) moves nothing.
double capShift(double a, double theta)
{
    const double shift = std::abs(a / std::tan(theta));
    return std::isfinite(shift) ? shift : 0.0;
}

}  // namespace

PreviewGeometry previewGeometry(const StylePreviewData& record, double left, double top, double right,
                                double bottom)
{
    PreviewGeometry out;
    const double cx = (left + right) * 0.5;
    const double cy = (top + bottom) * 0.5;
    const std::size_t n = record.elements.size();
    if (n == 0)
        return out;
    if (n == 1) {
        out.lines.push_back({{cx - 0.5 * cx, cy, 0}, {cx + 0.5 * cx, cy, 0}, 0, true});
        return out;
    }

    const double pi = std::numbers::pi;
    const double startAngle = record.startAngle;
    const double endAngle = record.endAngle;
    const double first = record.elements.front().offset;
    const double last = record.elements.back().offset;
    std::vector<KxGePoint3d> leftEnds, rightEnds;
    for (std::size_t i = 0; i < n; ++i) {
        const double h = first != last ? (first - record.elements[i].offset) / (first - last) * cy
                                       : double(i) / double(n - 1) * cy;
        const double y = 1.5 * cy - h;
        const double a = startAngle >= pi / 2 ? h : cy - h;
        const double b = endAngle < pi / 2 ? h : cy - h;
        leftEnds.push_back({0.5 * cx + capShift(a, startAngle), y, 0});
        rightEnds.push_back({1.5 * cx - capShift(b, endAngle), y, 0});
        out.lines.push_back({leftEnds.back(), rightEnds.back(), int(i), true});
    }

    const int lastElement = int(n - 1);
    const auto halves = [&](const KxGePoint3d& upper, const KxGePoint3d& lower) {
        const KxGePoint3d middle = midpoint(upper, lower);
        out.lines.push_back({upper, middle, 0, false});
        out.lines.push_back({lower, middle, lastElement, false});
    };
    if (record.flags & kJoints)
        halves(midpoint(leftEnds.front(), rightEnds.front()), midpoint(leftEnds.back(), rightEnds.back()));
    if (record.flags & kStartLine)
        halves(leftEnds.front(), leftEnds.back());
    if (record.flags & kEndLine)
        halves(rightEnds.front(), rightEnds.back());

    for (std::size_t k = 0; k < n / 2; ++k) {
        const std::size_t j = n - 1 - k;
        const std::uint32_t startFlag = k == 0 ? kStartOuterArc : kStartInnerArcs;
        const std::uint32_t endFlag = k == 0 ? kEndOuterArc : kEndInnerArcs;
        if (record.flags & startFlag) {
            const KxGePoint3d centre = midpoint(leftEnds[k], leftEnds[j]);
            const double radius = planeDistance(leftEnds[k], leftEnds[j]) / 2;
            out.arcs.push_back({centre, startAngle, pi, radius, int(k)});
            out.arcs.push_back({centre, pi, startAngle + pi, radius, int(j)});
        }
        if (record.flags & endFlag) {
            const KxGePoint3d centre = midpoint(rightEnds[k], rightEnds[j]);
            const double radius = planeDistance(rightEnds[k], rightEnds[j]) / 2;
            out.arcs.push_back({centre, 0.0, endAngle, radius, int(k)});
            out.arcs.push_back({centre, endAngle + pi, 2 * pi, radius, int(j)});
        }
    }
    return out;
}

}  // namespace kdml
